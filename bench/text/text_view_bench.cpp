// What a person waits for: a key until it is painted, a file until it is seen, a screen that scrolls.
#include "text/source_text.h"
#include "text/view/text_view.h"

#include <QApplication>
#include <QFontDatabase>
#include <QImage>
#include <QKeyEvent>
#include <QStringDecoder>
#include <QTemporaryFile>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

class ShownView : public TextView
{
public:
    ShownView()
    {
        QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPixelSize(14);
        setTextFont(font);
        resize(900, 800);
        show();
        setFocus();
        QCoreApplication::processEvents();
    }

    /// Colours as a highlighter gives them, each word its own.
    void colorAll()
    {
        std::vector<ColorRun> runs;
        for (qsizetype at = 0; at + 6 < storage().length(); at += 9) {
            runs.push_back({{at, 6}, 0xff000000 | static_cast<QRgb>(at * 2654435761U)});
        }
        storage().assignForeground(runs);
    }

    void typeAndPaint()
    {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, {}, QStringLiteral("a"));
        QCoreApplication::sendEvent(this, &press);
        paintWhatChanged();
    }

    /// Handles the paint events that wait, and nothing stays for later.
    void paintWhatChanged()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
};

void keyUpToThePaint(benchmark::State& state, const QString& text, bool colored)
{
    ShownView view;
    view.storage().setText(text);
    if (colored) {
        view.colorAll();
    }
    view.setSelectedRange({view.storage().length() / 2, 0});
    view.scrollRangeToVisible(view.selectedRange());
    view.typeAndPaint();
    for (auto _ : state) {
        view.typeAndPaint();
        if (view.storage().length() % 60 == 0) {
            // A new line now and then, as in a source.
            view.editor().insertText(QStringLiteral("\n"), EditKind::typing);
        }
    }
}
BENCHMARK_CAPTURE(keyUpToThePaint, inAMillionUnits, bench::sourceText(1'000'000), false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keyUpToThePaint, inAMillionColoredUnits, bench::sourceText(1'000'000), true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keyUpToThePaint, inOneLineOfAMillion, bench::longLine(1'000'000), false)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keyUpToThePaint, inAHundredMillionUnits, bench::sourceText(100'000'000), false)
    ->Unit(benchmark::kMicrosecond);

/// The measure for what follows: a file read, decoded and its lines counted, without a view.
void readDecodeAndIndex(benchmark::State& state)
{
    QTemporaryFile file;
    if (!file.open()) {
        state.SkipWithError("no temporary file");
        return;
    }
    file.write(bench::sourceText(state.range(0)).toUtf8());
    file.flush();
    for (auto _ : state) {
        file.seek(0);
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString text = decoder(file.readAll());
        LineIndex lines;
        lines.rebuild(text);
        benchmark::DoNotOptimize(lines.lineCount());
    }
}
BENCHMARK(readDecodeAndIndex)->Arg(10'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

/// The same file until its first screen is painted. At most five times as long is wanted.
void readAndShow(benchmark::State& state)
{
    QTemporaryFile file;
    if (!file.open()) {
        state.SkipWithError("no temporary file");
        return;
    }
    file.write(bench::sourceText(state.range(0)).toUtf8());
    file.flush();
    ShownView view;
    for (auto _ : state) {
        file.seek(0);
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        view.storage().setText(decoder(file.readAll()));
        view.paintWhatChanged();
    }
}
BENCHMARK(readAndShow)->Arg(10'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

void scrollByPixels(benchmark::State& state, int pixels)
{
    ShownView view;
    view.storage().setText(bench::sourceText(10'000'000));
    qreal y = 0;
    for (auto _ : state) {
        y += pixels;
        view.scrollToY(y);
        view.paintWhatChanged();
    }
}
BENCHMARK_CAPTURE(scrollByPixels, aFewRows, 50)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(scrollByPixels, aScreen, 800)->Unit(benchmark::kMicrosecond);

void paintAScreen(benchmark::State& state)
{
    ShownView view;
    view.storage().setText(bench::sourceText(1'000'000));
    view.colorAll();
    view.selectAll();
    QImage image(view.viewport()->size() * state.range(0), QImage::Format_RGB32);
    image.setDevicePixelRatio(static_cast<qreal>(state.range(0)));
    view.viewport()->render(&image);
    for (auto _ : state) {
        view.viewport()->render(&image);
    }
}
BENCHMARK(paintAScreen)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void resizeAndPaint(benchmark::State& state)
{
    ShownView view;
    view.storage().setText(bench::sourceText(state.range(0)));
    view.scrollToY(view.pageHeight() / 2);
    int step = 0;
    for (auto _ : state) {
        view.resize(700 + (step = (step + 7) % 200), 800);
        view.paintWhatChanged();
    }
}
BENCHMARK(resizeAndPaint)->Arg(1'000'000)->Arg(100'000'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
