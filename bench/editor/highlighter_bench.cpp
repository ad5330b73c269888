// One whole recolouring of a text, for each family of languages: the reset, all rules, the runs and their handing over
// to the text storage. The texts are made of the lines of the test corpora; the second number is the length in UTF-16
// units.
#include "corpora.h"
#include "editor/highlighter/syntax_highlighter.h"

#include <benchmark/benchmark.h>

using namespace kelm;

namespace {

void recolour(benchmark::State& state, const Corpus& corpus)
{
    const auto length = static_cast<qsizetype>(state.range(0));
    TextStorage storage;
    storage.setText(sourceOf(corpus, length));
    const SyntaxHighlighter highlighter(EditorTheme::monokai());
    for (auto _ : state) {
        highlighter.highlight(&storage, corpus.language);
        benchmark::DoNotOptimize(storage.foreground());
    }
    state.SetItemsProcessed(state.iterations() * length);
}

} // namespace

int main(int argc, char** argv)
{
    for (const Corpus& corpus : corpora) {
        benchmark::RegisterBenchmark(corpus.name, [&corpus](benchmark::State& state) { recolour(state, corpus); })
            ->Arg(1'000'000)
            ->Arg(10'000'000)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
