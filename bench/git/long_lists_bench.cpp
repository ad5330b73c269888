// Scrolling through long lists of a real repository: 50,000 commits, 2,000 branches, 5,000 tags. A frame is the turn of
// the wheel and the painting that follows; what is told is the slowest of all frames, in milliseconds on a processor.
#include "git/panel/view/branches_tab.h"
#include "git/panel/view/commit_row.h"
#include "git/panel/view/tags_tab.h"
#include "git/service/git_service.h"
#include "platform/style/view/style.h"
#include "platform/view/row_list.h"

#include <QApplication>
#include <QScrollBar>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>

namespace {

using namespace kelm;

constexpr int commits = 50'000;
constexpr int branches = 2'000;
constexpr int tags = 5'000;
constexpr int turn = 120;
constexpr QSize panelSize(260, 700);

void runGit(const QString& folder, const QStringList& arguments, const QByteArray& input = {})
{
    ProcessCommand command = GitService::makeProcess(arguments, folder);
    command.standardInput = input;
    const ProcessResult result = ProcessRunner::system().run(command);
    if (result.launchError || !result.exit.isSuccess()) {
        qFatal("git %s: %s", qPrintable(arguments.join(u' ')), result.standardError.constData());
    }
}

QByteArray history()
{
    QByteArray stream;
    for (int commit = 1; commit <= commits; ++commit) {
        const QByteArray number = QByteArray::number(commit);
        const QByteArray message = "Mend what was broken in part " + number;
        stream += "commit refs/heads/main\nmark :" + number + "\ncommitter Somebody Or Other <s@example.org> " +
                  QByteArray::number(1'600'000'000 + commit * 60) + " +0000\ndata " +
                  QByteArray::number(message.size()) + '\n' + message + "\nM 100644 inline f" +
                  QByteArray::number(commit % 10) + "\ndata " + QByteArray::number(number.size()) + '\n' + number +
                  "\n\n";
    }
    return stream;
}

QByteArray references()
{
    QByteArray updates;
    for (int branch = 1; branch < branches; ++branch) {
        updates += "create refs/heads/feature/number-" + QByteArray::number(branch) + " refs/heads/main\n";
    }
    for (int tag = 0; tag < tags; ++tag) {
        updates += "create refs/tags/v1." + QByteArray::number(tag) + " refs/heads/main\n";
    }
    return updates;
}

/// A service with that repository open.
GitService& service()
{
    static const QTemporaryDir folder;
    static GitService git(ProcessRunner::sharedSystem());
    static const bool isOpen = [] {
        qputenv("GIT_CONFIG_GLOBAL", "/dev/null");
        qputenv("GIT_CONFIG_NOSYSTEM", "1");
        const QString root = folder.path();
        runGit(root, {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("-b"), QStringLiteral("main")});
        runGit(root, {QStringLiteral("fast-import"), QStringLiteral("--quiet")}, history());
        runGit(root, {QStringLiteral("update-ref"), QStringLiteral("--stdin")}, references());
        runGit(root, {QStringLiteral("pack-refs"), QStringLiteral("--all")});
        return git.open(QUrl::fromLocalFile(root));
    }();
    if (!isOpen || git.branches().size() != branches || git.tags().size() != tags) {
        qFatal("the repository was not read");
    }
    return git;
}

double processorMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// Turns the wheel a thousand times, and then drags the bar through everything.
void scroll(RowList& list, benchmark::State& state)
{
    constexpr int frames = 1000;
    QScrollBar& bar = *list.verticalScrollBar();
    if (bar.maximum() < list.height()) {
        qFatal("there is nothing to scroll");
    }
    double slowest = 0;
    const auto frame = [&](int place) {
        const double began = processorMilliseconds();
        bar.setValue(place);
        list.viewport()->repaint();
        slowest = std::max(slowest, processorMilliseconds() - began);
    };
    for (auto _ : state) {
        for (int index = 0; index < frames; ++index) {
            frame(index * turn);
        }
        for (int index = 0; index < frames; ++index) {
            frame(int(qint64(bar.maximum()) * index / frames));
        }
    }
    state.counters["slowest_frame_cpu_ms"] = slowest;
}

void logIsScrolled(benchmark::State& state)
{
    const QList<GitCommit> log = service().log(commits);
    if (log.size() != commits) {
        qFatal("the history was not read");
    }
    constexpr int rowHeight = 42;
    RowList list(rowHeight);
    list.setSections({{.title = {},
                       .count = log.size(),
                       .row =
                           [&log](qsizetype i) {
                               return CommitRow{log[i], [] {}}.content();
                           },
                       .key = [&log](qsizetype i) { return log[i].id; }}});
    list.resize(panelSize);
    list.show();
    QApplication::processEvents();
    scroll(list, state);
}

template <typename Tab>
void tabIsScrolled(benchmark::State& state)
{
    Tab tab(service());
    tab.resize(panelSize);
    tab.show();
    QApplication::processEvents();
    scroll(tab.list(), state);
}

void branchesAreScrolled(benchmark::State& state)
{
    tabIsScrolled<BranchesTab>(state);
}

void tagsAreScrolled(benchmark::State& state)
{
    tabIsScrolled<TagsTab>(state);
}

BENCHMARK(logIsScrolled)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(branchesAreScrolled)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(tagsAreScrolled)->Unit(benchmark::kMillisecond)->Iterations(1);

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
