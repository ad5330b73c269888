// What a screen reader costs: a key while one listens and while none does, and a question to a long text.
#include "platform/view/screen_reader.h"
#include "text/source_text.h"
#include "text/view/text_view.h"

#include <QAccessible>
#include <QAccessibleTextInterface>
#include <QApplication>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

constexpr int length = 100'000'000;

/// A text of a hundred million units, made once.
TextView& longText()
{
    static auto* view = [] {
        auto* made = new TextView;
        made->resize(900, 800);
        made->show();
        made->storage().setText(bench::sourceText(length));
        QCoreApplication::processEvents();
        return made;
    }();
    return *view;
}

/// A key up to all that is told of it, without the paint.
void key(benchmark::State& state, bool isListening)
{
    TextView& view = longText();
    view.setSelectedRange({length / 2, 0});
    qsizetype told = 0;
    if (isListening) {
        screenReader::tellInstead([&told](QAccessibleEvent&) { ++told; });
    }
    for (auto _ : state) {
        view.editor().insertText(QStringLiteral("a"), EditKind::typing);
    }
    screenReader::tellInstead({});
    state.counters["told"] = static_cast<double>(told) / static_cast<double>(state.iterations());
}
BENCHMARK_CAPTURE(key, whileNobodyListens, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(key, whileAScreenReaderListens, true)->Unit(benchmark::kMicrosecond);

void question(benchmark::State& state, QAccessible::TextBoundaryType type)
{
    QAccessibleTextInterface& text = *QAccessible::queryAccessibleInterface(&longText())->textInterface();
    int at = length / 3;
    for (auto _ : state) {
        int start = 0;
        int end = 0;
        benchmark::DoNotOptimize(text.textAtOffset(at, type, &start, &end));
        at = (at + 7'654'321) % length;
    }
}
BENCHMARK_CAPTURE(question, character, QAccessible::CharBoundary)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(question, word, QAccessible::WordBoundary)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(question, line, QAccessible::LineBoundary)->Unit(benchmark::kMicrosecond);

void allOfIt(benchmark::State& state)
{
    QAccessibleTextInterface& text = *QAccessible::queryAccessibleInterface(&longText())->textInterface();
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.text(0, text.characterCount()));
    }
}
BENCHMARK(allOfIt)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
