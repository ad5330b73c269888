// A folder of 50,000 entries listed, and the badges of 10,000 entries of git's status.
#include "files/file_item.h"
#include "files/git_badge.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

void list(benchmark::State& state)
{
    const QTemporaryDir folder;
    for (int file = 0; file < 50'000; ++file) {
        QFile out(folder.filePath(QStringLiteral("file %1.txt").arg(file)));
        out.open(QIODevice::WriteOnly);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(kelm::listFolder(QUrl::fromLocalFile(folder.path())));
    }
}
BENCHMARK(list)->Unit(benchmark::kMillisecond);

void badges(benchmark::State& state)
{
    QList<kelm::GitFileStatus> status;
    for (int file = 0; file < 10'000; ++file) {
        status.append({QUuid::createUuid(), QStringLiteral("some/deep/folder%1/file%2.txt").arg(file / 100).arg(file),
                       std::nullopt, kelm::GitFileChange::modified});
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(kelm::GitBadges(status, QUrl::fromLocalFile(QStringLiteral("/repo"))));
    }
}
BENCHMARK(badges)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
