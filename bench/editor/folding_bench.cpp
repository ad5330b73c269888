// The scans for foldable regions over texts of one million units.
#include "editor/folding/fold_scans.h"

#include <QString>

#include <benchmark/benchmark.h>

namespace {

using Scan = std::vector<kelm::FoldableRegion> (*)(QStringView);

void run(benchmark::State& state, Scan scan, const QString& piece)
{
    constexpr qsizetype length = 1'000'000;
    const QString text = piece.repeated(length / piece.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(scan(text));
    }
}

const QString source =
    QStringLiteral("int sum(const std::vector<int>& v)\n{\n    int s = 0; // {\n    for (int x : v) {\n"
                   "        s += x;\n        puts(\"{\");\n    }\n    return s;\n}\n\n");
const QString script =
    QStringLiteral("def f(x):\n    if x:\n        for y in x:\n            print(y)\n            z(y)\n\n"
                   "    return x\n\n");
const QString page =
    QStringLiteral("<div class=\"row\">\n  <p id='a'>Text and <b>bold</b><br>\n  <img src=\"x\"/>\n  </p>\n"
                   "</div>\n");

BENCHMARK_CAPTURE(run, bracesOfSource, kelm::scanBraces, source)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, bracesAlone, kelm::scanBraces, QStringLiteral("{\n"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, indentsOfScript, kelm::scanIndents, script)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, indentsOfShortLines, kelm::scanIndents, QStringLiteral("x\n y\n"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, tagsOfPage, kelm::scanTags, page)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, tagsUnclosed, kelm::scanTags, QStringLiteral("<a>"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, tagsWithoutEnd, kelm::scanTags, QStringLiteral("<a "))->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
