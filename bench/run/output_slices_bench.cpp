// The output page, and a terminal in colours, below programs that write much: the longest time that the main thread was
// busy without a look at what a person does, by the clock and by what it had of a core, from the first text on.
// KELM_BENCH_SECONDS (10) of those that go on for a time.
#include "editor/themes/theme_manager.h"
#include "platform/events/notification_center.h"
#include "platform/files/user_defaults.h"
#include "platform/process/log.h"
#include "run/code_runner.h"
#include "run/view/output_page.h"
#include "run/view/output_view.h"
#include "run/view/terminal_text_view.h"
#include "text/view/text_view.h"
#include "workbench/main_slices.h"

#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <utility>

namespace {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

QByteArray seconds()
{
    const int given = qEnvironmentVariableIntValue("KELM_BENCH_SECONDS");
    return QByteArray::number(given > 0 ? given : 10);
}

bench::TimedApplication& application()
{
    return static_cast<bench::TimedApplication&>(*QCoreApplication::instance());
}

/// Runs a script of a shell with "SECONDS" in it replaced, and behind it one that does nothing.
void run(benchmark::State& state, QByteArray script)
{
    const QTemporaryDir folder;
    QFile next(folder.filePath(u"next.sh"_s));
    if (next.open(QIODevice::WriteOnly)) {
        next.close();
    }
    QFile file(folder.filePath(u"a.sh"_s));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(script.replace("SECONDS", seconds()));
        file.close();
    }
    for (auto _ : state) {
        UserDefaults defaults(folder.filePath(u"settings"_s));
        ThemeManager themes({defaults, Log::system(), folder.path(), [](Appearance) {}});
        CodeRunner runner(NotificationCenter::shared(), ExecutableSearch(ProcessRunner::system()));
        OutputPage page(runner, NotificationCenter::shared(), themes);
        page.resize(900, 300);
        page.show();
        runner.run(QUrl::fromLocalFile(file.fileName()), [](bool) {});
        QEventLoop loop;
        const auto quitAtTheEnd = [&] {
            if (!runner.isRunning()) {
                // The last rows are scrolled to and painted.
                QTimer::singleShot(300, &loop, &QEventLoop::quit);
            }
        };
        QObject::connect(&runner, &CodeRunner::isRunningChanged, &loop, quitAtTheEnd);
        bool hasBegun = false;
        QObject::connect(&runner, &CodeRunner::outputChanged, &loop, [&] {
            if (!std::exchange(hasBegun, true)) {
                application().takeLongest();
            }
        });
        loop.exec();
        const bench::Slice flood = application().takeLongest();
        state.counters["longest ms"] = flood.wall;
        state.counters["of core"] = flood.cpu;
        state.counters["MiB kept"] = double(page.output().textView().storage().length()) / (1 << 20);
        QTimer::singleShot(0, &loop, [&] {
            NotificationCenter::shared().post(notifications::clearOutput, {});
            runner.run(QUrl::fromLocalFile(next.fileName()));
        });
        QTimer::singleShot(300, &loop, &QEventLoop::quit);
        loop.exec();
        const bench::Slice clear = application().takeLongest();
        state.counters["next run ms"] = clear.wall;
        state.counters["of core "] = clear.cpu;
    }
}

/// A terminal below a command that paints its text in colours that change every few letters.
void colors(benchmark::State& state)
{
    for (auto _ : state) {
        TerminalSession session({Scheduler::system(), NotificationCenter::shared()});
        TerminalTextView view;
        view.resize(900, 300);
        view.setSession(&session);
        session.setTextView(&view);
        view.show();
        QTimer::singleShot(200, &view, [&] { view.appendPrompt(); });
        QTimer::singleShot(300, &view, [] { application().takeLongest(); });
        QTimer::singleShot(seconds().toInt() * 1000, &view, [&] { session.sendInterrupt(); });
        session.executeCommand(u"yes \"$(printf '\\033[31mred++\\033[32mgreen\\033[34mblue+\\033[35mpink+')\""_s);
        const bench::Slice flood = application().takeLongest();
        state.counters["longest ms"] = flood.wall;
        state.counters["of core"] = flood.cpu;
        state.counters["MiB kept"] = double(view.storage().length()) / (1 << 20);
    }
}

struct Flood
{
    const char* name;
    const char* script;
};

constexpr Flood floods[]{
    {"50 MB of lines", "yes 'a line of some words' | head -c 50000000"},
    {"a line of 50 MB", "yes | tr -d '\\n' | head -c 50000000"},
    {"10 MB a second", "for second in $(seq SECONDS); do yes 'a line' | head -c 10000000; sleep 1; done"},
    {"lines without end", "timeout SECONDS yes; true"},
    {"a line without end", "timeout SECONDS yes | tr -d '\\n'"},
    {"errors without end", "timeout SECONDS yes >&2; true"},
    {"control characters", "timeout SECONDS yes \"$(printf '\\033[31mred \\033[0m\\a\\b')\"; true"},
    {"anything", "timeout SECONDS tr -d '\\200-\\377' </dev/urandom; true"},
};

} // namespace

int main(int argc, char** argv)
{
    const bench::TimedApplication timed(argc, argv);
    for (const Flood& flood : floods) {
        benchmark::RegisterBenchmark(flood.name, [&flood](benchmark::State& state) { run(state, flood.script); })
            ->Iterations(1)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("terminal: colours", colors)
        ->Iterations(1)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
