#include "editor/kept_ready/view/multi_cursor_manager.h"
#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "support/painted.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"

namespace multi_cursor_manager_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    ShownTextView view;
    MultiCursorManager manager{&view};

    explicit Fixture(const QString& text) : view(text) {}

    QList<qsizetype> positions() const
    {
        QList<qsizetype> found;
        for (const Cursor& cursor : manager.cursors()) {
            found << cursor.position;
        }
        return found;
    }
    QList<QWidget*> bars() const { return view.viewport()->findChildren<QWidget*>(u"multiCursor"_s); }
};

using Positions = QList<qsizetype>;

} // namespace

class MultiCursorManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void positionsAreWithinTheText();
    void cursorsAreSortedAndSingle();
    void oneCursorIsNoMode();
    void nothingBeginsWithoutAFirstCursor();
    void aboveAndBelow();
    void barsStandAtTheCursors();
    void barsFollowScrolling();
    void typingGoesToTheViewsOwnCaret();
    void textIsPutInAtEveryCursor();
    void occurrencesAreReplaced();
    void deletingTakesACharacterEach();
    void lineEnds();
    void removingAndResetting();
    void aReadOnlyViewIsNotChanged();
    void aViewThatIsGoneStopsEverything();
};

void MultiCursorManagerTest::positionsAreWithinTheText()
{
    Fixture fixture(u"abc"_s);
    fixture.manager.addCursor(3);
    fixture.manager.addCursor(4);
    fixture.manager.addCursor(-1);
    QCOMPARE(fixture.positions(), (Positions{3}));
    QVERIFY(!fixture.manager.cursors().front().selection);
}

void MultiCursorManagerTest::cursorsAreSortedAndSingle()
{
    Fixture fixture(u"abcdef"_s);
    for (const qsizetype position : {4, 1, 4, 0, 1}) {
        fixture.manager.addCursor(position);
    }
    QCOMPARE(fixture.positions(), (Positions{0, 1, 4}));
    QCOMPARE(fixture.manager.primaryCursor(), (Cursor{0, {}}));
}

void MultiCursorManagerTest::oneCursorIsNoMode()
{
    Fixture fixture(u"abc"_s);
    QVERIFY(!fixture.manager.primaryCursor());
    fixture.manager.addCursor(1);
    QVERIFY(!fixture.manager.isMultiCursorMode());
    QVERIFY(fixture.bars().isEmpty());
    fixture.manager.addCursor(2);
    QVERIFY(fixture.manager.isMultiCursorMode());
    QCOMPARE(fixture.bars().size(), 2);
}

void MultiCursorManagerTest::nothingBeginsWithoutAFirstCursor()
{
    Fixture fixture(u"abc\n|def\nghi"_s);
    fixture.manager.addCursorAbove();
    fixture.manager.addCursorBelow();
    QVERIFY(fixture.manager.cursors().empty());
}

void MultiCursorManagerTest::aboveAndBelow()
{
    Fixture fixture(u"abc\ndef\ng\nhij"_s);
    fixture.manager.addCursor(6);
    fixture.manager.addCursorAbove();
    QCOMPARE(fixture.positions(), (Positions{2, 6}));
    fixture.manager.addCursorAbove();
    QCOMPARE(fixture.positions(), (Positions{2, 6}));
    fixture.manager.addCursorBelow();
    // A short line takes the cursor before its line end.
    QCOMPARE(fixture.positions(), (Positions{2, 6, 9}));
    fixture.manager.addCursorBelow();
    QCOMPARE(fixture.positions(), (Positions{2, 6, 9, 11}));
    fixture.manager.addCursorBelow();
    QCOMPARE(fixture.positions(), (Positions{2, 6, 9, 11}));
}

void MultiCursorManagerTest::barsStandAtTheCursors()
{
    Fixture fixture(u"   \n   "_s);
    fixture.manager.addCursor(1);
    fixture.manager.addCursor(5);
    const QList<QWidget*> bars = fixture.bars();
    QCOMPARE(bars.size(), 2);
    for (int index = 0; index < 2; ++index) {
        const QRectF caret = fixture.view.caretRect({fixture.positions()[index], false});
        QCOMPARE(bars[index]->geometry(), QRectF(caret.x(), caret.y(), 2, caret.height()).toRect());
        QVERIFY(bars[index]->isVisible());
    }
    // Blue at one half over the ground of the text.
    const QImage picture = fixture.view.viewport()->grab().toImage();
    const QColor seen = picture.pixelColor(bars[1]->geometry().center());
    QColor blue = systemColor(SystemColor::blue, style::appearanceOf(fixture.view));
    blue.setAlphaF(0.5F);
    const QColor expected = over(fixture.view.colors().background, blue);
    QVERIFY2(isNear(seen, expected), qPrintable(seen.name()));
    // A click on a bar is one into the text.
    QVERIFY(bars[0]->testAttribute(Qt::WA_TransparentForMouseEvents));
}

void MultiCursorManagerTest::barsFollowScrolling()
{
    Fixture fixture(u"line\n"_s.repeated(100));
    fixture.manager.addCursor(0);
    fixture.manager.addCursor(5);
    const int before = fixture.bars()[1]->y();
    fixture.view.scrollToY(40);
    QCOMPARE(fixture.bars()[1]->y(), before - 40);
}

void MultiCursorManagerTest::typingGoesToTheViewsOwnCaret()
{
    Fixture fixture(u"abc|"_s);
    fixture.manager.addCursor(0);
    fixture.manager.addCursor(1);
    QTest::keyClicks(&fixture.view, u"x"_s);
    QCOMPARE(fixture.view.text(), u"abcx"_s);
    QCOMPARE(fixture.positions(), (Positions{0, 1}));
}

void MultiCursorManagerTest::textIsPutInAtEveryCursor()
{
    Fixture fixture(u"abc"_s);
    fixture.manager.addCursor(0);
    fixture.manager.addCursor(2);
    fixture.manager.insertText(u"--"_s);
    QCOMPARE(fixture.view.text(), u"--ab--c"_s);
    QCOMPARE(fixture.positions(), (Positions{2, 6}));
    fixture.view.undo();
    QCOMPARE(fixture.view.text(), u"abc"_s);
}

void MultiCursorManagerTest::occurrencesAreReplaced()
{
    Fixture fixture(u"cat dog cat"_s);
    fixture.manager.addCursorsToAllOccurrences(u"cat"_s);
    QCOMPARE(fixture.positions(), (Positions{3, 11}));
    QCOMPARE(fixture.manager.cursors()[1].selection, (TextRange{8, 3}));
    fixture.manager.insertText(u"bird"_s);
    QCOMPARE(fixture.view.text(), u"bird dog bird"_s);
    QCOMPARE(fixture.positions(), (Positions{4, 13}));
    fixture.manager.addCursorsToAllOccurrences(u"none"_s);
    fixture.manager.addCursorsToAllOccurrences(QString());
    QCOMPARE(fixture.positions(), (Positions{4, 13}));
}

void MultiCursorManagerTest::deletingTakesACharacterEach()
{
    Fixture fixture(u"a\U0001F600b"_s);
    fixture.manager.addCursor(0);
    fixture.manager.addCursor(3);
    fixture.manager.addCursor(4);
    fixture.manager.deleteBackward();
    QCOMPARE(fixture.view.text(), u"a"_s);
    QCOMPARE(fixture.positions(), (Positions{0, 1}));
}

void MultiCursorManagerTest::lineEnds()
{
    Fixture fixture(u"one\r\ntwo\nthree"_s);
    fixture.manager.addCursorsToLineEnds({0, 14});
    QCOMPARE(fixture.positions(), (Positions{3, 8, 14}));
    fixture.manager.insertText(u";"_s);
    QCOMPARE(fixture.view.text(), u"one;\r\ntwo;\nthree;"_s);
}

void MultiCursorManagerTest::removingAndResetting()
{
    Fixture fixture(u"abcdef"_s);
    for (const qsizetype position : {1, 2, 3}) {
        fixture.manager.addCursor(position);
    }
    fixture.manager.removeCursor(2);
    fixture.manager.removeCursor(5);
    QCOMPARE(fixture.positions(), (Positions{1, 3}));
    QCOMPARE(fixture.bars().size(), 2);
    fixture.manager.removeCursor(3);
    QVERIFY(!fixture.manager.isMultiCursorMode());
    QVERIFY(fixture.bars().isEmpty());
    fixture.manager.addCursor(4);
    fixture.manager.reset();
    QVERIFY(fixture.manager.cursors().empty());
    QVERIFY(fixture.bars().isEmpty());
}

void MultiCursorManagerTest::aReadOnlyViewIsNotChanged()
{
    Fixture fixture(u"abc"_s);
    fixture.manager.addCursor(0);
    fixture.manager.addCursor(2);
    fixture.view.setReadOnly(true);
    fixture.manager.insertText(u"x"_s);
    fixture.manager.deleteBackward();
    QCOMPARE(fixture.view.text(), u"abc"_s);
    QCOMPARE(fixture.positions(), (Positions{0, 2}));
}

void MultiCursorManagerTest::aViewThatIsGoneStopsEverything()
{
    auto view = std::make_unique<ShownTextView>(u"abc"_s);
    MultiCursorManager manager(view.get());
    manager.addCursor(1);
    manager.addCursor(2);
    view.reset();
    manager.addCursor(0);
    manager.addCursorAbove();
    manager.addCursorBelow();
    manager.addCursorsToLineEnds({0, 1});
    manager.addCursorsToAllOccurrences(u"a"_s);
    manager.insertText(u"x"_s);
    manager.deleteBackward();
    QCOMPARE(manager.cursors().size(), std::size_t(2));
    manager.reset();
    QVERIFY(manager.cursors().empty());
}

const kelm::test::Registered<MultiCursorManagerTest> registered(kelm::test::Toolkit::widgets);

} // namespace multi_cursor_manager_test

#include "multi_cursor_manager_test.moc"
