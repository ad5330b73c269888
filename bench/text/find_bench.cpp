// Searching and replacing in texts of ten and a hundred million units, and typing in them while a search goes on.
#include "text/find/find_query.h"
#include "text/find/find_scan.h"
#include "text/find/find_session.h"
#include "text/source_text.h"

#include <QCoreApplication>
#include <QString>

#include <benchmark/benchmark.h>

#include <atomic>
#include <ctime>
#include <map>

namespace {

const kelm::TextTree& tree(qsizetype length = 10'000'000)
{
    static const QString line =
        QStringLiteral("    const auto value = compute(left, right); // a line of some source\n");
    static std::map<qsizetype, kelm::TextTree> texts;
    const auto known = texts.find(length);
    return known != texts.end()
               ? known->second
               : texts.emplace(length, kelm::TextTree(line.repeated(length / line.size()))).first->second;
}

kelm::FindQuery query(const char* text, kelm::FindOptions options)
{
    return std::get<kelm::FindQuery>(kelm::FindQuery::compile(QString::fromUtf8(text), options));
}

/// As a worker does it for a session.
void findAll(benchmark::State& state, const char* text, kelm::FindOptions options)
{
    const kelm::FindQuery compiled = query(text, options);
    const kelm::TextTree& searched = tree(state.range(0));
    const std::atomic<bool> stop = false;
    for (auto _ : state) {
        kelm::FindScan scan(compiled);
        kelm::FindRun run(compiled, searched, 0);
        while (scan.state() == kelm::FindScan::State::searching) {
            scan.take(run.next(stop));
        }
        benchmark::DoNotOptimize(scan.matches().size());
    }
    state.SetItemsProcessed(state.iterations() * searched.length());
}
BENCHMARK_CAPTURE(findAll, rareExact, "zebra", kelm::FindOptions{true, false, false})
    ->Arg(10'000'000)
    ->Arg(100'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, rareAnyCase, "Zebra", kelm::FindOptions{})
    ->Arg(10'000'000)
    ->Arg(100'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, oftenAnyCase, "Compute", kelm::FindOptions{})
    ->Arg(10'000'000)
    ->Arg(100'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, oftenWholeWord, "left", kelm::FindOptions{false, true, false})
    ->Arg(10'000'000)
    ->Arg(100'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findAll, pattern, "\\w+\\(", kelm::FindOptions{false, false, true})
    ->Arg(10'000'000)
    ->Arg(100'000'000)
    ->Unit(benchmark::kMillisecond);

void replaceAll(benchmark::State& state, const char* text, const char* replacement, kelm::FindOptions options)
{
    const kelm::FindQuery compiled = query(text, options);
    const QString with = QString::fromUtf8(replacement);
    for (auto _ : state) {
        benchmark::DoNotOptimize(compiled.replaceAll(tree(), with).count);
    }
    state.SetItemsProcessed(state.iterations() * tree().length());
}
BENCHMARK_CAPTURE(replaceAll, plain, "compute", "calculate", kelm::FindOptions{})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replaceAll, pattern, "(\\w+), (\\w+)", "$2, $1", kelm::FindOptions{false, false, true})
    ->Unit(benchmark::kMillisecond);

/// The time that this thread has worked, so that others on the machine do not count.
double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

/// How long the main thread is kept by a key in a text whose matches are shown, and by the longest turn of its event
/// loop until the search rests again.
void keyWithAnOpenSession(benchmark::State& state, const char* text, bool isPattern)
{
    kelm::TextStorage storage;
    storage.setText(kelm::bench::sourceText(state.range(0)));
    kelm::SearchEngine engine;
    kelm::FindSession session(storage, engine);
    engine.setSearchText(QString::fromLatin1(text));
    engine.setUseRegex(isPattern);
    session.start(storage.length() / 2);
    double longest = 0;
    const auto timed = [&longest](const auto& work) {
        const double start = threadSeconds();
        work();
        const double seconds = threadSeconds() - start;
        longest = std::max(longest, seconds);
        return seconds;
    };
    const auto untilItRests = [&] {
        while (session.state() == kelm::FindScan::State::searching) {
            timed([] { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); });
        }
    };
    untilItRests();
    longest = 0;
    bool isTyped = false;
    for (auto _ : state) {
        const kelm::TextRange place{storage.length() / 2, isTyped ? 1 : 0};
        state.SetIterationTime(
            timed([&] { storage.replace(place, isTyped ? QStringLiteral("") : QStringLiteral("x")); }));
        isTyped = !isTyped;
        untilItRests();
    }
    state.counters["longestTurn"] = longest;
    state.counters["matches"] = double(session.matchCount());
}
BENCHMARK_CAPTURE(keyWithAnOpenSession, text, "revenue", false)
    ->Arg(10'000'000)
    ->Arg(100'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keyWithAnOpenSession, pattern, "reven[u]e", true)
    ->Arg(10'000'000)
    ->Arg(100'000'000)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMicrosecond);

/// In one line: found, stepped to, and one replaced.
void findStepAndReplaceInOneLine(benchmark::State& state, bool isPattern)
{
    const QString line = kelm::bench::longLine(5'000'000);
    kelm::TextStorage storage;
    kelm::SearchEngine engine;
    kelm::FindSession session(storage, engine);
    engine.setSearchText(isPattern ? QStringLiteral("[v]alue") : QStringLiteral("value"));
    engine.setUseRegex(isPattern);
    engine.setReplaceText(QStringLiteral("calculate"));
    for (auto _ : state) {
        state.PauseTiming();
        storage.setText(line);
        state.ResumeTiming();
        session.start(storage.length() / 2);
        session.stepForward(storage.length() / 2);
        while (!session.currentMatch()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        const kelm::TextRange match = *session.currentMatch();
        storage.replace(match, session.replacementForCurrent().value_or(QString()));
        session.stepForward(match.end());
        state.PauseTiming();
        session.stop();
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(findStepAndReplaceInOneLine, text, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findStepAndReplaceInOneLine, pattern, true)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
