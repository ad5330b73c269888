// The foldable regions of texts of one to a hundred million units: fresh, and after one key.
#include "editor/folding/fold_scans.h"
#include "editor/folding/foldable_regions.h"
#include "text/storage/text_tree.h"

#include <QString>

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {

using namespace kelm;

using Scan = std::vector<FoldableRegion> (*)(QStringView);

struct Kind
{
    CodeFolding folding;
    Scan scan;
    const char* block;
    const char* key;
};

constexpr Kind source{CodeFolding::braces, scanBraces,
                      "int sum(const std::vector<int>& v)\n{\n    int s = 0; // {\n    for (int x : v) {\n"
                      "        s += x;\n        puts(\"{\");\n    }\n    return s;\n}\n\n",
                      "x"};
constexpr Kind quote{CodeFolding::braces, scanBraces, source.block, "\""};
constexpr Kind braces{CodeFolding::braces, scanBraces, "{\n", "{"};
constexpr Kind script{CodeFolding::indents, scanIndents,
                      "def f(x):\n    if x:\n        for y in x:\n            print(y)\n            z(y)\n\n"
                      "    return x\n\n",
                      "x"};
constexpr Kind shortLines{CodeFolding::indents, scanIndents, "x\n y\n", " "};
constexpr Kind page{CodeFolding::tags, scanTags,
                    "<div class=\"row\">\n  <p id='a'>Text and <b>bold</b><br>\n  <img src=\"x\"/>\n  </p>\n"
                    "</div>\n",
                    "x"};
constexpr Kind tag{CodeFolding::tags, scanTags, page.block, "<p>"};

QString textOf(const Kind& kind, qsizetype units)
{
    const QString block = QString::fromLatin1(kind.block);
    return block.repeated(units / block.size());
}

/// What every pause in typing would cost.
void scanned(benchmark::State& state, const Kind& kind)
{
    const QString text = textOf(kind, state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(kind.scan(text));
    }
}

void fresh(benchmark::State& state, const Kind& kind)
{
    const TextTree text(textOf(kind, state.range(0)));
    for (auto _ : state) {
        FoldableRegions regions(kind.folding);
        regions.reset(text.length());
        regions.settle(text);
        benchmark::DoNotOptimize(regions.isSettled());
    }
    const size_t before = mallinfo2().uordblks;
    FoldableRegions regions(kind.folding);
    regions.reset(text.length());
    regions.settle(text);
    state.counters["MB held"] = double(mallinfo2().uordblks - before) / 1e6;
}

/// A key at a place in the text, and what is then asked for the lines that are seen there. The key is taken back with
/// the next one.
void typed(benchmark::State& state, const Kind& kind, double share)
{
    TextTree text(textOf(kind, state.range(0)));
    const QString key = QString::fromLatin1(kind.key);
    const auto caret = qsizetype(share * double(text.length()));
    const qsizetype line = text.lineAt(caret) + 1;
    FoldableRegions regions(kind.folding);
    regions.reset(text.length());
    regions.settle(text);
    bool isTyped = false;
    for (auto _ : state) {
        state.PauseTiming();
        const TextRange range{caret, isTyped ? key.size() : 0};
        const QStringView put = isTyped ? QStringView() : QStringView(key);
        text.replace(range, put);
        isTyped = !isTyped;
        state.ResumeTiming();
        regions.textReplaced(range, put.size());
        regions.settle(text);
        for (qsizetype seen = line - 30; seen < line + 30; ++seen) {
            benchmark::DoNotOptimize(regions.firstRegionStartingAt(seen));
        }
    }
}

void ofSizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(1'000'000)->Arg(10'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(scanned, source, source)->Apply(ofSizes);
BENCHMARK_CAPTURE(fresh, source, source)->Apply(ofSizes);
BENCHMARK_CAPTURE(scanned, braces, braces)->Apply(ofSizes);
BENCHMARK_CAPTURE(fresh, braces, braces)->Apply(ofSizes);
BENCHMARK_CAPTURE(scanned, script, script)->Apply(ofSizes);
BENCHMARK_CAPTURE(fresh, script, script)->Apply(ofSizes);
BENCHMARK_CAPTURE(scanned, shortLines, shortLines)->Apply(ofSizes);
BENCHMARK_CAPTURE(fresh, shortLines, shortLines)->Apply(ofSizes);
BENCHMARK_CAPTURE(scanned, page, page)->Apply(ofSizes);
BENCHMARK_CAPTURE(fresh, page, page)->Apply(ofSizes);

void inLargeTexts(benchmark::internal::Benchmark* benchmark)
{
    ofSizes(benchmark);
    benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(typed, sourceAtTheStart, source, 0.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, sourceInTheMiddle, source, 0.5)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, sourceAtTheEnd, source, 1.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, quoteAtTheStart, quote, 0.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, bracesAtTheStart, braces, 0.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, scriptAtTheStart, script, 0.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, scriptInTheMiddle, script, 0.5)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, scriptAtTheEnd, script, 1.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, pageAtTheStart, page, 0.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, pageInTheMiddle, page, 0.5)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, pageAtTheEnd, page, 1.0)->Apply(inLargeTexts);
BENCHMARK_CAPTURE(typed, tagAtTheStart, tag, 0.0)->Apply(inLargeTexts);

} // namespace

BENCHMARK_MAIN();
