// Searching and replacing in texts of ten million units.
#include "text/find/find_query.h"
#include "text/find/find_scan.h"

#include <QString>

#include <benchmark/benchmark.h>

namespace {

const kelm::TextTree& tree()
{
    static const kelm::TextTree text(
        QStringLiteral("    const auto value = compute(left, right); // a line of some source\n")
            .repeated(10'000'000 / 70));
    return text;
}

kelm::FindQuery query(const char* text, kelm::FindOptions options)
{
    return std::get<kelm::FindQuery>(kelm::FindQuery::compile(QString::fromUtf8(text), options));
}

void findAll(benchmark::State& state, const char* text, kelm::FindOptions options)
{
    const kelm::FindQuery compiled = query(text, options);
    for (auto _ : state) {
        kelm::FindScan scan(compiled);
        scan.finish(tree());
        benchmark::DoNotOptimize(scan.matches().size());
    }
    state.SetItemsProcessed(state.iterations() * tree().length());
}
BENCHMARK_CAPTURE(findAll, rareExact, "zebra", kelm::FindOptions{true, false, false})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, rareAnyCase, "Zebra", kelm::FindOptions{})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, oftenAnyCase, "Compute", kelm::FindOptions{})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, oftenWholeWord, "left", kelm::FindOptions{false, true, false})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, pattern, "\\w+\\(", kelm::FindOptions{false, false, true})->Unit(benchmark::kMillisecond);

void replaceAll(benchmark::State& state, const char* text, const char* replacement, kelm::FindOptions options)
{
    const kelm::FindQuery compiled = query(text, options);
    const QString with = QString::fromUtf8(replacement);
    for (auto _ : state) {
        benchmark::DoNotOptimize(compiled.replaceAll(tree(), with).count);
    }
    state.SetItemsProcessed(state.iterations() * tree().length());
}
BENCHMARK_CAPTURE(replaceAll, plain, "compute", "calculate", kelm::FindOptions{})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replaceAll, pattern, "(\\w+), (\\w+)", "$2, $1", kelm::FindOptions{false, false, true})
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
