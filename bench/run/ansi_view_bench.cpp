// 100 MB of coloured output from the child's bytes to the terminal's view, and the frames that it is shown in.
#include "platform/text/utf8_chunk_decoder.h"
#include "run/ansi_parser.h"
#include "run/view/terminal_text_view.h"

#include <QApplication>
#include <QByteArray>

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

using namespace kelm;

constexpr qsizetype outputSize = 100'000'000;
constexpr qsizetype chunkSize = qsizetype(64) * 1024;

/// Hands the output to the view as it is read from a child, a turn of the event loop and so a frame after each chunk.
void run(benchmark::State& state, const QByteArray& line)
{
    const QByteArray output = line.repeated(outputSize / line.size());
    double longestFrame = 0;
    for (auto _ : state) {
        TerminalTextView view;
        view.resize(1200, 280);
        view.show();
        QCoreApplication::processEvents();
        Utf8ChunkDecoder decoder;
        for (qsizetype from = 0; from < output.size(); from += chunkSize) {
            const auto start = std::chrono::steady_clock::now();
            const auto size = std::min(chunkSize, output.size() - from);
            if (const auto text = decoder.decode(QByteArrayView(output).sliced(from, size))) {
                view.appendOutput(ANSIParser::parse(*text));
            }
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
            const std::chrono::duration<double, std::milli> frame = std::chrono::steady_clock::now() - start;
            longestFrame = std::max(longestFrame, frame.count());
        }
        benchmark::DoNotOptimize(view.commandStartLocation());
    }
    state.SetBytesProcessed(state.iterations() * output.size());
    state.counters["longest_frame_ms"] = longestFrame;
}

BENCHMARK_CAPTURE(run, plain, "2026-11-20 12:00:00 INFO  request served in 12 ms, 3 rows\n")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, coloredLines,
                  "\x1b[32m2026-11-20 12:00:00\x1b[0m \x1b[1;34mINFO\x1b[0m  request served in 12 ms\n")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, coloredFolderListing, "\x1b[0m\x1b[01;34msrc\x1b[0m  \x1b[01;32mkelm\x1b[0m  LICENSE\n")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, coloredKorean, "\x1b[33m경고\x1b[0m 파일을 찾을 수 없습니다\n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, endlessLine, "\x1b[32m########\x1b[0m....")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
