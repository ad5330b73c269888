// From git's answer to a painted tab of the source control panel: 20,000 changed files, 5,000 branches, 250 commits.
// Git itself is left out: a runner answers at once with what it would print.
#include "git/panel/view/branches_tab.h"
#include "git/panel/view/changes_tab.h"
#include "git/panel/view/history_tab.h"
#include "git/service/git_service.h"
#include "platform/style/view/style.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

constexpr int files = 20000;
constexpr int branches = 5000;
constexpr int commits = 250;
constexpr QSize panelSize(260, 700);

QByteArray makeStatus()
{
    const QByteArrayList columns{" M ", "M  ", "MM ", "?? ", "A  ", "D  "};
    QByteArray output;
    for (int i = 0; i < files; ++i) {
        output += columns[i % columns.size()] + "src/folder_" + QByteArray::number(i / 40) + "/some_source_file_" +
                  QByteArray::number(i) + ".cpp\n";
    }
    return output;
}

QByteArray makeBranches()
{
    QByteArray output;
    for (int i = 0; i < branches / 2; ++i) {
        output += "feature/" + QByteArray::number(i) + '\0' + (i == 7 ? "*" : " ") + '\0' + "origin/feature\n";
    }
    return output;
}

QByteArray makeRemoteBranches()
{
    QByteArray output;
    for (int i = 0; i < branches / 2; ++i) {
        output += "origin/feature/" + QByteArray::number(i) + '\n';
    }
    return output;
}

QByteArray makeLog()
{
    QByteArray output;
    for (int i = 0; i < commits; ++i) {
        output += QByteArray(40, 'a') + "\x1fSomebody Or Other\x1f" + "2024-02-03\x1fMend what was broken in " +
                  QByteArray::number(i) + '\n';
    }
    return output;
}

class CannedRunner final : public ProcessRunner
{
public:
    ProcessResult run(const ProcessCommand& command) override
    {
        static const QByteArray status = makeStatus();
        static const QByteArray local = makeBranches();
        static const QByteArray remote = makeRemoteBranches();
        static const QByteArray log = makeLog();
        const QStringList& arguments = command.arguments;
        if (arguments.first() == QLatin1String("status")) {
            return {.standardOutput = status};
        }
        if (arguments.last() == QLatin1String("refs/heads")) {
            return {.standardOutput = local};
        }
        if (arguments.last() == QLatin1String("refs/remotes")) {
            return {.standardOutput = remote};
        }
        return arguments.first() == QLatin1String("log") ? ProcessResult{.standardOutput = log} : ProcessResult{};
    }
};

/// A service with a repository open, read from the canned answers.
GitService& service()
{
    static const QTemporaryDir folder;
    static GitService git(std::make_shared<CannedRunner>());
    static const bool isOpen = [] {
        QDir(folder.path()).mkdir(QStringLiteral(".git"));
        return git.open(QUrl::fromLocalFile(folder.path()));
    }();
    if (!isOpen || git.status().size() != files || git.branches().size() != branches) {
        qFatal("the canned answers were not read");
    }
    return git;
}

void show(QWidget& tab)
{
    tab.resize(panelSize);
    tab.show();
    benchmark::DoNotOptimize(tab.grab());
}

void changesOpen(benchmark::State& state)
{
    GitService& git = service();
    for (auto _ : state) {
        ChangesTab tab(git, [](const QString&) {});
        show(tab);
    }
}

void changesReadAndShown(benchmark::State& state)
{
    GitService& git = service();
    ChangesTab tab(git, [](const QString&) {});
    show(tab);
    for (auto _ : state) {
        git.refreshStatus();
        benchmark::DoNotOptimize(tab.grab());
    }
}

void branchesOpen(benchmark::State& state)
{
    GitService& git = service();
    for (auto _ : state) {
        BranchesTab tab(git);
        show(tab);
    }
}

void historyOpens(benchmark::State& state)
{
    GitService& git = service();
    for (auto _ : state) {
        HistoryTab tab(git, [](const QString&) {});
        show(tab);
    }
}

BENCHMARK(changesOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(changesReadAndShown)->Unit(benchmark::kMillisecond);
BENCHMARK(branchesOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(historyOpens)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    kelm::style::installOn(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
