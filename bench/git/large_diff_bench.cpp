// A diff of 100 MB as git prints it, of a real file, in the viewer: from its text to the first picture, the longest
// slice of the main thread on the way, and what the program holds more of memory afterwards, and at most.
#include "git/service/git_service.h"
#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "platform/style/view/style.h"
#include "workbench/main_slices.h"

#include <QFile>
#include <QScrollBar>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <malloc.h>
#include <random>

namespace {

using namespace kelm;

constexpr qsizetype size = 100'000'000;

void runGit(const QString& folder, const QStringList& arguments)
{
    const ProcessResult result = ProcessRunner::system().run(GitService::makeProcess(arguments, folder));
    if (result.launchError || !result.exit.isSuccess()) {
        qFatal("git %s: %s", qPrintable(arguments.join(u' ')), result.standardError.constData());
    }
}

/// Lines of the usual lengths; every fourth differs from one version to the next.
QByteArray version(char mark)
{
    std::mt19937 random(1);
    QByteArray code;
    for (int index = 0; index < 8; ++index) {
        code += "const int value" + QByteArray::number(index) + " = function(x, y); ";
    }
    // A changed line stands in the diff twice.
    constexpr qsizetype share = 10;
    QByteArray text;
    text.reserve(size * 8 / share + 200);
    for (qsizetype line = 0; text.size() < size * 8 / share; ++line) {
        text += code.first(std::uniform_int_distribution<int>(8, 84)(random));
        text += line % 4 == 0 ? QByteArray(1, mark) : QByteArray();
        text += '\n';
    }
    return text;
}

void write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        qFatal("cannot write");
    }
}

/// What git prints, read through the service.
QString diffOfGit()
{
    qputenv("GIT_CONFIG_GLOBAL", "/dev/null");
    qputenv("GIT_CONFIG_NOSYSTEM", "1");
    const QTemporaryDir folder;
    const QString root = folder.path();
    runGit(root, {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("-b"), QStringLiteral("main")});
    write(root + QStringLiteral("/f"), version('a'));
    runGit(root, {QStringLiteral("add"), QStringLiteral("-A")});
    write(root + QStringLiteral("/f"), version('b'));
    GitService service(ProcessRunner::sharedSystem());
    service.open(QUrl::fromLocalFile(root));
    return service.diff(QStringLiteral("f"), false);
}

/// One of the figures in kilobytes that the system has of this process, in MB.
double memory(const QByteArray& name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name)) {
            return line.mid(name.size() + 1).simplified().split(' ').front().toDouble() * 1024 / 1e6;
        }
    }
    return 0;
}

double milliseconds(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

bench::TimedApplication& application()
{
    return static_cast<bench::TimedApplication&>(*qApp);
}

void openLargeDiff(benchmark::State& state)
{
    DiffViewer viewer;
    viewer.resize(1100, 800);
    viewer.setHunkAction(QStringLiteral("Stage hunk"), [](const DiffFile&, qsizetype) {});
    viewer.setDiffText(QStringLiteral("@@ -1 +1 @@\n-a\n+b"));
    viewer.show();
    QApplication::processEvents();
    const double before = memory("VmRSS");
    QString diff = diffOfGit();
    malloc_trim(0);
    const qsizetype bytes = diff.size();
    bool isShown = false;
    QObject::connect(&viewer, &DiffViewer::shown, &viewer, [&] { isShown = true; });
    // What reading git's output took at most is not the viewer's.
    if (QFile peak(QStringLiteral("/proc/self/clear_refs")); peak.open(QIODevice::WriteOnly)) {
        peak.write("5");
    }
    const double began = milliseconds(CLOCK_PROCESS_CPUTIME_ID);
    for (auto _ : state) {
        application().takeLongest();
        viewer.setDiffText(diff);
        while (!isShown) {
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        viewer.repaint();
    }
    diff.clear();
    const bench::Slice slice = application().takeLongest();
    state.counters["cpu_ms"] = milliseconds(CLOCK_PROCESS_CPUTIME_ID) - began;
    state.counters["diff_MB"] = double(bytes) / 1e6;
    state.counters["slice_ms"] = slice.wall;
    state.counters["slice_cpu_ms"] = slice.cpu;
    state.counters["held_MB"] = memory("VmRSS") - before;
    state.counters["most_MB"] = memory("VmHWM") - before;

    QScrollBar& bar = *viewer.list().verticalScrollBar();
    double slowest = 0;
    for (int frame = 0; frame < 500; ++frame) {
        const double start = milliseconds(CLOCK_THREAD_CPUTIME_ID);
        bar.setValue(int(qint64(bar.maximum()) * ((frame * 37) % 500) / 500));
        viewer.repaint();
        slowest = std::max(slowest, milliseconds(CLOCK_THREAD_CPUTIME_ID) - start);
    }
    state.counters["slowest_frame_cpu_ms"] = slowest;
}
BENCHMARK(openLargeDiff)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    bench::TimedApplication application(argc, argv);
    style::installOn(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
