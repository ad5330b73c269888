// Formatters over whole documents of 50 million units.
#include "editor/transforms/json_formatter.h"
#include "editor/transforms/text_transformer.h"
#include "editor/transforms/xml_formatter.h"

#include <QString>

#include <benchmark/benchmark.h>

namespace {

constexpr qsizetype documentLength = 50'000'000;

QString repeated(const QString& piece, qsizetype length)
{
    return piece.repeated(length / piece.size());
}

void formatRecords(benchmark::State& state)
{
    const QString record =
        QStringLiteral(R"({"name":"Anna Kowalska","id":12345,"tags":["a","b\n"],"geo":{"y":1.5,"x":-2}},)");
    const QString text = u'[' + repeated(record, documentLength) + QStringLiteral("{}]");
    for (auto _ : state) {
        benchmark::DoNotOptimize(kelm::JSONFormatter::format(text, 2));
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(formatRecords)->Unit(benchmark::kMillisecond);

void formatOneLargeObject(benchmark::State& state)
{
    QString text = QStringLiteral("{");
    for (int key = 0; text.size() < documentLength; ++key) {
        text += QStringLiteral("\"%1키%2\":%2,").arg(key % 977).arg(key);
    }
    text += QStringLiteral("\"\":0}");
    for (auto _ : state) {
        benchmark::DoNotOptimize(kelm::JSONFormatter::format(text, 2));
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(formatOneLargeObject)->Unit(benchmark::kMillisecond);

void formatNumbers(benchmark::State& state)
{
    const QString text = u'[' + repeated(QStringLiteral("1,"), documentLength) + QStringLiteral("1]");
    for (auto _ : state) {
        benchmark::DoNotOptimize(kelm::JSONFormatter::format(text, 2));
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(formatNumbers)->Unit(benchmark::kMillisecond);

using Transform = QString (*)(const QString&);

void transform(benchmark::State& state, Transform change, const QString& piece)
{
    const QString text = QStringLiteral("<r>") + repeated(piece, documentLength) + QStringLiteral("</r>");
    for (auto _ : state) {
        benchmark::DoNotOptimize(change(text));
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}

/// A million lines of some words each, far from their order.
void sortLines(benchmark::State& state)
{
    constexpr qint64 lines = 1'000'000;
    QString text;
    for (qint64 line = 0; line < lines; ++line) {
        text += QStringLiteral("%1 is line %2 of the text\n").arg(line * 7919 % lines, 7).arg(line);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(kelm::TextTransformer::sortLines(text, state.range(0) != 0));
    }
    state.SetItemsProcessed(state.iterations() * lines);
}
BENCHMARK(sortLines)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();

QString basicFormat(const QString& text)
{
    return kelm::XMLFormatter::basicFormat(text, 2);
}

const QString element = QStringLiteral("<item id='17'><name>Anna Kowalska</name><empty/></item>\n");
const QString words = QStringLiteral("some words in_a row, wordsLikeThis ");

BENCHMARK_CAPTURE(transform, formatXml, kelm::formatXml, element)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(transform, basicFormat, basicFormat, element)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(transform, upperCase, kelm::TextTransformer::toUpperCase, words)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(transform, capitalized, kelm::TextTransformer::toCapitalized, words)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(transform, snakeCase, kelm::TextTransformer::toSnakeCase, words)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
