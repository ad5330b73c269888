// A project search against grep on the same tree of small files. KELM_BENCH_FILES sets their number (20,000).
#include "search/project_scan.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

/// A tree of sources, one in a hundred of which holds the word.
const QString& tree()
{
    static const QTemporaryDir folder;
    static const QString root = [] {
        const int files = qEnvironmentVariableIntValue("KELM_BENCH_FILES") > 0
                              ? qEnvironmentVariableIntValue("KELM_BENCH_FILES")
                              : 20'000;
        const QByteArray text =
            QByteArray("let value = compute(width: 12, height: 30) // a line of a source\n").repeated(60);
        for (int file = 0; file < files; ++file) {
            const QString path = folder.filePath(QStringLiteral("d%1/e%2").arg(file / 1000).arg(file / 50));
            QDir().mkpath(path);
            QFile out(path + QStringLiteral("/f%1.swift").arg(file));
            if (out.open(QIODevice::WriteOnly)) {
                out.write(file % 100 == 0 ? text + "the Needle of the haystack\n" : text);
            }
        }
        return folder.path();
    }();
    return root;
}

void scan(benchmark::State& state)
{
    const QString root = tree();
    qint64 results = 0;
    for (auto _ : state) {
        results = 0;
        kelm::scanProject(root, kelm::LocalizedNeedle(QStringLiteral("needle")),
                          {[&results](const kelm::SearchResult&) { ++results; }, [] { return false; }});
    }
    state.counters["results"] = static_cast<double>(results);
}
BENCHMARK(scan)->Unit(benchmark::kMillisecond)->UseRealTime();

void grep(benchmark::State& state)
{
    const QString root = tree();
    for (auto _ : state) {
        QProcess process;
        process.start(QStringLiteral("grep"), {QStringLiteral("-rIiF"), QStringLiteral("needle"), root});
        process.waitForFinished(-1);
        benchmark::DoNotOptimize(process.readAll());
    }
}
BENCHMARK(grep)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
