#include "support/shown_text_view.h"
#include "support/test_program.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

namespace text_view_scroll_test {

using namespace kelm;
using test::ShownTextView;

namespace {

/// Lines whose estimated rows are wrong both ways: Korean is wider than its number says, marks are narrower.
QString unevenText(int lines)
{
    QString text;
    for (int line = 0; line < lines; ++line) {
        switch (line % 4) {
        case 0:
            text += QStringLiteral("다람쥐헌쳇바퀴에타고파").repeated(1 + line % 9);
            break;
        case 1:
            text += QStringLiteral("e\u0301\u0302\u0303").repeated(20 + line % 50);
            break;
        case 2:
            text += QStringLiteral("\t\ttabs\t").repeated(1 + line % 7);
            break;
        default:
            break;
        }
        text += QStringLiteral(" %1\n").arg(line);
    }
    return text;
}

/// Where the row that begins at an offset stands in the viewport, or none.
std::optional<qreal> topOf(ShownTextView& view, qsizetype offset)
{
    for (const TextRow& row : view.visibleRows()) {
        if (row.range.location == offset) {
            return row.top;
        }
    }
    return {};
}

TextRow topRow(ShownTextView& view)
{
    return view.visibleRows().front();
}

bool wheel(ShownTextView& view, QPoint pixels, QPoint angle)
{
    const QPointF at(50, 50);
    QWheelEvent event(at, view.viewport()->mapToGlobal(at), pixels, angle, Qt::NoButton, Qt::NoModifier,
                      Qt::ScrollUpdate, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
    return event.isAccepted();
}

/// Scrolls by a few pixels at a time and requires that what is on screen moves by just as many. Counts the steps that
/// broke the rows of a long line anew.
void scrollWithoutJumps(ShownTextView& view, int pixels, int steps, int* brokenAnew)
{
    for (int step = 0; step < steps; ++step) {
        const std::vector<TextRow> before = view.visibleRows();
        const TextRow kept = before[before.size() / 2];
        const qreal y = view.visibleRect().top();
        wheel(view, {0, pixels}, {});
        view.grab();
        QCoreApplication::processEvents();
        const auto top = topOf(view, kept.range.location);
        if (view.visibleRect().top() == y || view.visibleRect().top() <= 0) {
            break;
        }
        if (!top && view.storage().lines().content(kept.line).length > longestPiece) {
            // What came into sight above told where the rows of the long line begin; its text moves by part of a row.
            const qreal moved =
                view.caretRect({kept.range.location, false}).top() - view.textInset().height() - kept.top - pixels;
            QVERIFY2(qAbs(moved) < view.textLayout().rowHeight() + 1.5, qPrintable(QString::number(moved)));
            ++*brokenAnew;
            continue;
        }
        QVERIFY2(top, "the row went off the screen");
        QVERIFY2(qAbs(*top - kept.top - pixels) < 1.5,
                 qPrintable(QStringLiteral("jumped by %1 in step %2").arg(*top - kept.top - pixels).arg(step)));
    }
}

} // namespace

class TextViewScrollTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBarSpansThePage();
    void scrollingGoesByPixels();
    void theWheelScrolls();
    void theWheelIsLeftAtThePagesEnds();
    void smallStepsNeverJump_data();
    void smallStepsNeverJump();
    void theBarsStepsNeverJump();
    void estimatesCorrectedAboveKeepTheTopLine();
    void editsAboveKeepTheTopLine_data();
    void editsAboveKeepTheTopLine();
    void aLongLineCutInTwoStaysOnScreen();
    void typingAtTheEndOfThePageDoesNotJump();
    void theEndOfThePageIsReached_data();
    void theEndOfThePageIsReached();
    void aShorterTextScrollsBack();
    void resizingKeepsTheTopLine();
    void resizingToAndFroDoesNotCreep();
    void anotherFontKeepsTheTopLine();
    void rangesAreScrolledToSight_data();
    void rangesAreScrolledToSight();
    void farRangesAreInSightBeforeAnythingIsPainted();
    void whatIsInSightStays();
    void typingScrollsToTheCaret();
    void changesOfTheVisiblePartAreTold();
    void aViewWithoutHeightSurvives();
    void paintingSettles();
};

void TextViewScrollTest::theBarSpansThePage()
{
    ShownTextView view(QStringLiteral("line\n").repeated(99) + QStringLiteral("line"));
    QScrollBar* bar = view.verticalScrollBar();
    QCOMPARE(view.pageHeight(), 100 * view.textLayout().rowHeight() + 2 * view.textInset().height());
    QCOMPARE(bar->minimum(), 0);
    QCOMPARE(bar->maximum(), int(std::ceil(view.pageHeight() - view.viewport()->height())));
    QCOMPARE(bar->pageStep(), view.viewport()->height());
    QCOMPARE(bar->singleStep(), int(view.textLayout().rowHeight()));
    QVERIFY(!view.horizontalScrollBar()->isVisible());
    // A bar that came and went would change the width of the text.
    const qreal width = view.textLayout().width();
    view.storage().setText(QStringLiteral("short"));
    QCOMPARE(view.textLayout().width(), width);
    QCOMPARE(bar->maximum(), 0);
}

void TextViewScrollTest::scrollingGoesByPixels()
{
    ShownTextView view(QStringLiteral("line\n").repeated(100));
    for (const int y : {1, 2, 3, 20, 333}) {
        view.verticalScrollBar()->setValue(y);
        QCOMPARE(view.visibleRect().top(), qreal(y));
        QCOMPARE(view.visibleRows().front().top,
                 std::floor((y - 4) / view.textLayout().rowHeight()) * view.textLayout().rowHeight() - y + 4 +
                     (y < 4 ? view.textLayout().rowHeight() : 0));
    }
    view.scrollToY(55.5);
    QCOMPARE(view.visibleRect().top(), 55.5);
    view.scrollToY(-100);
    QCOMPARE(view.visibleRect().top(), 0.0);
    view.scrollToY(1e9);
    QCOMPARE(view.visibleRect().bottom(), std::ceil(view.pageHeight()));
}

void TextViewScrollTest::theWheelScrolls()
{
    ShownTextView view(QStringLiteral("line\n").repeated(100));
    QVERIFY(wheel(view, {0, -7}, {0, -120}));
    QCOMPARE(view.visibleRect().top(), 7.0);
    QCOMPARE(view.verticalScrollBar()->value(), 7);
    QVERIFY(wheel(view, {0, 3}, {}));
    QCOMPARE(view.visibleRect().top(), 4.0);
    // A wheel with notches goes by rows.
    QVERIFY(wheel(view, {}, {0, -120}));
    QCOMPARE(view.visibleRect().top(), 4 + QApplication::wheelScrollLines() * view.textLayout().rowHeight());
    // Sideways there is nowhere to go.
    const qreal before = view.visibleRect().top();
    wheel(view, {30, 0}, {});
    wheel(view, {}, {120, 0});
    QCOMPARE(view.visibleRect().top(), before);
}

void TextViewScrollTest::theWheelIsLeftAtThePagesEnds()
{
    ShownTextView view(QStringLiteral("line\n").repeated(100));
    QVERIFY(!wheel(view, {0, 20}, {}));
    QVERIFY(wheel(view, {0, -20}, {}));
    view.scrollToY(1e9);
    QVERIFY(!wheel(view, {0, -20}, {}));
}

void TextViewScrollTest::smallStepsNeverJump_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("uneven lines") << unevenText(400);
    QTest::newRow("one long line of Korean") << QStringLiteral("다람쥐헌쳇바퀴에타고파").repeated(4000);
    QTest::newRow("one long line with blanks") << QStringLiteral("다람쥐 헌 iiii \t쳇바퀴에 타고파 ").repeated(4000);
    QTest::newRow("long lines") << (QStringLiteral("e\u0301\u0302 한").repeated(2000) + u'\n').repeated(20);
}

void TextViewScrollTest::smallStepsNeverJump()
{
    QFETCH(QString, text);
    ShownTextView view(QStringLiteral("|") + text);
    // Straight into the middle, where nothing is laid out, and up, and down.
    view.scrollToY(view.pageHeight() / 2);
    view.grab();
    QCoreApplication::processEvents();
    int brokenAnew = 0;
    scrollWithoutJumps(view, 13, 80, &brokenAnew);
    const int onTheWayUp = brokenAnew;
    // A step or two for each piece of the line that comes into sight.
    QVERIFY2(onTheWayUp <= 4, qPrintable(QString::number(onTheWayUp)));
    scrollWithoutJumps(view, -17, 80, &brokenAnew);
    QCOMPARE(brokenAnew, onTheWayUp);
    scrollWithoutJumps(view, 60, 30, &brokenAnew);
}

void TextViewScrollTest::theBarsStepsNeverJump()
{
    ShownTextView view(unevenText(400));
    view.scrollToY(view.pageHeight() / 2);
    view.grab();
    QCoreApplication::processEvents();
    for (const auto action : {QAbstractSlider::SliderSingleStepSub, QAbstractSlider::SliderSingleStepAdd}) {
        for (int step = 0; step < 60; ++step) {
            const TextRow kept = view.visibleRows()[3];
            view.verticalScrollBar()->triggerAction(action);
            const qreal moved = action == QAbstractSlider::SliderSingleStepSub ? view.textLayout().rowHeight()
                                                                               : -view.textLayout().rowHeight();
            const auto top = topOf(view, kept.range.location);
            QVERIFY(top);
            QVERIFY(qAbs(*top - kept.top - moved) < 1.5);
            QCoreApplication::processEvents();
        }
    }
}

void TextViewScrollTest::estimatesCorrectedAboveKeepTheTopLine()
{
    ShownTextView view(unevenText(400));
    const qreal row = view.textLayout().rowHeight();
    view.scrollToY(view.textLayout().topOfLine(200) + row / 2);
    view.grab();
    QCoreApplication::processEvents();
    const std::vector<TextRow> before = view.visibleRows();
    const qreal y = view.visibleRect().top();
    // Someone asks for places far above: the lines there get their true rows.
    for (qsizetype line = 0; line < 150; ++line) {
        view.textLayout().caretRect({view.storage().lines().start(line), false});
    }
    QCoreApplication::processEvents();
    const std::vector<TextRow> after = view.visibleRows();
    QCOMPARE(after.size(), before.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        QCOMPARE(after[i].range, before[i].range);
        QCOMPARE(after[i].top, before[i].top);
    }
    QVERIFY(view.visibleRect().top() != y);
    QCOMPARE(view.verticalScrollBar()->value(), int(std::lround(view.visibleRect().top())));
}

void TextViewScrollTest::editsAboveKeepTheTopLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("lines") << QStringLiteral("a line\n").repeated(300);
    QTest::newRow("uneven lines") << unevenText(300);
    QTest::newRow("one long line") << QStringLiteral("several words ").repeated(8000);
}

void TextViewScrollTest::editsAboveKeepTheTopLine()
{
    QFETCH(QString, text);
    ShownTextView view(text);
    view.scrollToY(view.pageHeight() / 2);
    view.grab();
    QCoreApplication::processEvents();
    for (int edit = 0; edit < 12; ++edit) {
        const TextRow kept = view.visibleRows()[2];
        const qsizetype before = view.storage().length();
        if (edit % 3 == 2) {
            view.storage().replace({40, 10}, u"");
        } else {
            // A line that is cut in two is cut into other pieces, too; that has a test of its own.
            view.storage().replace({edit * 7, 0}, edit % 2 == 0 && text.contains(u'\n') ? u"x\ny\n" : u"more ");
        }
        view.grab();
        QCoreApplication::processEvents();
        const auto top = topOf(view, kept.range.location + view.storage().length() - before);
        QVERIFY(top);
        QCOMPARE(*top, kept.top);
    }
}

void TextViewScrollTest::aLongLineCutInTwoStaysOnScreen()
{
    ShownTextView view(QStringLiteral("several words ").repeated(8000));
    view.scrollToY(view.pageHeight() / 2);
    view.grab();
    const qsizetype kept = view.visibleRows()[4].range.location;
    const qreal top = view.caretRect({kept, false}).top();
    view.storage().replace({1000, 0}, u"\n");
    view.grab();
    QCoreApplication::processEvents();
    QVERIFY(qAbs(view.caretRect({kept + 1, false}).top() - top) <= 2 * view.textLayout().rowHeight());
    view.storage().replace({1000, 1}, u"");
    view.grab();
    QCoreApplication::processEvents();
    QVERIFY(qAbs(view.caretRect({kept, false}).top() - top) <= 2 * view.textLayout().rowHeight());
}

void TextViewScrollTest::typingAtTheEndOfThePageDoesNotJump()
{
    ShownTextView view(QStringLiteral("line\n").repeated(50) + QStringLiteral("다람쥐헌쳇바퀴에").repeated(40));
    QTest::keySequence(&view, QKeySequence::keyBindings(QKeySequence::MoveToEndOfDocument).constFirst());
    view.grab();
    QCoreApplication::processEvents();
    for (int key = 0; key < 30; ++key) {
        const qreal rows = view.textLayout().height();
        const TextRow kept = view.visibleRows()[2];
        QKeyEvent typed(QEvent::KeyPress, 0, {}, QStringLiteral("한"));
        QCoreApplication::sendEvent(&view, &typed);
        view.grab();
        QCoreApplication::processEvents();
        const auto top = topOf(view, kept.range.location);
        QVERIFY(top);
        // The text goes up by a row when a row is added, and stays otherwise.
        QCOMPARE(*top, kept.top - (view.textLayout().height() - rows));
    }
}

void TextViewScrollTest::theEndOfThePageIsReached_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("lines") << QStringLiteral("a line\n").repeated(300);
    QTest::newRow("uneven lines") << unevenText(300);
    QTest::newRow("Korean") << QStringLiteral("다람쥐헌쳇바퀴에\n").repeated(20).repeated(20);
    QTest::newRow("one long line of Korean") << QStringLiteral("다람쥐헌쳇바퀴에").repeated(4000);
    QTest::newRow("one long line of marks") << QStringLiteral("e\u0301\u0302\u0303").repeated(4000);
}

void TextViewScrollTest::theEndOfThePageIsReached()
{
    QFETCH(QString, text);
    ShownTextView view(text);
    QScrollBar* bar = view.verticalScrollBar();
    // Until the lines at the end have their true rows the bar's end moves.
    for (int round = 0; round < 5; ++round) {
        bar->setValue(bar->maximum());
        view.grab();
        QCoreApplication::processEvents();
    }
    QCOMPARE(bar->value(), bar->maximum());
    const TextRow last = view.visibleRows().back();
    QCOMPARE(last.range.end(), view.storage().length());
    QVERIFY(last.top + view.textLayout().rowHeight() <= view.viewport()->height() - view.textInset().height() + 1);
    QVERIFY(last.top + view.textLayout().rowHeight() > view.viewport()->height() - view.textInset().height() - 2);
}

void TextViewScrollTest::aShorterTextScrollsBack()
{
    ShownTextView view(QStringLiteral("line\n").repeated(500));
    view.scrollToY(1e9);
    view.storage().replace({100, view.storage().length() - 100}, u"");
    QVERIFY(view.visibleRect().bottom() <= std::max(view.pageHeight(), qreal(view.viewport()->height())) + 1);
    QVERIFY(!view.visibleRows().empty());
    view.storage().setText(QString());
    QCOMPARE(view.visibleRect().top(), 0.0);
}

void TextViewScrollTest::resizingKeepsTheTopLine()
{
    for (const QString& text : {unevenText(300), QStringLiteral("several words ").repeated(8000)}) {
        ShownTextView view(text);
        view.scrollToY(view.pageHeight() / 2);
        view.grab();
        QCoreApplication::processEvents();
        const qsizetype top = topRow(view).range.location;
        for (const int width : {300, 500, 250, 700}) {
            view.resize(width, 200);
            view.grab();
            QCoreApplication::processEvents();
            const TextRow row = topRow(view);
            QVERIFY2(row.range.location <= top && top <= row.range.end(),
                     qPrintable(QStringLiteral("%1 is not in %2 to %3 at width %4")
                                    .arg(top)
                                    .arg(row.range.location)
                                    .arg(row.range.end())
                                    .arg(width)));
        }
    }
}

void TextViewScrollTest::resizingToAndFroDoesNotCreep()
{
    ShownTextView view(QStringLiteral("several words ").repeated(8000));
    view.scrollToY(view.pageHeight() / 2);
    view.grab();
    const TextRow before = topRow(view);
    for (int round = 0; round < 30; ++round) {
        view.resize(401 + round * 7, 200);
        view.grab();
    }
    view.resize(400, 200);
    view.grab();
    QCOMPARE(topRow(view).range.location, before.range.location);
}

void TextViewScrollTest::anotherFontKeepsTheTopLine()
{
    ShownTextView view(QStringLiteral("several words in a line\n").repeated(500));
    view.scrollToY(view.textLayout().topOfLine(200) + 4);
    view.grab();
    QFont font = view.textLayout().font();
    for (const int size : {20, 9, 30, 14}) {
        font.setPixelSize(size);
        view.setTextFont(font);
        view.grab();
        QCOMPARE(topRow(view).line, qsizetype(200));
        QCOMPARE(view.verticalScrollBar()->singleStep(), int(view.textLayout().rowHeight()));
    }
}

void TextViewScrollTest::rangesAreScrolledToSight_data()
{
    QTest::addColumn<qsizetype>("from");
    QTest::addColumn<qsizetype>("line");
    QTest::newRow("just below") << qsizetype(0) << qsizetype(12);
    QTest::newRow("far below") << qsizetype(0) << qsizetype(250);
    QTest::newRow("the last line") << qsizetype(0) << qsizetype(300);
    QTest::newRow("just above") << qsizetype(150) << qsizetype(149);
    QTest::newRow("far above") << qsizetype(250) << qsizetype(10);
    QTest::newRow("the first line") << qsizetype(250) << qsizetype(0);
}

void TextViewScrollTest::rangesAreScrolledToSight()
{
    QFETCH(qsizetype, from);
    QFETCH(qsizetype, line);
    ShownTextView view(unevenText(300));
    view.scrollToY(view.textLayout().topOfLine(from));
    view.grab();
    const qsizetype offset = view.storage().lines().start(line);
    view.scrollRangeToVisible({offset, 1});
    view.grab();
    QCoreApplication::processEvents();
    const QRectF box = view.caretRect({offset, false});
    QVERIFY2(box.top() >= 0 && box.bottom() <= view.viewport()->height(),
             qPrintable(QStringLiteral("%1 to %2").arg(box.top()).arg(box.bottom())));
}

void TextViewScrollTest::farRangesAreInSightBeforeAnythingIsPainted()
{
    // All lines are twice as high as they are guessed to be.
    ShownTextView view((QStringLiteral("다람쥐헌쳇바퀴에타고파").repeated(8) + u'\n').repeated(300));
    const qsizetype offset = view.storage().lines().start(200) + 40;
    view.scrollRangeToVisible({offset, 1});
    const QRectF box = view.caretRect({offset, false});
    QVERIFY(box.top() >= 0 && box.bottom() <= view.viewport()->height());
    QCOMPARE(view.placeAt(box.center().toPoint()).offset, offset);
    view.grab();
    QCOMPARE(view.caretRect({offset, false}), box);
}

void TextViewScrollTest::whatIsInSightStays()
{
    ShownTextView view(QStringLiteral("line\n").repeated(300));
    view.scrollToY(500);
    const qsizetype offset = view.visibleRows()[4].range.location;
    view.scrollRangeToVisible({offset, 3});
    QCOMPARE(view.visibleRect().top(), 500.0);
    // A range higher than the view shows its beginning.
    view.scrollRangeToVisible({0, view.storage().length()});
    QCOMPARE(view.visibleRect().top(), 0.0);
}

void TextViewScrollTest::typingScrollsToTheCaret()
{
    ShownTextView view(QStringLiteral("|") + unevenText(300));
    view.scrollToY(view.pageHeight());
    QTest::keyClicks(&view, QStringLiteral("x"));
    QCOMPARE(view.visibleRect().top(), 0.0);
    QTest::keySequence(&view, QKeySequence::keyBindings(QKeySequence::MoveToEndOfDocument).constFirst());
    const QRectF caret = view.caretRect(view.editor().selections().primary().head);
    QVERIFY(caret.bottom() <= view.viewport()->height() && caret.top() >= 0);
}

void TextViewScrollTest::changesOfTheVisiblePartAreTold()
{
    ShownTextView view(QStringLiteral("line\n").repeated(300));
    QSignalSpy changed(&view, &TextView::visibleRectChanged);
    const auto told = [&] {
        const bool any = changed.count() > 0;
        changed.clear();
        return any;
    };
    view.scrollToY(100);
    QVERIFY(told());
    view.verticalScrollBar()->setValue(4000);
    QVERIFY(told());
    wheel(view, {0, -5}, {});
    QVERIFY(told());
    view.resize(500, 300);
    QVERIFY(told());
    view.storage().replace({0, 0}, u"more\nlines\n");
    QVERIFY(told());
}

void TextViewScrollTest::aViewWithoutHeightSurvives()
{
    ShownTextView view(unevenText(30));
    for (const QSize size : {QSize(1, 1), QSize(400, 0), QSize(0, 300), QSize(30, 5)}) {
        view.resize(size);
        view.grab();
        view.scrollRangeToVisible({view.storage().length(), 0});
        QTest::keyClicks(&view, QStringLiteral("x"));
        wheel(view, {0, -5}, {});
    }
}

void TextViewScrollTest::paintingSettles()
{
    // What painting finds out about the rows does not lead to painting for ever.
    ShownTextView view(unevenText(300));
    view.scrollToY(view.pageHeight() / 2);
    QTest::qWait(0);
    QCoreApplication::processEvents();
    class Counter : public QObject
    {
    public:
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    } counter;
    view.viewport()->installEventFilter(&counter);
    view.scrollToY(view.pageHeight() / 3);
    QTest::qWait(50);
    QCOMPARE(counter.paints, 1);
}

const kelm::test::Registered<TextViewScrollTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_scroll_test

#include "text_view_scroll_test.moc"
