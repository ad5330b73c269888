// What the panes of an editor cost on the main thread: a key with the document bound, and the painting of gutter and
// minimap beside a text of 300,000 lines.
#include "editor/view/kelm_editor_view.h"
#include "platform/style/view/style.h"

#include <QApplication>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTest>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;

QString sourceOf(qsizetype lines)
{
    static const QStringList kinds{QStringLiteral("func name(of value: Int) -> String {"),
                                   QStringLiteral("    let text = \"value \\(value)\""),
                                   QStringLiteral("    // what follows is only said once"),
                                   QStringLiteral("    return text + String(repeating: x, count: 3)"),
                                   QStringLiteral("}"),
                                   QString()};
    QString text;
    for (qsizetype line = 0; line < lines; ++line) {
        text += kinds[line % kinds.size()] + u'\n';
    }
    return text;
}

/// An editor on screen, bound to a document.
struct Bound
{
    QTemporaryDir home;
    UserDefaults defaults{home.filePath(QStringLiteral("defaults.conf"))};
    ThemeManager themes{{defaults, Log::system(), home.path(), [](Appearance) {}}};
    std::shared_ptr<Document> document;
    KelmEditorView binding;
    std::unique_ptr<EditorContainerView> view;

    explicit Bound(const QString& text)
        : document(std::make_shared<Document>(text, std::nullopt, Language::swift, std::nullopt)),
          binding(document, themes),
          view(binding.makeView(Scheduler::system(), NotificationCenter::shared(), nullptr))
    {
        view->resize(1200, 1000);
        view->show();
        QCoreApplication::processEvents();
    }
};

void keyInTheMiddleOfOneMegabyte(benchmark::State& state)
{
    Bound bound(sourceOf(1'000'000 / 27));
    TextView& text = bound.view->textView();
    text.setSelectedRange({text.text().size() / 2, 0});
    text.scrollRangeToVisible(text.selectedRange());
    QPixmap screen(bound.view->size());
    for (auto _ : state) {
        QTest::keyClick(&text, Qt::Key_X);
        text.viewport()->render(&screen);
        bound.view->lineNumberView().render(&screen);
    }
}

void paintMinimap(benchmark::State& state)
{
    Bound bound(sourceOf(300'000));
    QPixmap screen(bound.view->minimapView().size());
    for (auto _ : state) {
        bound.view->minimapView().render(&screen);
    }
}

void paintGutter(benchmark::State& state)
{
    Bound bound(sourceOf(300'000));
    bound.view->scrollToLine(150'000);
    QPixmap screen(bound.view->lineNumberView().size());
    for (auto _ : state) {
        bound.view->lineNumberView().render(&screen);
    }
}

/// One frame of a scroll from end to end: all three panes.
void scrollFrame(benchmark::State& state)
{
    Bound bound(sourceOf(300'000));
    QPixmap screen(bound.view->size());
    qreal y = 0;
    for (auto _ : state) {
        y += 2000;
        if (y > bound.view->textView().pageHeight() - 1000) {
            y = 0;
        }
        bound.view->textView().scrollToY(y);
        bound.view->render(&screen);
    }
}

BENCHMARK(keyInTheMiddleOfOneMegabyte)->Unit(benchmark::kMillisecond);
BENCHMARK(paintMinimap)->Unit(benchmark::kMillisecond);
BENCHMARK(paintGutter)->Unit(benchmark::kMillisecond);
BENCHMARK(scrollFrame)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    kelm::style::installOn(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
