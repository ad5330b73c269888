// What a person waits for in the whole window with large texts: the longest slices of the main thread while typing,
// scrolling, opening many files and making texts anew. The window is that of the program, in a home of its own; the
// platform is whatever the toolkit finds (QT_QPA_PLATFORM=offscreen draws to memory).
#include "app/state/notices.h"
#include "editor/view/editor_container_view.h"
#include "platform/style/view/style.h"
#include "text/view/text_view.h"
#include "workbench/main_slices.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"
#include "workbench/view/menu_bar.h"

#include <QAction>
#include <QElapsedTimer>
#include <QFile>
#include <QMenuBar>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;
using namespace std::chrono_literals;

bench::TimedApplication* application = nullptr;
KelmPaneApp* program = nullptr;

constexpr auto person = 170ms;
constexpr auto frame = 16ms;

/// Tells of the longest slices since the last time: as a person has them, and on the processor alone.
void tell(benchmark::State& state, const std::string& what)
{
    const bench::Slice longest = application->takeLongest();
    state.counters[what + "_ms"] = longest.wall;
    state.counters[what + "_cpu"] = longest.cpu;
}

void pass(std::chrono::milliseconds time)
{
    QTest::qWait(int(time.count()));
}
template <typename Condition>
bool passUntil(Condition condition)
{
    return QTest::qWaitFor(condition, 60'000);
}

/// A file of Python of at least that many bytes.
QString writeSource(const QTemporaryDir& folder, qsizetype bytes)
{
    static const QByteArray piece = "def shout(words, times=3):\n"
                                    "    \"\"\"Says it aloud.\"\"\"\n"
                                    "    # What follows is only said once.\n"
                                    "    for number in range(times):\n"
                                    "        print(f\"{number}: {words.upper()}\")\n"
                                    "    return len(words) * times\n\n\n";
    QFile file(folder.filePath(QStringLiteral("source.py")));
    if (file.open(QIODevice::WriteOnly)) {
        const QByteArray block = piece.repeated(1000);
        for (qsizetype written = 0; written < bytes; written += block.size()) {
            file.write(block);
        }
    }
    return file.fileName();
}

QString writeText(const QTemporaryDir& folder, const QString& name, const QByteArray& text)
{
    QFile file(folder.filePath(name));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(text);
    }
    return file.fileName();
}

QString urlText(const QString& file)
{
    return QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded);
}

TextView& text()
{
    return program->window().editorArea().currentEditor()->textView();
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}, const QString& typed = {})
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers, typed);
    QCoreApplication::sendEvent(&text(), &event);
}

void give(Command command)
{
    menuAction(*program->window().menuBar(), command)->trigger();
}

/// Opens a file in a tab, with all of it coloured when `settle` has passed; closes every tab at its end.
class Opened
{
public:
    explicit Opened(const QString& file, std::chrono::milliseconds settle = 3s)
    {
        program->openFromOutside({urlText(file)});
        passUntil([] { return state().currentDocument() != nullptr; });
        pass(settle);
        application->takeLongest();
    }
    ~Opened()
    {
        state().setDocuments({});
        pass(200ms);
    }
    static AppState& state() { return AppState::shared(); }
};

void keysOfAPerson(benchmark::State& state)
{
    const QTemporaryDir folder;
    const Opened opened(writeSource(folder, state.range(0) * 1'000'000));
    const qsizetype length = text().storage().length();
    text().setSelectedRange({length * state.range(1) / 2, 0});
    text().scrollRangeToVisible(text().selectedRange());
    pass(1s);
    for (auto _ : state) {
        // The first marks the tab.
        press(Qt::Key_A, {}, QStringLiteral("a"));
        pass(person);
        tell(state, "first");
        for (int key = 0; key < 30; ++key) {
            press(Qt::Key_A, {}, QStringLiteral("a"));
            pass(person);
        }
        tell(state, "slice");
        press(Qt::Key_QuoteDbl, {}, QStringLiteral("\"\"\""));
        pass(2s);
        tell(state, "quote");
    }
}
BENCHMARK(keysOfAPerson)
    ->ArgNames({"MB", "place"})
    ->Args({1, 0})
    ->Args({10, 0})
    ->Args({100, 0})
    ->Args({100, 1})
    ->Args({100, 2})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void wheelWhileColoured(benchmark::State& state)
{
    const QTemporaryDir folder;
    const Opened opened(writeSource(folder, 100'000'000), 0s);
    for (auto _ : state) {
        for (int turn = 0; turn < 120; ++turn) {
            QWheelEvent event(QPointF(100, 100), QPointF(100, 100), {}, QPoint(0, turn % 2 == 0 ? -120 : -12'000),
                              Qt::NoButton, {}, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(text().viewport(), &event);
            pass(frame);
        }
        tell(state, "slice");
        // By the scroll bar's grip, over all of it.
        QScrollBar& bar = *text().verticalScrollBar();
        for (int turn = 0; turn <= 60; ++turn) {
            bar.setValue(int(qint64(bar.maximum()) * turn / 60));
            pass(frame);
        }
        tell(state, "grip");
    }
}
BENCHMARK(wheelWhileColoured)->Iterations(1)->Unit(benchmark::kMillisecond);

void thousandFiles(benchmark::State& state)
{
    const QTemporaryDir folder;
    QStringList urls;
    for (int number = 0; number < 1000; ++number) {
        urls << urlText(writeText(folder, QStringLiteral("file%1.py").arg(number), "def run():\n    return 1\n"));
    }
    for (auto _ : state) {
        application->takeLongest();
        QElapsedTimer time;
        time.start();
        QMetaObject::invokeMethod(
            program, [&urls] { program->openFromOutside(urls); }, Qt::QueuedConnection);
        passUntil([] { return Opened::state().documents().size() == 1000; });
        state.counters["last_tab_ms"] = double(time.elapsed());
        pass(1s);
        tell(state, "slice");
        Opened::state().setDocuments({});
        pass(200ms);
    }
}
BENCHMARK(thousandFiles)->Iterations(1)->Unit(benchmark::kMillisecond);

void transform(benchmark::State& state, Command command, const QString& name, const QByteArray& source)
{
    const QTemporaryDir folder;
    const Opened opened(writeText(folder, name, source));
    for (auto _ : state) {
        QElapsedTimer time;
        time.start();
        give(command);
        passUntil([] { return Opened::state().notices().current() == nullptr; });
        state.counters["total_ms"] = double(time.elapsed());
        pass(1s);
        tell(state, "slice");
    }
}
void sortLines(benchmark::State& state)
{
    QByteArray lines;
    for (qint64 line = 0; line < 1'000'000; ++line) {
        lines += QByteArray::number(line * 7919 % 1'000'000).rightJustified(7) + " is a line of the text\n";
    }
    transform(state, Command::sortLinesAscending, QStringLiteral("lines.txt"), lines);
}
void formatXml(benchmark::State& state)
{
    const QByteArray element = "<item id='17'><name>Anna Kowalska</name><empty/></item>\n";
    transform(state, Command::formatXml, QStringLiteral("items.xml"),
              "<r>" + element.repeated(20'000'000 / element.size()) + "</r>");
}
void formatJson(benchmark::State& state)
{
    const QByteArray record = R"({"name":"Anna Kowalska","id":12345,"tags":["a","b\n"],"geo":{"y":1.5,"x":-2}},)";
    transform(state, Command::formatJson, QStringLiteral("records.json"),
              "[" + record.repeated(10'000'000 / record.size()) + "{}]");
}
BENCHMARK(sortLines)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(formatXml)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(formatJson)->Iterations(1)->Unit(benchmark::kMillisecond);

void oneLongLine(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QByteArray record = R"({"name":"Anna Kowalska","id":12345,"tags":["a","b\n"]},)";
    const Opened opened(writeText(folder, QStringLiteral("line.json"),
                                  "[" + record.repeated(5'000'000 / record.size()) + "{\"last\":1}]"));
    const auto slice = [&state](const char* name) {
        pass(500ms);
        tell(state, name);
    };
    for (auto _ : state) {
        for (int key = 0; key < 30; ++key) {
            press(Qt::Key_A, {}, QStringLiteral("a"));
            pass(person);
        }
        slice("keys");
        press(Qt::Key_End, Qt::ControlModifier);
        slice("end");
        for (int key = 0; key < 30; ++key) {
            press(Qt::Key_A, {}, QStringLiteral("a"));
            pass(person);
        }
        slice("end_keys");
        press(Qt::Key_Home, Qt::ControlModifier);
        slice("home");
        give(Command::showFindBar);
        slice("bar");
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("last"));
        slice("find");
        give(Command::findNext);
        slice("next");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        pass(200ms);
    }
}
BENCHMARK(oneLongLine)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    const QTemporaryDir home;
    for (const char* variable :
         {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }
    benchmark::Initialize(&argc, argv);
    bench::TimedApplication timed(argc, argv);
    application = &timed;
    style::installOn(timed);
    KelmPaneApp app;
    program = &app;
    app.start({});
    app.window().resize(1600, 1000);
    if (!QTest::qWaitForWindowActive(&app.window())) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
