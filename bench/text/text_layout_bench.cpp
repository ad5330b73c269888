// Rows of long texts and long lines, without a widget.
#include "text/layout/text_layout.h"
#include "text/source_text.h"

#include <QFontDatabase>
#include <QGuiApplication>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

struct Page
{
    TextStorage storage;
    TextLayout layout{storage};

    explicit Page(const QString& text)
    {
        QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPixelSize(14);
        layout.setFont(font);
        layout.setWidth(800);
        storage.setText(text);
    }

    qreal middle() const { return layout.height() / 2; }
};

void setText(benchmark::State& state)
{
    const QString text = bench::sourceText(state.range(0));
    Page page{QString()};
    for (auto _ : state) {
        page.storage.setText(text);
    }
    state.SetItemsProcessed(state.iterations() * text.size());
}
BENCHMARK(setText)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

void layOutAScreen(benchmark::State& state)
{
    Page page(bench::sourceText(10'000'000));
    qreal y = 0;
    for (auto _ : state) {
        // Each time another one.
        y += 1000;
        benchmark::DoNotOptimize(page.layout.rowsBetween(y, y + 800).size());
    }
}
BENCHMARK(layOutAScreen)->Unit(benchmark::kMicrosecond)->Iterations(2000);

void typeInALine(benchmark::State& state, const QString& text)
{
    Page page(text);
    page.storage.replace({0, 0}, u"x");
    const qreal top = page.middle();
    qsizetype caret = page.layout.placeAt({100, top + 300}).offset;
    for (auto _ : state) {
        page.storage.replace({caret, 0}, u"x");
        ++caret;
        benchmark::DoNotOptimize(page.layout.caretRect({caret, false}));
        benchmark::DoNotOptimize(page.layout.rowsBetween(top, top + 800).size());
    }
}
BENCHMARK_CAPTURE(typeInALine, ofAMillionUnits, bench::sourceText(1'000'000))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(typeInALine, ofOneLineOf5Million, bench::longLine(5'000'000))->Unit(benchmark::kMicrosecond);

void anotherWidth(benchmark::State& state, const QString& text)
{
    Page page(text);
    qreal width = 800;
    for (auto _ : state) {
        width = width == 800 ? 700 : 800;
        page.layout.setWidth(width);
        benchmark::DoNotOptimize(page.layout.rowsBetween(page.middle(), page.middle() + 800).size());
    }
}
BENCHMARK_CAPTURE(anotherWidth, ofThreeMillionLines, bench::sourceText(100'000'000))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(anotherWidth, ofOneLineOf5Million, bench::longLine(5'000'000))->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
