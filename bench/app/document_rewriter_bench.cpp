// Texts that are made anew as a whole: in front, and on a worker with the window going on.
#include "app/state/document_rewriter.h"
#include "editor/transforms/json_formatter.h"
#include "editor/transforms/text_transformer.h"
#include "editor/transforms/xml_formatter.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

struct Case
{
    QString text;
    DocumentRewriter::Transform transform;
};

/// A million lines, 20 MB of XML, 10 MB of JSON.
const Case& caseOf(qint64 number)
{
    static const QString element = QStringLiteral("<item id='17'><name>Anna Kowalska</name><empty/></item>\n");
    static const QString record =
        QStringLiteral(R"({"name":"Anna Kowalska","id":12345,"tags":["a","b\n"],"geo":{"y":1.5,"x":-2}},)");
    static const auto lines = [] {
        QString text;
        for (int line = 0; line < 1'000'000; ++line) {
            text += QStringLiteral("%1 is a line of the text\n").arg(qint64(line) * 7919 % 1'000'000, 7);
        }
        return text;
    };
    static const Case cases[] = {
        {lines(), [](const QString& text) { return TextTransformer::sortLines(text, true); }},
        {QStringLiteral("<r>") + element.repeated(20'000'000 / element.size()) + QStringLiteral("</r>"), formatXml},
        {u'[' + record.repeated(10'000'000 / record.size()) + QStringLiteral("{}]"),
         [](const QString& text) { return JSONFormatter::format(text, 2); }},
    };
    return cases[number];
}

std::shared_ptr<Document> makeDocument(const Case& each)
{
    return std::make_shared<Document>(each.text, std::nullopt, std::nullopt, std::nullopt);
}

void inFront(benchmark::State& state)
{
    const Case& each = caseOf(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        const std::shared_ptr<Document> document = makeDocument(each);
        state.ResumeTiming();
        document->setContent(each.transform(document->content()));
    }
}
BENCHMARK(inFront)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseRealTime();

void onAWorker(benchmark::State& state)
{
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    const Case& each = caseOf(state.range(0));
    Notices notices(Scheduler::system());
    DocumentRewriter rewriter(notices, [](const std::shared_ptr<Document>&) { return true; });
    for (auto _ : state) {
        state.PauseTiming();
        const std::shared_ptr<Document> document = makeDocument(each);
        state.ResumeTiming();
        rewriter.rewrite(document, QStringLiteral("Rewriting…"), each.transform);
        QEventLoop loop;
        QObject::connect(&notices, &Notices::currentChanged, &loop, &QEventLoop::quit);
        loop.exec();
    }
}
BENCHMARK(onAWorker)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
