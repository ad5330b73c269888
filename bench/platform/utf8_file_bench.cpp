// Reading text files: what strict decoding costs beside the copying of the same bytes.
#include "platform/files/atomic_file.h"
#include "platform/files/utf8_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

constexpr qsizetype size = 100'000'000;

enum Text { source, korean, mixed, astral };

/// 100 MB of one kind of text.
const QByteArray& bytesOf(Text text)
{
    static const QByteArray units[] = {"int main() { return 0; } // a line of code\n", "안녕하세요 세계\n",
                                       "caf\xc3\xa9 au lait \xe2\x80\x93 d\xc3\xa9j\xc3\xa0 vu\n", "\xf0\x9f\x98\x80"};
    static QByteArray texts[std::size(units)];
    QByteArray& bytes = texts[text];
    if (bytes.isEmpty()) {
        bytes = units[text].repeated(size / units[text].size());
    }
    return bytes;
}

void count(benchmark::State& state, qsizetype bytes)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes);
}

void copyBytes(benchmark::State& state)
{
    const QByteArray& bytes = bytesOf(source);
    for (auto _ : state) {
        QByteArray copy(bytes.size(), Qt::Uninitialized);
        std::memcpy(copy.data(), bytes.constData(), std::size_t(bytes.size()));
        benchmark::DoNotOptimize(copy.data());
    }
    count(state, bytes.size());
}

void decodeText(benchmark::State& state)
{
    const QByteArray& bytes = bytesOf(Text(state.range(0)));
    for (auto _ : state) {
        std::optional<QString> text = kelm::decodeUtf8Text(bytes);
        benchmark::DoNotOptimize(text);
    }
    count(state, bytes.size());
}

void encodeText(benchmark::State& state)
{
    const QString text = *kelm::decodeUtf8Text(bytesOf(Text(state.range(0))));
    for (auto _ : state) {
        QByteArray bytes = kelm::encodeUtf8Text(text);
        benchmark::DoNotOptimize(bytes.data());
    }
    count(state, size);
}

void readFile(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    kelm::writeAtomically(path, bytesOf(Text(state.range(0))));
    for (auto _ : state) {
        auto text = kelm::readUtf8File(path);
        benchmark::DoNotOptimize(text);
    }
    count(state, size);
}

void readBytesOfFile(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    kelm::writeAtomically(path, bytesOf(source));
    for (auto _ : state) {
        QFile file(path);
        static_cast<void>(file.open(QIODevice::ReadOnly));
        QByteArray bytes = file.readAll();
        benchmark::DoNotOptimize(bytes.data());
    }
    count(state, size);
}

void saveFile(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    const QByteArray bytes = bytesOf(source).first(state.range(0));
    for (auto _ : state) {
        kelm::writeAtomically(path, bytes);
    }
    count(state, bytes.size());
}

} // namespace

BENCHMARK(copyBytes)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeText)->Arg(source)->Arg(korean)->Arg(mixed)->Arg(astral)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeText)->Arg(source)->Arg(korean)->Unit(benchmark::kMillisecond);
BENCHMARK(readBytesOfFile)->Unit(benchmark::kMillisecond);
BENCHMARK(readFile)->Arg(source)->Arg(korean)->Unit(benchmark::kMillisecond);
BENCHMARK(saveFile)->Arg(100'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
