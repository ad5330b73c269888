// Opening files of 100 MB: from the disk's cache into the tree of a text.
#include "app/state/text_file.h"
#include "platform/files/atomic_file.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr qsizetype size = 100'000'000;

void readText(benchmark::State& state, const QByteArray& line)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    kelm::writeAtomically(path, line.repeated(size / line.size()));
    for (auto _ : state) {
        auto text = kelm::readTextFile(QUrl::fromLocalFile(path));
        benchmark::DoNotOptimize(std::get<kelm::TextTree>(text).lineCount());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * size);
}

const QByteArray source = "int main() { return 0; } // a line of code\n";
const QByteArray korean = "안녕하세요 세계\n";
const QByteArray mixed = "caf\xc3\xa9 au lait \xe2\x80\x93 d\xc3\xa9j\xc3\xa0 vu\n";

} // namespace

BENCHMARK_CAPTURE(readText, source, source)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(readText, korean, korean)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(readText, mixed, mixed)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
