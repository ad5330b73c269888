// 10,000 changed files among 20,000, from the disk to the painted list and the badges of the tree, beside `git status`
// alone. The two take turns, so that both see the same machine.
//
// changesReadAndShown: as the person asks for it. changesFollowed: as the program sees it by itself, with the longest
// time for which the main thread was busy without a look at what a person does.
#include "files/git_badge.h"
#include "git/panel/view/changes_tab.h"
#include "git/service/git_service.h"
#include "git/service/refresh_commands.h"
#include "git/service/repository_follower.h"
#include "platform/style/view/style.h"
#include "workbench/main_slices.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

using namespace kelm;
using Clock = std::chrono::steady_clock;

constexpr int files = 20'000;
constexpr QSize panelSize(260, 700);

ProcessResult runGit(const QString& folder, const QStringList& arguments)
{
    ProcessResult result = ProcessRunner::system().run(GitService::makeProcess(arguments, folder));
    if (result.launchError || !result.exit.isSuccess()) {
        qFatal("git %s: %s", qPrintable(arguments.join(u' ')), result.standardError.constData());
    }
    return result;
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write");
    }
}

const QString& repository()
{
    static const QTemporaryDir folder;
    static const QString path = [] {
        qputenv("GIT_CONFIG_GLOBAL", "/dev/null");
        qputenv("GIT_CONFIG_NOSYSTEM", "1");
        QString root = QFileInfo(folder.path()).canonicalFilePath();
        runGit(root, {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("-b"), QStringLiteral("main")});
        const auto name = [&root](int index) {
            return root + QStringLiteral("/src/folder_%1/some_source_file_%2.cpp").arg(index / 40).arg(index);
        };
        for (int index = 0; index < files; ++index) {
            QDir().mkpath(QFileInfo(name(index)).path());
            writeFile(name(index), QByteArray::number(index));
        }
        runGit(root, {QStringLiteral("add"), QStringLiteral("-A")});
        runGit(root, {QStringLiteral("-c"), QStringLiteral("user.name=Bench"), QStringLiteral("-c"),
                      QStringLiteral("user.email=bench@example.org"), QStringLiteral("commit"), QStringLiteral("-q"),
                      QStringLiteral("-m"), QStringLiteral("first")});
        for (int index = 0; index < files; index += 2) {
            writeFile(name(index), "changed");
        }
        return root;
    }();
    return path;
}

/// The list and the badges, as they follow the service.
struct Shown
{
    explicit Shown(GitService& git) : tab(git, [](const QString&) {})
    {
        QObject::connect(&git, &GitService::statusChanged, &tab,
                         [this, &git] { badges = GitBadges(git.status(), git.repoURL()); });
        tab.resize(panelSize);
        tab.show();
    }
    void paint() { benchmark::DoNotOptimize(tab.grab()); }

    ChangesTab tab;
    GitBadges badges;
};

double milliseconds(Clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(values.size() / 2), values.end());
    return values[values.size() / 2];
}

void changesReadAndShown(benchmark::State& state)
{
    GitService git(ProcessRunner::sharedSystem());
    Shown shown(git);
    if (!git.open(QUrl::fromLocalFile(repository())) || git.status().size() != files / 2) {
        qFatal("no changes");
    }
    std::vector<double> times;
    std::vector<double> bare;
    for (auto _ : state) {
        const auto start = Clock::now();
        git.refreshStatus();
        shown.paint();
        const auto middle = Clock::now();
        runGit(repository(), refreshCommands::status());
        times.push_back(milliseconds(middle - start));
        bare.push_back(milliseconds(Clock::now() - middle));
    }
    state.counters["shown_ms"] = median(times);
    state.counters["status_ms"] = median(bare);
    state.counters["ratio"] = median(times) / median(bare);
}
BENCHMARK(changesReadAndShown)->Unit(benchmark::kMillisecond)->MinTime(5);

void changesFollowed(benchmark::State& state)
{
    auto* application = static_cast<bench::TimedApplication*>(QCoreApplication::instance());
    GitService git(ProcessRunner::sharedSystem());
    Shown shown(git);
    ManualScheduler scheduler;
    RepositoryFollower follower(git, scheduler);
    follower.setIsShownBy(shown.tab, true);
    git.open(QUrl::fromLocalFile(repository()));
    double longest = 0;
    int extra = 0;
    for (auto _ : state) {
        // Another one each time, so that the lists are others.
        writeFile(repository() + QStringLiteral("/extra_%1").arg(extra++), "");
        application->processEvents();
        application->takeLongest();
        follower.noteChange();
        scheduler.advance(RepositoryFollower::readDelay);
        while (!follower.isSettled()) {
            application->processEvents(QEventLoop::WaitForMoreEvents);
        }
        application->processEvents();
        longest = std::max(longest, application->takeLongest().cpu);
    }
    state.counters["longest_slice_ms"] = longest;
}
BENCHMARK(changesFollowed)->Unit(benchmark::kMillisecond)->Iterations(20);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    kelm::bench::TimedApplication application(argc, argv);
    kelm::style::installOn(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
