// A long diff in a window: from its text to the first picture, and a frame of scrolling.
#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "platform/style/view/style.h"

#include <QApplication>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <random>

namespace {

using namespace kelm;

constexpr int files = 2000;
constexpr int hunksInAFile = 4;
constexpr int linesInAHunk = 25;

/// 200,000 lines of the usual lengths, some with tabs and some with Hangul.
const QString& longDiff()
{
    static const QString diff = [] {
        std::mt19937 random(1);
        const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
        QString code;
        for (int index = 0; index < 8; ++index) {
            code += QStringLiteral("const int value%1 = function(x, y); ").arg(index);
        }
        QString text;
        for (int file = 0; file < files; ++file) {
            text += QStringLiteral("diff --git a/src/f%1.cpp b/src/f%1.cpp\nindex 1111111..2222222 100644\n"
                                   "--- a/src/f%1.cpp\n+++ b/src/f%1.cpp\n")
                        .arg(file);
            for (int hunk = 0; hunk < hunksInAFile; ++hunk) {
                text += QStringLiteral("@@ -%1,25 +%1,25 @@ void function()\n").arg(hunk * 100 + 1);
                for (int line = 0; line < linesInAHunk; ++line) {
                    text += QLatin1Char("  +-"[below(4)]);
                    text += below(4) == 0 ? QStringLiteral("\t\t") : QStringLiteral("    ");
                    text += below(20) == 0 ? QStringLiteral("// 설명을 한 줄 쓴다 ") : QString();
                    text += QStringView(code).first(below(90));
                    text += u'\n';
                }
            }
        }
        return text;
    }();
    return diff;
}

void show(DiffViewer& viewer, DiffViewMode mode)
{
    viewer.resize(1100, 800);
    viewer.setMode(mode);
    viewer.setHunkAction(QStringLiteral("Stage hunk"), [](const DiffFile&, qsizetype) {});
    viewer.show();
    QApplication::processEvents();
}

/// Has the viewer show a text, and waits for it where it is read on another thread.
void showText(DiffViewer& viewer, const QString& text)
{
    viewer.setDiffText(text);
    while (viewer.isReading()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

DiffViewMode modeOf(const benchmark::State& state)
{
    return allDiffViewModes[static_cast<std::size_t>(state.range(0))];
}

void textToFirstPicture(benchmark::State& state)
{
    const QString& diff = longDiff();
    DiffViewer viewer;
    show(viewer, modeOf(state));
    for (auto _ : state) {
        showText(viewer, diff);
        viewer.repaint();
        state.PauseTiming();
        viewer.setDiffText({});
        state.ResumeTiming();
    }
}
BENCHMARK(textToFirstPicture)->ArgName("form")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Three rows at a time: what a turn of the wheel asks for.
void frameOfScrolling(benchmark::State& state)
{
    DiffViewer viewer;
    show(viewer, modeOf(state));
    showText(viewer, longDiff());
    QScrollBar& bar = *viewer.list().verticalScrollBar();
    for (auto _ : state) {
        bar.setValue(bar.value() + 48);
        viewer.repaint();
    }
}
BENCHMARK(frameOfScrolling)->ArgName("form")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Somewhere else each time: nothing on screen is known from the frame before.
void frameOfDragging(benchmark::State& state)
{
    DiffViewer viewer;
    show(viewer, modeOf(state));
    showText(viewer, longDiff());
    QScrollBar& bar = *viewer.list().verticalScrollBar();
    for (auto _ : state) {
        bar.setValue((bar.value() + 9973) % bar.maximum());
        viewer.repaint();
    }
}
BENCHMARK(frameOfDragging)->ArgName("form")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// A frame of one pair of lines of 1 MB, without its comparison, which runs elsewhere.
void frameOfLongLines(benchmark::State& state)
{
    const QString line = QStringLiteral("word, ").repeated(175'000);
    DiffViewer viewer;
    show(viewer, modeOf(state));
    showText(viewer, QStringLiteral("@@ -1 +1 @@\n-old ") + line + QStringLiteral("\n+new ") + line);
    QScrollBar& bar = *viewer.list().verticalScrollBar();
    for (auto _ : state) {
        bar.setValue((bar.value() + 48) % bar.maximum());
        viewer.repaint();
    }
}
BENCHMARK(frameOfLongLines)->ArgName("form")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void resizeOfALongDiff(benchmark::State& state)
{
    DiffViewer viewer;
    show(viewer, modeOf(state));
    showText(viewer, longDiff());
    int width = 1100;
    for (auto _ : state) {
        width = width == 1100 ? 1000 : 1100;
        viewer.resize(width, 800);
        viewer.repaint();
    }
}
BENCHMARK(resizeOfALongDiff)->ArgName("form")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    style::installOn(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
