#include "support/shown_text_view.h"
#include "support/test_program.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QStyleHints>
#include <QtTest>

namespace text_view_mouse_test {

using namespace kelm;
using test::ShownTextView;

namespace {

constexpr Qt::MouseButton left = Qt::LeftButton;

/// A point in the middle of the letter at an offset.
QPoint inside(ShownTextView& view, qsizetype offset)
{
    return view.pointAt(offset) + QPoint(3, 0);
}

void clickTimes(ShownTextView& view, qsizetype offset, int times, Qt::KeyboardModifiers modifiers = {})
{
    const QPoint point = inside(view, offset);
    QWidget* target = view.viewport();
    // Long after whatever was clicked before.
    QTest::mouseClick(target, left, modifiers, point, 2 * QGuiApplication::styleHints()->mouseDoubleClickInterval());
    if (times > 1) {
        QTest::mouseDClick(target, left, modifiers, point);
    }
    if (times > 2) {
        QTest::mouseClick(target, left, modifiers, point);
    }
}

void drag(ShownTextView& view, QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {})
{
    QWidget* target = view.viewport();
    QTest::mousePress(target, left, modifiers, from, 2 * QGuiApplication::styleHints()->mouseDoubleClickInterval());
    QTest::mouseMove(target, (from + to) / 2);
    QMouseEvent move(QEvent::MouseMove, to, target->mapToGlobal(QPointF(to)), Qt::NoButton, left, modifiers);
    QCoreApplication::sendEvent(target, &move);
    QTest::mouseRelease(target, left, modifiers, to);
}

QMimeData* plain(const QString& text)
{
    auto* data = new QMimeData;
    data->setText(text);
    return data;
}

} // namespace

class TextViewMouseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStartDragDistance(10); }
    void clicksSelectByCharacterWordAndLine_data();
    void clicksSelectByCharacterWordAndLine();
    void aFourthClickBeginsAnew();
    void aClickGoesToTheNearerSideOfALetter();
    void clicksBesideTheText();
    void aClickAtARowsEndStaysInTheRow();
    void draggingSelectsBothWays_data();
    void draggingSelectsBothWays();
    void draggingAfterADoubleClickSelectsWords();
    void draggingAfterATripleClickSelectsLines();
    void shiftClickExtends_data();
    void shiftClickExtends();
    void controlClickAddsASelection();
    void theOtherButtonsSelectNothing();
    void aReleaseThatIsLostEndsTheSelecting();
    void draggingPastTheEdgeScrolls();
    void theCursorShowsWhatCanBeDragged();
    void aClickIntoTheSelectionPutsTheCaret();
    void theMiddleButtonPastesTheDesktopsSelection();
    void droppedTextIsPutInAndSelected();
    void aDroppedTextIsOneStep();
    void filesAreLeftToTheWindow();
    void theAddressOfAPageIsAText();
    void aReadOnlyViewTakesNoDrop();
    void aDropCaretShowsThePlace();
    void aDropDuringACompositionLosesNothing();
};

void TextViewMouseTest::clicksSelectByCharacterWordAndLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("times");
    QTest::addColumn<QString>("after");
    const auto row = [](const char* name, const char* text, int offset, int times, const char* after) {
        QTest::newRow(name) << QString::fromUtf8(text) << offset << times << QString::fromUtf8(after);
    };
    row("one in a word", "foo bar", 5, 1, "foo b|ar");
    row("two in a word", "foo bar_1 baz", 5, 2, "foo [bar_1] baz");
    row("two in blanks", "foo   bar", 4, 2, "foo[   ]bar");
    row("two in signs", "a ->= b", 3, 2, "a [->=] b");
    row("two in Korean", "foo 한글 bar", 5, 2, "foo [한글] bar");
    row("two in an empty line", "a\n\nb", 2, 2, "a\n|\nb");
    row("three in a line", "foo\nbar baz\nqux", 6, 3, "foo\n[bar baz\n]qux");
    row("three in a line with CRLF", "foo\r\nbar\r\n", 1, 3, "[foo\r\n]bar\r\n");
    row("three in the last line", "foo\nbar", 5, 3, "foo\n[bar]");
}

void TextViewMouseTest::clicksSelectByCharacterWordAndLine()
{
    QFETCH(QString, text);
    QFETCH(int, offset);
    QFETCH(int, times);
    ShownTextView view(QStringLiteral("|") + text);
    QVERIFY(view.isShown());
    clickTimes(view, offset, times);
    QTEST(view.marked(), "after");
}

void TextViewMouseTest::aFourthClickBeginsAnew()
{
    ShownTextView view(QStringLiteral("|foo bar\nbaz"));
    clickTimes(view, 5, 3);
    QCOMPARE(view.marked(), QStringLiteral("[foo bar\n]baz"));
    QTest::mouseClick(view.viewport(), left, {}, inside(view, 5));
    QCOMPARE(view.marked(), QStringLiteral("foo b|ar\nbaz"));
}

void TextViewMouseTest::aClickGoesToTheNearerSideOfALetter()
{
    ShownTextView view(QStringLiteral("|WWWW"));
    const QPoint one = view.pointAt(1);
    const QPoint two = view.pointAt(2);
    const QPoint middle = (one + two) / 2;
    QTest::mouseClick(view.viewport(), left, {}, middle - QPoint(2, 0));
    QCOMPARE(view.marked(), QStringLiteral("W|WWW"));
    QTest::mouseClick(view.viewport(), left, {}, middle + QPoint(2, 0), 1000);
    QCOMPARE(view.marked(), QStringLiteral("WW|WW"));
}

void TextViewMouseTest::clicksBesideTheText()
{
    ShownTextView view(QStringLiteral("|foo\nba\n"));
    const auto click = [&](QPoint point) {
        QTest::mouseClick(view.viewport(), left, {}, point, 1000);
        return view.selectedRange().location;
    };
    QCOMPARE(click({390, view.pointAt(0).y()}), qsizetype(3));
    QCOMPARE(click({0, view.pointAt(4).y()}), qsizetype(4));
    QCOMPARE(click({200, 190}), qsizetype(7));
    QCOMPARE(click({200, 0}), qsizetype(0));
}

void TextViewMouseTest::aClickAtARowsEndStaysInTheRow()
{
    ShownTextView view(QStringLiteral("|") + QString(200, u'x'));
    const std::vector<TextRow> rows = view.visibleRows();
    QTest::mouseClick(view.viewport(), left, {}, QPoint(398, static_cast<int>(rows[0].top) + 5));
    QCOMPARE(view.selectedRange().location, rows[0].range.end());
    QCOMPARE(view.caretRect(view.editor().selections().primary().head).top(), rows[0].top);
    // What is typed there goes where the caret stands.
    QTest::keyClicks(&view, QStringLiteral("y"));
    QCOMPARE(view.text()[rows[0].range.end()], QChar(u'y'));
}

void TextViewMouseTest::draggingSelectsBothWays_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("after");
    QTest::addColumn<int>("caret");
    QTest::newRow("ahead") << 1 << 5 << QStringLiteral("f[oo b]ar\nbaz") << 5;
    QTest::newRow("back") << 5 << 1 << QStringLiteral("f[oo b]ar\nbaz") << 1;
    QTest::newRow("over lines") << 4 << 9 << QStringLiteral("foo [bar\nb]az") << 9;
}

void TextViewMouseTest::draggingSelectsBothWays()
{
    QFETCH(int, from);
    QFETCH(int, to);
    ShownTextView view(QStringLiteral("foo bar\nbaz|"));
    drag(view, view.pointAt(from), view.pointAt(to));
    QTEST(view.marked(), "after");
    QTEST(int(view.editor().selections().primary().head.offset), "caret");
}

void TextViewMouseTest::draggingAfterADoubleClickSelectsWords()
{
    ShownTextView view(QStringLiteral("|one two three four"));
    QWidget* target = view.viewport();
    const auto moveTo = [&](qsizetype offset) {
        const QPoint point = inside(view, offset);
        QMouseEvent move(QEvent::MouseMove, point, target->mapToGlobal(QPointF(point)), Qt::NoButton, left, {});
        QCoreApplication::sendEvent(target, &move);
    };
    QTest::mouseClick(target, left, {}, inside(view, 5), 1000);
    // A double click that is held.
    QMouseEvent twice(QEvent::MouseButtonDblClick, inside(view, 5), target->mapToGlobal(QPointF(inside(view, 5))), left,
                      left, {});
    QCoreApplication::sendEvent(target, &twice);
    QCOMPARE(view.marked(), QStringLiteral("one [two] three four"));
    moveTo(10);
    QCOMPARE(view.marked(), QStringLiteral("one [two three] four"));
    moveTo(1);
    QCOMPARE(view.marked(), QStringLiteral("[one two] three four"));
    QTest::mouseRelease(target, left, {}, inside(view, 1));
}

void TextViewMouseTest::draggingAfterATripleClickSelectsLines()
{
    ShownTextView view(QStringLiteral("|a\nbb\ncc\ndd\n"));
    QWidget* target = view.viewport();
    clickTimes(view, 3, 2);
    QTest::mousePress(target, left, {}, inside(view, 3));
    const auto moveTo = [&](qsizetype offset) {
        const QPoint point = inside(view, offset);
        QMouseEvent move(QEvent::MouseMove, point, target->mapToGlobal(QPointF(point)), Qt::NoButton, left, {});
        QCoreApplication::sendEvent(target, &move);
    };
    QCOMPARE(view.marked(), QStringLiteral("a\n[bb\n]cc\ndd\n"));
    moveTo(6);
    QCOMPARE(view.marked(), QStringLiteral("a\n[bb\ncc\n]dd\n"));
    moveTo(0);
    QCOMPARE(view.marked(), QStringLiteral("[a\nbb\n]cc\ndd\n"));
    QTest::mouseRelease(target, left, {}, inside(view, 0));
}

void TextViewMouseTest::shiftClickExtends_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("after");
    QTest::newRow("ahead of the caret") << QStringLiteral("ab|cdef") << 5 << QStringLiteral("ab[cde]f");
    QTest::newRow("behind the caret") << QStringLiteral("abcd|ef") << 1 << QStringLiteral("a[bcd]ef");
    QTest::newRow("the other side of a selection") << QStringLiteral("abc[de]f") << 1 << QStringLiteral("a[bc]def");
    QTest::newRow("into the selection") << QStringLiteral("a[bcde]f") << 3 << QStringLiteral("a[bc]def");
}

void TextViewMouseTest::shiftClickExtends()
{
    QFETCH(QString, before);
    QFETCH(int, offset);
    ShownTextView view(before);
    QTest::mouseClick(view.viewport(), left, Qt::ShiftModifier, view.pointAt(offset));
    QTEST(view.marked(), "after");
}

void TextViewMouseTest::controlClickAddsASelection()
{
    ShownTextView view(QStringLiteral("one |two three"));
    QTest::mouseClick(view.viewport(), left, Qt::ControlModifier, view.pointAt(1));
    QCOMPARE(view.marked(), QStringLiteral("o|ne |two three"));
    QCOMPARE(view.selectedRange(), (TextRange{1, 0}));
    drag(view, view.pointAt(8), view.pointAt(11), Qt::ControlModifier);
    QCOMPARE(view.marked(), QStringLiteral("o|ne |two [thr]ee"));
    clickTimes(view, 5, 2, Qt::ControlModifier);
    QCOMPARE(view.marked(), QStringLiteral("o|ne [two] [thr]ee"));
    QTest::keyClicks(&view, QStringLiteral("x"));
    QCOMPARE(view.marked(), QStringLiteral("ox|ne x| x|ee"));
    clickTimes(view, 0, 1);
    QVERIFY(view.editor().selections().isSingle());
}

void TextViewMouseTest::theOtherButtonsSelectNothing()
{
    ShownTextView view(QStringLiteral("a[bc]def"));
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, view.pointAt(5));
    QTest::mouseClick(view.viewport(), Qt::BackButton, {}, view.pointAt(5));
    QCOMPARE(view.marked(), QStringLiteral("a[bc]def"));
}

void TextViewMouseTest::aReleaseThatIsLostEndsTheSelecting()
{
    ShownTextView view(QStringLiteral("one two three\n"));
    const auto move = [&view](qsizetype offset) {
        const QPoint point = inside(view, offset);
        QMouseEvent event(QEvent::MouseMove, point, view.viewport()->mapToGlobal(QPointF(point)), Qt::NoButton,
                          Qt::NoButton, {});
        QCoreApplication::sendEvent(view.viewport(), &event);
    };
    QTest::mousePress(view.viewport(), left, {}, inside(view, 1));
    // As after a menu that another button has opened: it was given the release.
    move(8);
    QCOMPARE(view.selectedRange(), (TextRange{1, 0}));
    view.setSelectedRange({0, 7});
    QTest::mousePress(view.viewport(), left, {}, inside(view, 2));
    move(12);
    // Nothing is dragged, and the selection stays for who may be going to use it.
    QCOMPARE(view.selectedRange(), (TextRange{0, 7}));
    QCOMPARE(view.text(), QStringLiteral("one two three\n"));
}

void TextViewMouseTest::draggingPastTheEdgeScrolls()
{
    ShownTextView view(QStringLiteral("|") + QStringLiteral("line\n").repeated(300));
    QWidget* target = view.viewport();
    QTest::mousePress(target, left, {}, view.pointAt(0));
    const auto moveTo = [&](QPoint point) {
        QMouseEvent move(QEvent::MouseMove, point, target->mapToGlobal(QPointF(point)), Qt::NoButton, left, {});
        QCoreApplication::sendEvent(target, &move);
    };
    moveTo({20, target->height() + 30});
    QTRY_VERIFY(view.visibleRect().top() > 100);
    const qsizetype end = view.selectedRange().end();
    QVERIFY(end > 100);
    QTRY_VERIFY(view.selectedRange().end() > end);
    moveTo({20, -30});
    QTRY_COMPARE(view.visibleRect().top(), 0.0);
    // Back within the view it stands still.
    moveTo({20, 50});
    const TextRange selected = view.selectedRange();
    QTest::mouseRelease(target, left, {}, {20, 50});
    QCOMPARE(view.selectedRange(), selected);
    QCOMPARE(view.visibleRect().top(), 0.0);
}

void TextViewMouseTest::theCursorShowsWhatCanBeDragged()
{
    ShownTextView view(QStringLiteral("a[bc]def"));
    const auto shapeAt = [&](QPoint point) {
        QTest::mouseMove(view.viewport(), point);
        QCoreApplication::processEvents();
        return view.viewport()->cursor().shape();
    };
    QVERIFY(view.viewport()->hasMouseTracking());
    QCOMPARE(shapeAt(inside(view, 4)), Qt::IBeamCursor);
    QCOMPARE(shapeAt(inside(view, 2)), Qt::ArrowCursor);
    QCOMPARE(shapeAt(inside(view, 0)), Qt::IBeamCursor);
}

void TextViewMouseTest::aClickIntoTheSelectionPutsTheCaret()
{
    ShownTextView view(QStringLiteral("a[bcd]ef"));
    QTest::mousePress(view.viewport(), left, {}, view.pointAt(3));
    // It may be dragged yet.
    QCOMPARE(view.marked(), QStringLiteral("a[bcd]ef"));
    QTest::mouseRelease(view.viewport(), left, {}, view.pointAt(3));
    QCOMPARE(view.marked(), QStringLiteral("abc|def"));
}

void TextViewMouseTest::theMiddleButtonPastesTheDesktopsSelection()
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard->supportsSelection()) {
        // Then the button must at least not touch the text.
        ShownTextView view(QStringLiteral("ab|c"));
        QTest::mouseClick(view.viewport(), Qt::MiddleButton, {}, view.pointAt(1));
        QCOMPARE(view.text(), QStringLiteral("abc"));
        return;
    }
    ShownTextView view(QStringLiteral("one two|"));
    clickTimes(view, 5, 2);
    QCOMPARE(clipboard->text(QClipboard::Selection), QStringLiteral("two"));
    QTest::mouseClick(view.viewport(), Qt::MiddleButton, {}, view.pointAt(0));
    QCOMPARE(view.marked(), QStringLiteral("two|one two"));
    view.undo();
    QCOMPARE(view.text(), QStringLiteral("one two"));
    view.setReadOnly(true);
    QTest::mouseClick(view.viewport(), Qt::MiddleButton, {}, view.pointAt(0));
    QCOMPARE(view.text(), QStringLiteral("one two"));
}

void TextViewMouseTest::droppedTextIsPutInAndSelected()
{
    ShownTextView view(QStringLiteral("|abcd"));
    const std::unique_ptr<QMimeData> data(plain(QStringLiteral("x\r\ny\u00a0")));
    QVERIFY(view.dropFromOutside(*data, view.pointAt(2)));
    QCOMPARE(view.marked(), QStringLiteral("ab[x\r\ny\u00a0]cd"));
    // Onto a selection that is not the one being dragged: beside it, nothing of it is lost.
    view.set(QStringLiteral("a[bc]d"));
    QVERIFY(view.dropFromOutside(*data, view.pointAt(4)));
    QCOMPARE(view.text(), QStringLiteral("abcdx\r\ny\u00a0"));
}

void TextViewMouseTest::aDroppedTextIsOneStep()
{
    ShownTextView view(QStringLiteral("|abcd"));
    const std::unique_ptr<QMimeData> data(plain(QStringLiteral("xy")));
    QTest::keyClicks(&view, QStringLiteral("z"));
    QVERIFY(view.dropFromOutside(*data, view.pointAt(3)));
    QTest::keyClicks(&view, QStringLiteral("z"));
    QCOMPARE(view.text(), QStringLiteral("zabzcd"));
    view.undo();
    QCOMPARE(view.marked(), QStringLiteral("zab[xy]cd"));
    view.undo();
    QCOMPARE(view.text(), QStringLiteral("zabcd"));
    view.undo();
    QCOMPARE(view.text(), QStringLiteral("abcd"));
}

void TextViewMouseTest::filesAreLeftToTheWindow()
{
    ShownTextView view(QStringLiteral("|abcd"));
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a.txt"))});
    files.setText(QStringLiteral("/tmp/a.txt"));
    QVERIFY(!view.dropFromOutside(files, view.pointAt(2)));
    QMimeData link;
    link.setUrls({QUrl(QStringLiteral("kelmpane://open?code=YQ"))});
    QVERIFY(!view.dropFromOutside(link, view.pointAt(2)));
    QMimeData image;
    image.setData(QStringLiteral("image/png"), "x");
    QVERIFY(!view.dropFromOutside(image, view.pointAt(2)));
    QCOMPARE(view.text(), QStringLiteral("abcd"));
}

void TextViewMouseTest::theAddressOfAPageIsAText()
{
    ShownTextView view(QStringLiteral("|abcd"));
    QMimeData page;
    page.setUrls({QUrl(QStringLiteral("https://host/page"))});
    QVERIFY(view.dropFromOutside(page, view.pointAt(2)));
    QCOMPARE(view.marked(), QStringLiteral("ab[https://host/page]cd"));
}

void TextViewMouseTest::aReadOnlyViewTakesNoDrop()
{
    ShownTextView view(QStringLiteral("|abcd"));
    view.setReadOnly(true);
    const std::unique_ptr<QMimeData> data(plain(QStringLiteral("xy")));
    QVERIFY(!view.dropFromOutside(*data, view.pointAt(2)));
    QCOMPARE(view.text(), QStringLiteral("abcd"));
}

void TextViewMouseTest::aDropCaretShowsThePlace()
{
    ShownTextView view(QStringLiteral("|abcd"));
    TextViewColors colors;
    colors.insertionPoint = Qt::red;
    view.setColors(colors);
    const std::unique_ptr<QMimeData> data(plain(QStringLiteral("xy")));
    const QPoint point = view.pointAt(3);
    const auto isRed = [&] { return view.viewport()->grab().toImage().pixelColor(point) == QColor(Qt::red); };
    QVERIFY(!isRed());
    QDragEnterEvent enter(point, Qt::CopyAction, data.get(), left, {});
    QCoreApplication::sendEvent(view.viewport(), &enter);
    QDragMoveEvent move(point, Qt::CopyAction, data.get(), left, {});
    QCoreApplication::sendEvent(view.viewport(), &move);
    QVERIFY(isRed());
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(view.viewport(), &leave);
    QVERIFY(!isRed());
}

void TextViewMouseTest::aDropDuringACompositionLosesNothing()
{
    ShownTextView view(QStringLiteral("a|bcd"));
    view.compose(QStringLiteral("한"));
    const std::unique_ptr<QMimeData> data(plain(QStringLiteral("xy")));
    QVERIFY(view.dropFromOutside(*data, view.pointAt(4)));
    QCOMPARE(view.marked(), QStringLiteral("a한bcd[xy]"));
}

const kelm::test::Registered<TextViewMouseTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_mouse_test

#include "text_view_mouse_test.moc"
