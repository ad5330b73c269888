#include "editor/kept_ready/completion_ranking.h"

#include <benchmark/benchmark.h>

#include <array>

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// One keystroke's list over all tables: the keywords of each language in turn, with the snippets.
void keystroke(benchmark::State& state)
{
    const QStringList words{u"f"_s, u"re"_s, u"S"_s, u"@St"_s, u"zz"_s, u"con"_s};
    const std::array languages{Language(Language::swift), Language(Language::python), Language(Language::javascript),
                               Language(Language::go), Language(Language::rust)};
    qsizetype turn = 0;
    for (auto _ : state) {
        for (const Language language : languages) {
            benchmark::DoNotOptimize(getSuggestions(words[turn % words.size()], language));
        }
        ++turn;
    }
}

/// The longest list there is.
void everything(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(getSuggestions(QString(), Language::swift));
    }
}

} // namespace

BENCHMARK(keystroke)->Unit(benchmark::kMicrosecond);
BENCHMARK(everything)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
