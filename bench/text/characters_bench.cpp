// Carets, counts and word stops across one long line of scripts whose characters are several units, or one.
#include "text/boundaries/text_boundaries.h"
#include "text/storage/text_tree.h"

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

constexpr qsizetype lineLength = 1'000'000;

QString lineOf(QStringView unit)
{
    QString line;
    line.reserve(lineLength + unit.size());
    while (line.size() < lineLength) {
        line += unit;
    }
    return line;
}

const QString korean = lineOf(u"한글로 쓴 코드는 읽기 쉽다. ");
const QString letters = lineOf(u"\u1112\u1161\u11ab\u1100\u1173\u11af ");
const QString hindi = lineOf(u"क्षत्रिय हिन्दी में लिखते हैं। ");
const QString thai = lineOf(u"ภาษาไทยกำลังเขียน");
const QString chinese = lineOf(u"今天天气很好我们去公园散步吧，");
const QString emoji = lineOf(u"👩‍👩‍👧👍🏽😀❤️");
const QString flags = lineOf(u"🇰🇷");
const QString marks = lineOf(u"\u0301");
const QString code = lineOf(u"const auto value = table.find(key);  // ");

/// A caret from the start of the line to its end.
void wholeLine(benchmark::State& state, const QString& line)
{
    const TextTree text(line);
    qsizetype characters = 0;
    for (auto _ : state) {
        characters = 0;
        for (qsizetype at = 0; at < text.length(); at = nextGraphemeBoundary(text, at)) {
            ++characters;
        }
    }
    state.counters["characters"] = static_cast<double>(characters);
}

/// One step ahead and one back in the middle of it.
void stepInTheMiddle(benchmark::State& state, const QString& line)
{
    const TextTree text(line);
    qsizetype at = graphemeBoundaryAtOrBefore(text, line.size() / 2);
    for (auto _ : state) {
        at = nextGraphemeBoundary(text, at);
        at = previousGraphemeBoundary(text, at);
        benchmark::DoNotOptimize(at);
    }
}

void count(benchmark::State& state, const QString& line)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(graphemeCount(line));
    }
    state.SetItemsProcessed(state.iterations() * line.size());
}

void wordInTheMiddle(benchmark::State& state, const QString& line)
{
    const TextTree text(line);
    for (auto _ : state) {
        const qsizetype end = nextWordEnd(text, line.size() / 2);
        benchmark::DoNotOptimize(previousWordStart(text, end));
    }
}

void registerAll()
{
    const std::pair<const char*, const QString*> lines[] = {
        {"code", &code}, {"korean", &korean},   {"letters", &letters}, {"hindi", &hindi},
        {"thai", &thai}, {"chinese", &chinese}, {"emoji", &emoji}};
    for (const auto& [name, line] : lines) {
        const auto named = [name = std::string(name)](const char* what) { return what + ("/" + name); };
        benchmark::RegisterBenchmark(named("wholeLine").c_str(), wholeLine, *line)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(named("step").c_str(), stepInTheMiddle, *line)->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(named("count").c_str(), count, *line)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(named("word").c_str(), wordInTheMiddle, *line)->Unit(benchmark::kMicrosecond);
    }
    for (const auto& [name, line] : {std::pair("step/flags", &flags), std::pair("step/marks", &marks)}) {
        benchmark::RegisterBenchmark(name, stepInTheMiddle, *line)->Unit(benchmark::kMicrosecond);
    }
}

} // namespace

int main(int argc, char** argv)
{
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
