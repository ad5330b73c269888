// The colours of a new text, for each family of languages, until nothing of them is a guess any more: what is done at
// once, and what a worker does. The texts are made of the lines of the test corpora; the second number is the length in
// UTF-16 units.
#include "corpora.h"
#include "editor/highlighter/syntax_highlighter.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

using namespace kelm;

namespace {

void recolour(benchmark::State& state, const Corpus& corpus)
{
    const auto length = static_cast<qsizetype>(state.range(0));
    const QString text = sourceOf(corpus, length);
    for (auto _ : state) {
        TextStorage storage;
        storage.setText(text);
        SyntaxHighlighter highlighter(EditorTheme::monokai());
        highlighter.highlight(&storage, corpus.language);
        while (!highlighter.isSettled()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        benchmark::DoNotOptimize(storage.colorsIn({0, 1000}));
    }
    state.SetItemsProcessed(state.iterations() * length);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    for (const Corpus& corpus : corpora) {
        benchmark::RegisterBenchmark(corpus.name, [&corpus](benchmark::State& state) { recolour(state, corpus); })
            ->Arg(1'000'000)
            ->Arg(10'000'000)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
