// Parsing a large diff: bytes a second, one byte a character.
#include "git/diff/diff_parser.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using namespace kelm;

constexpr qsizetype size = 100'000'000;

/// A diff of about 100 MB: files of several hunks, lines of source code of the usual lengths.
const QString& largeDiff()
{
    static const QString diff = [] {
        std::mt19937 random(1);
        const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
        QString lineOfCode;
        for (int index = 0; index < 20; ++index) {
            lineOfCode += QStringLiteral("const int value%1 = f(x, y); ").arg(index);
        }
        QString text;
        text.reserve(size + 10000);
        for (int file = 0; text.size() < size; ++file) {
            text += QStringLiteral("diff --git a/src/f%1.cpp b/src/f%1.cpp\nindex 1111111..2222222 100644\n"
                                   "--- a/src/f%1.cpp\n+++ b/src/f%1.cpp\n")
                        .arg(file);
            for (int hunk = 0; hunk < 8; ++hunk) {
                text += QStringLiteral("@@ -%1,30 +%1,30 @@ void function()\n").arg(hunk * 100 + 1);
                for (int line = 0; line < 30; ++line) {
                    text += QLatin1Char("  +-"[below(4)]);
                    text += QStringView(lineOfCode).first(below(90));
                    text += u'\n';
                }
            }
        }
        return text;
    }();
    return diff;
}

void parseLargeDiff(benchmark::State& state)
{
    const QString& diff = largeDiff();
    for (auto _ : state) {
        QList<DiffFile> files = DiffParser::parse(diff);
        benchmark::DoNotOptimize(files.size());
        state.PauseTiming();
        files = {};
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * diff.size());
}
BENCHMARK(parseLargeDiff)->Unit(benchmark::kMillisecond);

/// The same with letting go of the result: a text for each of two million lines.
void parseAndReleaseLargeDiff(benchmark::State& state)
{
    const QString& diff = largeDiff();
    for (auto _ : state) {
        benchmark::DoNotOptimize(DiffParser::parse(diff).size());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * diff.size());
}
BENCHMARK(parseAndReleaseLargeDiff)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
