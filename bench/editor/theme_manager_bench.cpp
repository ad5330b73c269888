// Starting with 10,000 custom themes, beside the mere reading of their files.
#include "editor/themes/theme_manager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int fileCount = 10000;

/// A folder of theme files; every second one has a name that is taken, every tenth is cut off.
const QTemporaryDir& themeFolder()
{
    static const QTemporaryDir folder;
    static const bool isMade = [] {
        QDir(folder.path()).mkpath(u"KelmPane/Themes"_s);
        for (int i = 0; i < fileCount; ++i) {
            QJsonObject theme = kelm::EditorTheme::dracula().encode();
            theme.insert(u"name"_s, u"Theme %1"_s.arg(i / 2));
            const QByteArray json = QJsonDocument(theme).toJson();
            QFile file(folder.filePath(u"KelmPane/Themes/%1.json"_s.arg(i)));
            static_cast<void>(file.open(QIODevice::WriteOnly));
            file.write(i % 10 == 0 ? json.first(json.size() / 2) : json);
        }
        return true;
    }();
    Q_UNUSED(isMade);
    return folder;
}

class SilentLog final : public kelm::Log
{
public:
    void write(const QString&) override {}
    void print(const QString&) override {}
};

void readFiles(benchmark::State& state)
{
    const QDir folder(themeFolder().filePath(u"KelmPane/Themes"_s));
    for (auto _ : state) {
        qsizetype size = 0;
        for (const QString& name : folder.entryList(QDir::Files, QDir::Unsorted)) {
            QFile file(folder.filePath(name));
            static_cast<void>(file.open(QIODevice::ReadOnly));
            size += file.readAll().size();
        }
        benchmark::DoNotOptimize(size);
    }
}

void startWithThemes(benchmark::State& state)
{
    SilentLog log;
    kelm::UserDefaults defaults(themeFolder().filePath(u"store.conf"_s));
    for (auto _ : state) {
        kelm::ThemeManager manager({defaults, log, themeFolder().path(), [](kelm::Appearance) {}});
        benchmark::DoNotOptimize(manager.availableThemes().size());
    }
}

} // namespace

BENCHMARK(readFiles)->Unit(benchmark::kMillisecond);
BENCHMARK(startWithThemes)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
