// 100 MB of output on its way to the terminal: decoded and parsed chunk by chunk, as it is read from the child.
#include "platform/text/utf8_chunk_decoder.h"
#include "run/ansi_parser.h"

#include <QByteArray>

#include <benchmark/benchmark.h>

namespace {

constexpr qsizetype outputSize = 100'000'000;
constexpr qsizetype chunkSize = 64 * 1024;

void run(benchmark::State& state, const QByteArray& line)
{
    const QByteArray output = line.repeated(outputSize / line.size());
    std::size_t runs = 0;
    for (auto _ : state) {
        kelm::Utf8ChunkDecoder decoder;
        runs = 0;
        for (qsizetype from = 0; from < output.size(); from += chunkSize) {
            const auto size = std::min(chunkSize, output.size() - from);
            if (const auto text = decoder.decode(QByteArrayView(output).sliced(from, size))) {
                const kelm::AttributedText parsed = kelm::ANSIParser::parse(*text);
                runs += parsed.runs.size();
                benchmark::DoNotOptimize(parsed);
            }
        }
    }
    state.SetBytesProcessed(state.iterations() * output.size());
    state.counters["runs"] = double(runs);
}

BENCHMARK_CAPTURE(run, plain, "2026-11-20 12:00:00 INFO  request served in 12 ms, 3 rows\n")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, coloredLines,
                  "\x1b[32m2026-11-20 12:00:00\x1b[0m \x1b[1;34mINFO\x1b[0m  request served in 12 ms\n")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, coloredFolderListing, "\x1b[0m\x1b[01;34msrc\x1b[0m  \x1b[01;32mkelm\x1b[0m  LICENSE\n")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, colorPerCharacter, "\x1b[31ma\x1b[32mb\x1b[33mc\x1b[91md")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, coloredKorean, "\x1b[33m경고\x1b[0m 파일을 찾을 수 없습니다\n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, sequencesCutOff, "\x1b[31;32;33;34;")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
