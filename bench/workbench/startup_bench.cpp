// From the start of a process to its first painted window: the editor with a source of 2,600 lines, and an empty
// window.
#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

void start(benchmark::State& state, const QString& program, const QStringList& arguments)
{
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
        environment.insert(QString::fromLatin1(variable), home.path());
    }
    for (auto _ : state) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        if (!process.waitForFinished() || process.exitCode() != 0) {
            state.SkipWithError("the program did not start");
            return;
        }
    }
}

void emptyWindow(benchmark::State& state)
{
    start(state, QStringLiteral(KELM_EMPTY_WINDOW), {});
}

void editorWithASource(benchmark::State& state)
{
    const QTemporaryDir folder;
    QFile source(folder.filePath(QStringLiteral("source.swift")));
    QFile sample(QStringLiteral(KELM_SOURCE_ROOT "/tests/editor/data/swift.swift"));
    if (!source.open(QIODevice::WriteOnly) || !sample.open(QIODevice::ReadOnly)) {
        state.SkipWithError("cannot write the source");
        return;
    }
    const QByteArray text = sample.readAll();
    for (qsizetype lines = 0; lines < 2600; lines += text.count('\n')) {
        source.write(text);
    }
    source.close();
    start(state, QStringLiteral(KELM_WINDOW_START), {source.fileName()});
}

BENCHMARK(emptyWindow)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(20);
BENCHMARK(editorWithASource)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(20);

} // namespace

BENCHMARK_MAIN();
