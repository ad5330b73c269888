// Copies of the unsaved text of a document of 100 MB: what the main thread gives for them, and what the disk takes.
#include "app/recovery/recovery_store.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace kelm;
using namespace std::chrono_literals;

constexpr qsizetype units = 100'000'000;
constexpr auto patience = 60s;

struct Typing
{
    QTemporaryDir folder;
    ManualScheduler scheduler;
    RecoveryStore store{scheduler, folder.filePath(QStringLiteral("unsaved"))};
    std::shared_ptr<Document> document = std::make_shared<Document>(
        QStringLiteral("some words of a line of code that is not short\n").repeated(units / 47), std::nullopt,
        std::nullopt, std::nullopt);
    TextTree text = document->text();

    Typing() { store.setDocuments({document}); }

    void type(qsizetype at)
    {
        text.replace({at % text.length(), 0}, u"typed");
        document->setText(text);
    }
};

/// On the main thread: a snapshot is taken, and its copy begun.
void beginWholeCopy(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto typing = std::make_unique<Typing>();
        typing->type(units / 2);
        state.ResumeTiming();
        typing->scheduler.advance(RecoveryStore::delay);
        state.PauseTiming();
        typing->store.finish(patience);
        typing.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(beginWholeCopy)->Iterations(5)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// By the worker: the whole copy, from the snapshot to the disk.
void wholeCopy(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto typing = std::make_unique<Typing>();
        typing->type(units / 2);
        state.ResumeTiming();
        typing->store.finish(patience);
        state.PauseTiming();
        typing.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(wholeCopy)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();

/// On the main thread, once the text has its copy.
void beginEdit(benchmark::State& state)
{
    Typing typing;
    typing.type(0);
    typing.store.finish(patience);
    for (auto _ : state) {
        state.PauseTiming();
        typing.type(qsizetype(state.iterations()) * 7'919'000 + 1);
        state.ResumeTiming();
        typing.scheduler.advance(RecoveryStore::delay);
        state.PauseTiming();
        typing.store.finish(patience);
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(beginEdit)->Iterations(50)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// By the worker: what was typed is found and put behind the copy.
void putEditBehind(benchmark::State& state)
{
    Typing typing;
    typing.type(0);
    typing.store.finish(patience);
    for (auto _ : state) {
        state.PauseTiming();
        QCoreApplication::processEvents();
        typing.type(qsizetype(state.iterations()) * 7'919'000 + 1);
        state.ResumeTiming();
        typing.store.finish(patience);
    }
}
BENCHMARK(putEditBehind)->Iterations(50)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// On the main thread: the signal of a key.
void noteKey(benchmark::State& state)
{
    Typing typing;
    typing.type(0);
    for (auto _ : state) {
        Q_EMIT typing.document->contentChanged();
    }
}
BENCHMARK(noteKey);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
