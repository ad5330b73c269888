// Comparing and containing texts under canonical equivalence, in lines of a hundred thousand units and of a million.
#include "platform/text/canonical_text.h"
#include "platform/text/string_comparison.h"
#include "search/localized_needle.h"

#include <QString>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

QString line(const QString& part, qsizetype length)
{
    return part.repeated(length / part.size());
}

const QString korean = QStringLiteral("한글은 아름답다");
const QString accents = QStringLiteral("Déjà vu, E\u0301te\u0301 ");
/// A letter's marks that stand against their order, as no language has them.
const QString marks = QStringLiteral("\u0301\u0323");

void fold(benchmark::State& state, const QString& part)
{
    const QString text = line(part, state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(decomposedWithoutCase(text).size());
    }
}
BENCHMARK_CAPTURE(fold, korean, korean)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fold, accents, accents)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fold, marks, marks)->Arg(20'000)->Arg(40'000)->Unit(benchmark::kMillisecond);

void compare(benchmark::State& state, const QString& part)
{
    const StringComparison comparison(QStringLiteral("ko_KR"));
    const QString text = line(part, state.range(0));
    const QString other = decomposed(text);
    for (auto _ : state) {
        benchmark::DoNotOptimize(comparison.localizedCaseInsensitiveCompare(text, other));
    }
}
BENCHMARK_CAPTURE(compare, korean, korean)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, accents, accents)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(compare, marks, marks)->Arg(20'000)->Arg(40'000)->Unit(benchmark::kMillisecond);

/// Something that nearly stands everywhere.
void contain(benchmark::State& state, const QString& part, qsizetype wanted)
{
    const LocalizedNeedle needle(QStringLiteral("x") + line(part, wanted));
    const QString text = line(part, state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(needle.isIn(text));
    }
}
BENCHMARK_CAPTURE(contain, aWord, korean, 8)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(contain, aSentence, QStringLiteral("한"), 100)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(contain, aPage, QStringLiteral("한"), 5'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
