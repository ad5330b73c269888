// Edits and the line index of texts up to a hundred million units.
#include "text/source_text.h"
#include "text/storage/text_storage.h"

#include <QStringDecoder>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

void decode(benchmark::State& state)
{
    const QByteArray bytes = bench::sourceText(state.range(0)).toUtf8();
    for (auto _ : state) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString text = decoder(bytes);
        benchmark::DoNotOptimize(text.constData());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(decode)->Arg(1'000'000)->Arg(10'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

void indexLines(benchmark::State& state)
{
    const QString text = bench::sourceText(state.range(0));
    LineIndex lines;
    for (auto _ : state) {
        lines.rebuild(text);
        benchmark::DoNotOptimize(lines.lineCount());
    }
    state.SetItemsProcessed(state.iterations() * text.size());
}
BENCHMARK(indexLines)->Arg(1'000'000)->Arg(10'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

/// One letter after the other in the middle, as a person types them.
void typeInTheMiddle(benchmark::State& state)
{
    TextStorage storage;
    storage.setText(bench::sourceText(state.range(0)));
    // The first edit takes the string over from its other holders.
    storage.replace({0, 0}, u"x");
    qsizetype caret = storage.length() / 2;
    for (auto _ : state) {
        storage.replace({caret++, 0}, u"x");
    }
}
BENCHMARK(typeInTheMiddle)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kMicrosecond);

/// Edits far from one another, which move the pending shift of the line starts.
void editHereAndThere(benchmark::State& state)
{
    TextStorage storage;
    storage.setText(bench::sourceText(state.range(0)));
    storage.replace({0, 0}, u"x");
    qsizetype at = 0;
    for (auto _ : state) {
        at = (at + storage.length() / 3) % storage.length();
        storage.replace({at, 0}, u"x\n");
    }
}
BENCHMARK(editHereAndThere)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kMicrosecond);

void replaceInEveryLine(benchmark::State& state)
{
    const QString text = bench::sourceText(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        TextStorage storage;
        storage.setText(text);
        state.ResumeTiming();
        const EditingBracket bracket(storage);
        for (qsizetype line = storage.lines().lineCount() - 1; line >= 0; --line) {
            storage.replace({storage.lines().start(line), 0}, u"    ");
        }
    }
}
BENCHMARK(replaceInEveryLine)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
