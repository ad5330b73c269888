#include "screenshots/demo_project.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <chrono>
#include <filesystem>

namespace kelm::screenshots {

namespace {

bool write(const QString& path, const char* text)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) >= 0;
}

/// Runs git with a name, a clock and settings that are the same on every machine.
bool git(const QString& folder, const QStringList& arguments, const char* date = "2026-03-02T09:30:00+0900")
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("GIT_CONFIG_GLOBAL"), QStringLiteral("/dev/null"));
    environment.insert(QStringLiteral("GIT_CONFIG_NOSYSTEM"), QStringLiteral("1"));
    for (const char* role : {"AUTHOR", "COMMITTER"}) {
        environment.insert(QStringLiteral("GIT_%1_NAME").arg(QLatin1String(role)), QStringLiteral("Han Sol"));
        environment.insert(QStringLiteral("GIT_%1_EMAIL").arg(QLatin1String(role)), QStringLiteral("sol@example.org"));
        environment.insert(QStringLiteral("GIT_%1_DATE").arg(QLatin1String(role)), QString::fromLatin1(date));
    }
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(QStringLiteral("git"), arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool commit(const QString& folder, const char* message, const char* date)
{
    return git(folder, {QStringLiteral("add"), QStringLiteral("-A")}, date) &&
           git(folder, {QStringLiteral("commit"), QStringLiteral("-qm"), QString::fromUtf8(message)}, date);
}

constexpr const char* orchard = R"(import Foundation

/// A tree of the orchard and what it bore this year.
struct Tree {
    let name: String
    var apples: Int
    var isRipe: Bool { apples > 12 }
}

/// Picks what is ripe and leaves the rest for next week.
final class Orchard {
    private(set) var trees: [Tree] = []
    private let season = "autumn"

    func plant(_ name: String, apples: Int = 0) {
        trees.append(Tree(name: name, apples: apples))
    }

    func harvest() -> [String: Int] {
        var basket: [String: Int] = [:]
        for tree in trees where tree.isRipe {
            basket[tree.name, default: 0] += tree.apples
        }
        return basket
    }
}

let orchard = Orchard()
orchard.plant("Jonagold", apples: 31)
orchard.plant("Fuji", apples: 8)

// What the basket holds, sorted by its names.
for (name, count) in orchard.harvest().sorted(by: { $0.key < $1.key }) {
    print("\(name): \(count) apples")
}
)";

constexpr const char* orchardBefore = R"(import Foundation

/// A tree of the orchard.
struct Tree {
    let name: String
    var apples: Int
    var isRipe: Bool { apples > 10 }
}

/// Picks what is ripe.
final class Orchard {
    private(set) var trees: [Tree] = []

    func plant(_ name: String, apples: Int = 0) {
        trees.append(Tree(name: name, apples: apples))
    }

    func harvest() -> [String: Int] {
        var basket: [String: Int] = [:]
        for tree in trees where tree.isRipe {
            basket[tree.name] = tree.apples
        }
        return basket
    }
}

let orchard = Orchard()
orchard.plant("Jonagold", apples: 31)
orchard.plant("Fuji", apples: 8)

for (name, count) in orchard.harvest() {
    print("\(name): \(count) apples")
}
)";

constexpr const char* basket = R"("""What a basket holds, and what it is worth."""
import sys
from collections import Counter

PRICES = {"Jonagold": 0.45, "Fuji": 0.60, "사과": 0.55}


def worth(basket: Counter) -> float:
    """The price of all apples, in euros."""
    return sum(PRICES.get(name, 0.0) * count for name, count in basket.items())


basket = Counter(Jonagold=31, Fuji=8)
for name, count in basket.most_common():
    print(f"{name:<10}{count:>4} apples {PRICES[name] * count:>8.2f} €")
print(f"{'together':<10}{sum(basket.values()):>4} apples {worth(basket):>8.2f} €")
print("바구니가 가득 찼습니다. 🍎")
print("one tree was not counted", file=sys.stderr)
)";

bool writeSources(const QDir& folder)
{
    return write(folder.filePath(QStringLiteral("Sources/orchard.swift")), orchardBefore) &&
           write(folder.filePath(QStringLiteral("Sources/basket.py")), basket) &&
           write(folder.filePath(QStringLiteral("Sources/Weather/forecast.ts")),
                 "export interface Forecast {\n  day: string;\n  rain: number;\n}\n\n"
                 "export const dry = (days: Forecast[]) => days.filter((day) => day.rain < 1);\n") &&
           write(folder.filePath(QStringLiteral("Sources/Weather/stations.json")),
                 "{\n  \"harbour\": { \"rain\": 0.2 },\n  \"hill\": { \"rain\": 3.5 }\n}\n") &&
           write(folder.filePath(QStringLiteral("Site/index.html")),
                 "<!doctype html>\n<title>Orchard</title>\n<h1>Apples</h1>\n") &&
           write(folder.filePath(QStringLiteral("Site/style.css")), "h1 { color: #c0392b; }\n") &&
           write(folder.filePath(QStringLiteral("문서/안내.md")), "# 과수원\n\n사과를 세는 작은 프로그램입니다.\n") &&
           write(folder.filePath(QStringLiteral("Makefile")), "run:\n\tpython3 Sources/basket.py\n") &&
           write(folder.filePath(QStringLiteral("README.md")), "# Orchard\n\nCounts apples.\n");
}

bool makeHistory(const QString& folder)
{
    const auto run = [&](std::initializer_list<const char*> words) {
        QStringList arguments;
        for (const char* word : words) {
            arguments.append(QString::fromUtf8(word));
        }
        return git(folder, arguments);
    };
    const QDir dir(folder);
    return run({"init", "-q", "-b", "main"}) && commit(folder, "Plant the orchard", "2026-02-23T10:00:00+0900") &&
           write(dir.filePath(QStringLiteral("LICENSE")), "MIT\n") &&
           commit(folder, "Add a licence", "2026-02-24T11:20:00+0900") && run({"tag", "v1.0"}) &&
           write(dir.filePath(QStringLiteral("Site/map.html")), "<h1>Map</h1>\n") &&
           commit(folder, "Draw a map of the rows", "2026-02-26T16:45:00+0900") &&
           run({"branch", "feature/harvest-by-weather"}) && run({"branch", "fix/ripe-limit"}) &&
           write(dir.filePath(QStringLiteral("README.md")), "# Orchard\n\nCounts apples, and weighs them.\n") &&
           commit(folder, "안내를 더 자세히 쓴다", "2026-03-01T08:05:00+0900") &&
           run({"remote", "add", "origin", "https://example.org/sol/orchard.git"}) &&
           write(dir.filePath(QStringLiteral("Makefile")),
                 "run:\n\tpython3 Sources/basket.py\n\nclean:\n\trm -rf out\n") &&
           run({"stash", "push", "-qm", "Try a make rule for cleaning"});
}

bool makeChanges(const QDir& folder)
{
    return write(folder.filePath(QStringLiteral("Sources/orchard.swift")), orchard) &&
           write(folder.filePath(QStringLiteral("Sources/Weather/rain.ts")), "export const rain = 3;\n") &&
           QFile::remove(folder.filePath(QStringLiteral("Site/map.html"))) &&
           write(folder.filePath(QStringLiteral("Site/style.css")), "h1 { color: #2e7d32; }\n") &&
           git(folder.path(), {QStringLiteral("add"), QStringLiteral("Site/style.css")});
}

/// Gives every file and folder that is shown one time.
bool setTimes(const QString& folder)
{
    namespace fs = std::filesystem;
    const auto time = std::chrono::file_clock::from_sys(
        std::chrono::sys_seconds(std::chrono::seconds(QDateTime(QDate(2026, 3, 1), QTime(8, 5)).toSecsSinceEpoch())));
    std::error_code error;
    for (auto entry = fs::recursive_directory_iterator(folder.toStdString(), error);
         !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        if (entry->path().filename() == ".git") {
            entry.disable_recursion_pending();
        }
        fs::last_write_time(entry->path(), time, error);
    }
    return !error;
}

} // namespace

bool makeDemoProject(const QString& folder)
{
    const QDir dir(folder);
    return dir.mkpath(QStringLiteral(".")) && writeSources(dir) && makeHistory(folder) && makeChanges(dir) &&
           setTimes(folder);
}

} // namespace kelm::screenshots
