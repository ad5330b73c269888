// Edits, snapshots and lines of a text in a tree of pieces, up to a hundred million units.
#include "text/source_text.h"
#include "text/storage/text_tree.h"
#include "text/storage/text_tree_builder.h"

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

void build(benchmark::State& state)
{
    const QString text = bench::sourceText(state.range(0));
    for (auto _ : state) {
        const TextTree tree(text);
        benchmark::DoNotOptimize(tree.lineCount());
    }
    state.SetItemsProcessed(state.iterations() * text.size());
}
BENCHMARK(build)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

/// The same text, as it comes from a file: some hundred thousand units at a time.
void buildByStretches(benchmark::State& state)
{
    const QString text = bench::sourceText(state.range(0));
    constexpr qsizetype stretch = qsizetype(1) << 18;
    for (auto _ : state) {
        TextTreeBuilder builder;
        for (qsizetype at = 0; at < text.size(); at += stretch) {
            builder.append(QStringView(text).mid(at, stretch));
        }
        benchmark::DoNotOptimize(builder.take().lineCount());
    }
    state.SetItemsProcessed(state.iterations() * text.size());
}
BENCHMARK(buildByStretches)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

/// One letter after the other at the start, the middle or the end of a text, as a person types them.
void type(benchmark::State& state, double share)
{
    TextTree tree(bench::sourceText(state.range(0)));
    auto caret = qsizetype(share * double(tree.length()));
    for (auto _ : state) {
        tree.replace({caret++, 0}, u"x");
    }
}
BENCHMARK_CAPTURE(type, atTheStart, 0.0)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kNanosecond);
BENCHMARK_CAPTURE(type, inTheMiddle, 0.5)->Arg(100'000'000)->Unit(benchmark::kNanosecond);
BENCHMARK_CAPTURE(type, atTheEnd, 1.0)->Arg(100'000'000)->Unit(benchmark::kNanosecond);

/// The same with a snapshot before each letter, which is held until the next.
void typeBesideASnapshot(benchmark::State& state)
{
    TextTree tree(bench::sourceText(state.range(0)));
    qsizetype caret = tree.length() / 2;
    TextTree snapshot;
    for (auto _ : state) {
        snapshot = tree;
        tree.replace({caret++, 0}, u"x");
    }
    benchmark::DoNotOptimize(snapshot.length());
}
BENCHMARK(typeBesideASnapshot)->Arg(100'000'000)->Unit(benchmark::kNanosecond);

/// Places all over the text, the next one far from the last.
void lineOfOffset(benchmark::State& state)
{
    const TextTree tree(bench::sourceText(state.range(0)));
    qsizetype at = 0;
    for (auto _ : state) {
        at = (at + tree.length() / 3 + 7919) % tree.length();
        benchmark::DoNotOptimize(tree.lineAt(at));
    }
}
BENCHMARK(lineOfOffset)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kNanosecond);

void offsetOfLine(benchmark::State& state)
{
    const TextTree tree(bench::sourceText(state.range(0)));
    qsizetype line = 0;
    for (auto _ : state) {
        line = (line + tree.lineCount() / 3 + 7919) % tree.lineCount();
        benchmark::DoNotOptimize(tree.lineStart(line));
    }
}
BENCHMARK(offsetOfLine)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kNanosecond);

void wholeText(benchmark::State& state)
{
    const TextTree tree(bench::sourceText(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(tree.toString().constData());
    }
    state.SetItemsProcessed(state.iterations() * tree.length());
}
BENCHMARK(wholeText)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
