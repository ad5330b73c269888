// Word diffs of ordinary and of very long lines.
#include "git/diff/word_diff.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using namespace kelm;

/// A line of so many tokens of few kinds: the table has no easy parts.
QString line(int tokens, unsigned seed)
{
    std::mt19937 random(seed);
    QString text;
    for (int index = 0; index < tokens; index += 2) {
        text += QChar(u'a' + std::uniform_int_distribution<int>(0, 9)(random));
        text += u',';
    }
    return text;
}

void diffOfTokens(benchmark::State& state)
{
    const QString oldLine = line(static_cast<int>(state.range(0)), 1);
    const QString newLine = line(static_cast<int>(state.range(0)), 2);
    for (auto _ : state) {
        benchmark::DoNotOptimize(WordDiff::diff(oldLine, newLine));
    }
}
BENCHMARK(diffOfTokens)->Arg(20)->Arg(200)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

/// One word of a long line differs.
void diffOfOneWord(benchmark::State& state)
{
    const QString oldLine = line(100'000, 1) + QStringLiteral("old") + line(100'000, 2);
    const QString newLine = line(100'000, 1) + QStringLiteral("new") + line(100'000, 2);
    for (auto _ : state) {
        benchmark::DoNotOptimize(WordDiff::diff(oldLine, newLine));
    }
}
BENCHMARK(diffOfOneWord)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
