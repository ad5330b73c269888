// A terminal, an output page and a runner that a program writes to as fast as it can: KELM_BENCH_SECONDS (10) of it.
// Counted are the longest time between two paintings, by the clock and by what this thread had of a core, the memory at
// half time and at the end, and how long clearing takes.
#include "editor/themes/theme_manager.h"
#include "platform/events/notification_center.h"
#include "platform/files/user_defaults.h"
#include "platform/process/log.h"
#include "run/code_runner.h"
#include "run/view/output_view.h"
#include "run/view/terminal_text_view.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <unistd.h>

namespace {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

int seconds()
{
    const int given = qEnvironmentVariableIntValue("KELM_BENCH_SECONDS");
    return given > 0 ? given : 10;
}

double residentMebibytes()
{
    QFile file(u"/proc/self/statm"_s);
    const QList<QByteArray> fields = file.open(QIODevice::ReadOnly) ? file.readAll().split(' ') : QList<QByteArray>();
    return fields.size() > 1 ? fields[1].toDouble() * double(::sysconf(_SC_PAGESIZE)) / (1 << 20) : 0;
}

double threadMilliseconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

/// Watches how a view is painted, from the first time on.
class Frames final : public QObject
{
public:
    explicit Frames(TextView& view) { view.viewport()->installEventFilter(this); }

    void restart() { clock_.invalidate(); }
    double longest() const { return longest_; }
    double longestOfThread() const { return longestOfThread_; }
    int count() const { return count_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            if (clock_.isValid()) {
                longest_ = std::max(longest_, double(clock_.nsecsElapsed()) / 1e6);
                longestOfThread_ = std::max(longestOfThread_, threadMilliseconds() - before_);
            }
            clock_.start();
            before_ = threadMilliseconds();
            ++count_;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QElapsedTimer clock_;
    double longest_ = 0;
    double before_ = 0;
    double longestOfThread_ = 0;
    int count_ = 0;
};

/// Lets the event loop run for a part of the time.
void spin(double part)
{
    QEventLoop loop;
    QTimer::singleShot(int(seconds() * 1000 * part), &loop, &QEventLoop::quit);
    loop.exec();
}

void report(benchmark::State& state, const Frames& frames, double half)
{
    state.counters["longest frame ms"] = frames.longest();
    state.counters["of thread"] = frames.longestOfThread();
    state.counters["frames"] = frames.count();
    state.counters["MiB at half"] = half;
    state.counters["MiB at end"] = residentMebibytes();
}

void terminal(benchmark::State& state, const QString& line)
{
    for (auto _ : state) {
        TerminalSession session({Scheduler::system(), NotificationCenter::shared()});
        TerminalTextView view;
        view.resize(900, 300);
        view.setSession(&session);
        session.setTextView(&view);
        view.show();
        Frames frames(view);
        double half = 0;
        QTimer::singleShot(200, &view, [&] { view.appendPrompt(); });
        QTimer::singleShot(seconds() * 500, &view, [&] { half = residentMebibytes(); });
        QTimer::singleShot(seconds() * 1000, &view, [&] { session.sendInterrupt(); });
        QTimer::singleShot(300, &view, [&] { frames.restart(); });
        session.executeCommand(line);
        report(state, frames, half);
        QElapsedTimer clock;
        clock.start();
        session.executeCommand(u"clear"_s);
        state.counters["clear ms"] = double(clock.nsecsElapsed()) / 1e6;
    }
}
BENCHMARK_CAPTURE(terminal, yes, u"yes"_s)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(terminal, long_lines, u"yes \"$(seq -s ' ' 200)\""_s)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(terminal, colors, u"yes \"$(printf '\\033[31mred \\033[32mgreen \\033[0mplain')\""_s)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(terminal, no_line_ends, u"yes | tr -d '\\n'"_s)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void run(benchmark::State& state)
{
    const QTemporaryDir folder;
    QFile script(folder.filePath(u"a.sh"_s));
    if (script.open(QIODevice::WriteOnly)) {
        script.write("yes & sleep " + QByteArray::number(seconds()) + "; kill $!\n");
        script.close();
    }
    for (auto _ : state) {
        UserDefaults defaults(folder.filePath(u"settings"_s));
        ThemeManager themes({defaults, Log::system(), folder.path(), [](Appearance) {}});
        OutputView view(NotificationCenter::shared(), themes);
        view.resize(900, 300);
        view.show();
        Frames frames(view.textView());
        CodeRunner runner(NotificationCenter::shared(), ExecutableSearch(ProcessRunner::system()));
        runner.run(QUrl::fromLocalFile(script.fileName()));
        spin(0.5);
        const double half = residentMebibytes();
        spin(0.45);
        report(state, frames, half);
        QElapsedTimer clock;
        clock.start();
        NotificationCenter::shared().post(notifications::clearOutput, {});
        state.counters["clear ms"] = double(clock.nsecsElapsed()) / 1e6;
        spin(0.2);
    }
}
BENCHMARK(run)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
