// The colours of a text after it has come and after one key: settling all of it, then a key at its start, in its middle
// and at its end with the settling after it and the colours of what is around it. The texts are made of the lines of
// the test corpora; the second number is the length in UTF-16 units.
#include "corpora.h"
#include "editor/highlighter/rule_tracks.h"

#include <benchmark/benchmark.h>

using namespace kelm;

namespace {

std::vector<QRgb> colorsOf(RuleList rules)
{
    std::vector<QRgb> colors(rules.size() + 1);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        colors[i] = static_cast<QRgb>(i);
    }
    return colors;
}

void settle(benchmark::State& state, const Corpus& corpus)
{
    const auto length = static_cast<qsizetype>(state.range(0));
    const TextTree text(sourceOf(corpus, length));
    RuleTracks tracks(rules::of(corpus.language));
    for (auto _ : state) {
        tracks.reset(length);
        benchmark::DoNotOptimize(tracks.settle(text));
    }
    state.SetItemsProcessed(state.iterations() * length);
    state.counters["kept"] = static_cast<double>(tracks.keptBytes());
}

/// A letter typed at a share of the text, and taken away again.
void type(benchmark::State& state, const Corpus& corpus, double share)
{
    const auto length = static_cast<qsizetype>(state.range(0));
    TextTree text(sourceOf(corpus, length));
    RuleTracks tracks(rules::of(corpus.language));
    tracks.reset(length);
    tracks.settle(text);
    const std::vector<QRgb> colors = colorsOf(rules::of(corpus.language));
    const auto place = static_cast<qsizetype>(static_cast<double>(length) * share);
    bool isThere = false;
    qsizetype changed = 0;
    for (auto _ : state) {
        const TextRange range{place, isThere ? 1 : 0};
        const QString typed = isThere ? QString() : QStringLiteral("x");
        text.replace(range, typed);
        tracks.textReplaced(range, typed.size());
        for (const TextRange told : tracks.settle(text)) {
            changed = std::max(changed, told.length);
        }
        benchmark::DoNotOptimize(tracks.colorsIn(text, TextRange::between(place - 4096, place + 4096), colors));
        isThere = !isThere;
    }
    state.counters["changed"] = static_cast<double>(changed);
}

} // namespace

int main(int argc, char** argv)
{
    for (const Corpus& corpus : corpora) {
        const std::string name(corpus.name);
        benchmark::RegisterBenchmark((name + "/settle").c_str(),
                                     [&corpus](benchmark::State& state) { settle(state, corpus); })
            ->RangeMultiplier(10)
            ->Range(1'000'000, 100'000'000)
            ->Unit(benchmark::kMillisecond);
        for (const auto& [where, share] : {std::pair{"/start", 0.0}, {"/middle", 0.5}, {"/end", 1.0}}) {
            benchmark::RegisterBenchmark((name + where).c_str(),
                                         [&corpus, share](benchmark::State& state) { type(state, corpus, share); })
                ->Arg(1'000'000)
                ->Arg(100'000'000)
                ->Unit(benchmark::kMicrosecond);
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
