#include "support/shown_text_view.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

namespace text_view_input_method_test {

using namespace kelm;
using test::ShownTextView;

namespace {

using Attribute = QInputMethodEvent::Attribute;

/// A caret of the input method's own, shown at a place in its text or hidden.
Attribute cursorAt(int position, bool shown = true)
{
    return {QInputMethodEvent::Cursor, position, shown ? 1 : 0, QVariant()};
}

void undo(ShownTextView& view)
{
    QTest::keySequence(&view, QKeySequence::keyBindings(QKeySequence::Undo).constFirst());
}

QRectF cursorRectangle(const ShownTextView& view)
{
    return view.inputMethodQuery(Qt::ImCursorRectangle).toRectF();
}

} // namespace

class TextViewInputMethodTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCompositionIsNoPartOfTheText();
    void koreanIsComposedSyllableBySyllable();
    void aCommitWithTheNextCompositionInOneEvent();
    void aCancelledCompositionLeavesNothing();
    void aCompositionReplacesTheSelectionInOneStep();
    void aCancelledCompositionOverASelectionIsUndone();
    void aCommitReplacesTextAroundTheCaret_data();
    void aCommitReplacesTextAroundTheCaret();
    void compositionsGoIntoAllCarets();
    void whatEndsACompositionKeepsIt_data();
    void whatEndsACompositionKeepsIt();
    void undoTakesTheCompositionBack();
    void aMenuDoesNotEndAComposition();
    void foreignEditsDuringACompositionLoseNothing_data();
    void foreignEditsDuringACompositionLoseNothing();
    void aReadOnlyViewComposesNothing();
    void becomingReadOnlyKeepsTheComposition();
    void theCaretMayStandWithinTheComposition();
    void theCandidateWindowStandsAtTheCaret_data();
    void theCandidateWindowStandsAtTheCaret();
    void theTextAroundTheCaretIsTold_data();
    void theTextAroundTheCaretIsTold();
    void surroundingsOfALongLineAreShort();
    void oddEventsDoNoHarm();
};

void TextViewInputMethodTest::aCompositionIsNoPartOfTheText()
{
    ShownTextView view(QStringLiteral("ab|cd"));
    QSignalSpy edited(&view.storage(), &TextStorage::edited);
    view.compose(QStringLiteral("ㅎ"));
    QVERIFY(view.isComposing());
    QCOMPARE(view.text(), QStringLiteral("abcd"));
    QCOMPARE(edited.count(), 0);
    QVERIFY(!view.editor().canUndo());
    // It is seen: what stands behind makes way.
    QVERIFY(view.caretRect({3, false}).x() > view.caretRect({2, false}).x() + 15);
}

void TextViewInputMethodTest::koreanIsComposedSyllableBySyllable()
{
    ShownTextView view(QStringLiteral("a|b"));
    for (const char16_t* stage : {u"ㅎ", u"하", u"한"}) {
        view.compose(QString::fromUtf16(stage));
        QCOMPARE(view.marked(), QStringLiteral("a|b"));
    }
    view.commitText(QStringLiteral("한"));
    QCOMPARE(view.marked(), QStringLiteral("a한|b"));
    QVERIFY(!view.isComposing());
    view.compose(QStringLiteral("ㄱ"));
    view.compose(QStringLiteral("그"));
    view.compose(QStringLiteral("글"));
    view.commitText(QStringLiteral("글"));
    QCOMPARE(view.marked(), QStringLiteral("a한글|b"));
    undo(view);
    QCOMPARE(view.marked(), QStringLiteral("a한|b"));
    undo(view);
    QCOMPARE(view.marked(), QStringLiteral("a|b"));
}

void TextViewInputMethodTest::aCommitWithTheNextCompositionInOneEvent()
{
    ShownTextView view(QStringLiteral("|"));
    view.compose(QStringLiteral("각"));
    // The final consonant goes over to the next syllable.
    view.commitText(QStringLiteral("가"), 0, 0, QStringLiteral("가"));
    QCOMPARE(view.marked(), QStringLiteral("가|"));
    QVERIFY(view.isComposing());
    QCOMPARE(view.textLayout().preedit()->offset, qsizetype(1));
    view.commitText(QStringLiteral("가"));
    QCOMPARE(view.marked(), QStringLiteral("가가|"));
}

void TextViewInputMethodTest::aCancelledCompositionLeavesNothing()
{
    ShownTextView view(QStringLiteral("a|b"));
    const QRectF before = view.caretRect({2, false});
    view.compose(QStringLiteral("한"));
    view.compose(QString());
    QVERIFY(!view.isComposing());
    QCOMPARE(view.marked(), QStringLiteral("a|b"));
    QCOMPARE(view.caretRect({2, false}), before);
    QVERIFY(!view.editor().canUndo());
}

void TextViewInputMethodTest::aCompositionReplacesTheSelectionInOneStep()
{
    ShownTextView view(QStringLiteral("a[bcd]e"));
    view.compose(QStringLiteral("ㅎ"));
    QCOMPARE(view.text(), QStringLiteral("ae"));
    view.compose(QStringLiteral("한"));
    view.commitText(QStringLiteral("한"));
    QCOMPARE(view.marked(), QStringLiteral("a한|e"));
    undo(view);
    QCOMPARE(view.marked(), QStringLiteral("a[bcd]e"));
    QVERIFY(!view.editor().canUndo());
}

void TextViewInputMethodTest::aCancelledCompositionOverASelectionIsUndone()
{
    ShownTextView view(QStringLiteral("a[bcd]e"));
    view.compose(QStringLiteral("ㅎ"));
    view.compose(QString());
    QCOMPARE(view.marked(), QStringLiteral("a|e"));
    // What is composed next is a step of its own.
    view.compose(QStringLiteral("한"));
    view.commitText(QStringLiteral("한"));
    undo(view);
    QCOMPARE(view.marked(), QStringLiteral("a|e"));
    undo(view);
    QCOMPARE(view.marked(), QStringLiteral("a[bcd]e"));
}

void TextViewInputMethodTest::aCommitReplacesTextAroundTheCaret_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("committed");
    QTest::addColumn<QString>("after");
    QTest::newRow("before the caret") << QStringLiteral("abc|d") << -2 << 2 << QStringLiteral("X")
                                      << QStringLiteral("aX|d");
    QTest::newRow("behind the caret") << QStringLiteral("ab|cd") << 0 << 1 << QStringLiteral("X")
                                      << QStringLiteral("abX|d");
    QTest::newRow("only taken away") << QStringLiteral("abc|d") << -1 << 1 << QString() << QStringLiteral("ab|d");
    QTest::newRow("more than there is") << QStringLiteral("ab|") << -1 << 50 << QStringLiteral("X")
                                        << QStringLiteral("aX|");
    QTest::newRow("from before the text")
        << QStringLiteral("ab|c") << -9 << 9 << QStringLiteral("X") << QStringLiteral("X|c");
}

void TextViewInputMethodTest::aCommitReplacesTextAroundTheCaret()
{
    QFETCH(QString, before);
    QFETCH(int, from);
    QFETCH(int, length);
    QFETCH(QString, committed);
    ShownTextView view(before);
    view.commitText(committed, from, length);
    QTEST(view.marked(), "after");
    undo(view);
    QCOMPARE(view.text(), test::parseMarked(before).text);
}

void TextViewInputMethodTest::compositionsGoIntoAllCarets()
{
    ShownTextView view(QStringLiteral("a| [b] |"));
    view.compose(QStringLiteral("ㅎ"));
    view.commitText(QStringLiteral("한"));
    QCOMPARE(view.marked(), QStringLiteral("a한| 한| 한|"));
    undo(view);
    QCOMPARE(view.marked(), QStringLiteral("a| [b] |"));
}

void TextViewInputMethodTest::whatEndsACompositionKeepsIt_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("after");
    QTest::newRow("a click") << QStringLiteral("click") << QStringLiteral("|a한b");
    QTest::newRow("another widget's focus") << QStringLiteral("focus") << QStringLiteral("a한|b");
    QTest::newRow("the window's focus") << QStringLiteral("window") << QStringLiteral("a한|b");
    QTest::newRow("a cursor key") << QStringLiteral("key") << QStringLiteral("a|한b");
    QTest::newRow("a letter") << QStringLiteral("letter") << QStringLiteral("a한x|b");
    QTest::newRow("a call") << QStringLiteral("call") << QStringLiteral("a한|b");
    QTest::newRow("a new selection") << QStringLiteral("select") << QStringLiteral("[a]한b");
    QTest::newRow("paste") << QStringLiteral("paste") << QStringLiteral("a한P|b");
}

void TextViewInputMethodTest::whatEndsACompositionKeepsIt()
{
    QFETCH(QString, how);
    ShownTextView view(QStringLiteral("a|b"));
    QLineEdit other(&view);
    other.show();
    view.compose(QStringLiteral("한"));
    if (how == u"click") {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.pointAt(0));
    } else if (how == u"focus") {
        other.setFocus();
    } else if (how == u"window") {
        QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        QCoreApplication::sendEvent(&view, &out);
    } else if (how == u"key") {
        QTest::keyClick(&view, Qt::Key_Left);
    } else if (how == u"letter") {
        QTest::keyClicks(&view, QStringLiteral("x"));
    } else if (how == u"call") {
        view.commitComposition();
    } else if (how == u"select") {
        view.setSelectedRange({0, 1});
    } else {
        QGuiApplication::clipboard()->setText(QStringLiteral("P"));
        view.paste();
    }
    QVERIFY(!view.isComposing());
    QTEST(view.marked(), "after");
    // One step, whatever came after it.
    while (view.text() != u"ab") {
        QVERIFY(view.editor().canUndo());
        const QString before = view.text();
        view.undo();
        QVERIFY(view.text() != before);
    }
    QCOMPARE(view.marked(), QStringLiteral("a|b"));
    QVERIFY(!view.editor().canUndo());
}

void TextViewInputMethodTest::undoTakesTheCompositionBack()
{
    ShownTextView view(QStringLiteral("a|b"));
    QTest::keyClicks(&view, QStringLiteral("x"));
    view.compose(QStringLiteral("한"));
    undo(view);
    QVERIFY(!view.isComposing());
    QCOMPARE(view.marked(), QStringLiteral("ax|b"));
    view.redo();
    QCOMPARE(view.marked(), QStringLiteral("ax한|b"));
}

void TextViewInputMethodTest::aMenuDoesNotEndAComposition()
{
    ShownTextView view(QStringLiteral("a|b"));
    view.compose(QStringLiteral("한"));
    QFocusEvent out(QEvent::FocusOut, Qt::PopupFocusReason);
    QCoreApplication::sendEvent(&view, &out);
    QVERIFY(view.isComposing());
}

void TextViewInputMethodTest::foreignEditsDuringACompositionLoseNothing_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("after");
    QTest::newRow("before it") << QStringLiteral("before") << QStringLiteral("> one\ntw한|o\nthree");
    QTest::newRow("a line before it") << QStringLiteral("line") << QStringLiteral("\none\ntw한|o\nthree");
    QTest::newRow("behind it") << QStringLiteral("behind") << QStringLiteral("one\ntw한|o\n");
    QTest::newRow("around it") << QStringLiteral("around") << QStringLiteral("oX한|e");
    QTest::newRow("another text") << QStringLiteral("text") << QStringLiteral("new한|");
    QTest::newRow("an empty text") << QStringLiteral("empty") << QStringLiteral("한|");
}

void TextViewInputMethodTest::foreignEditsDuringACompositionLoseNothing()
{
    QFETCH(QString, how);
    ShownTextView view(QStringLiteral("one\ntw|o\nthree"));
    view.compose(QStringLiteral("하"));
    view.grab();
    TextStorage& storage = view.storage();
    if (how == u"before") {
        storage.replace({0, 0}, u"> ");
    } else if (how == u"line") {
        storage.replace({0, 0}, u"\n");
    } else if (how == u"behind") {
        storage.replace({8, 5}, u"");
    } else if (how == u"around") {
        storage.replace({1, 11}, u"X");
    } else if (how == u"text") {
        storage.setText(QStringLiteral("new"));
    } else {
        storage.setText(QString());
    }
    QVERIFY(view.isComposing());
    view.grab();
    view.compose(QStringLiteral("한"));
    view.grab();
    QCOMPARE(view.textLayout().preedit()->offset, view.selectedRange().location);
    view.commitText(QStringLiteral("한"));
    QTEST(view.marked(), "after");
    // Nothing of it stays on screen beside the text.
    ShownTextView fresh(view.marked());
    QCOMPARE(view.caretRect({view.text().size(), false}), fresh.caretRect({view.text().size(), false}));
}

void TextViewInputMethodTest::aReadOnlyViewComposesNothing()
{
    ShownTextView view(QStringLiteral("a|b"));
    view.setReadOnly(true);
    QCOMPARE(view.inputMethodQuery(Qt::ImEnabled).toBool(), false);
    view.compose(QStringLiteral("한"));
    view.commitText(QStringLiteral("한"));
    QVERIFY(!view.isComposing());
    QCOMPARE(view.text(), QStringLiteral("ab"));
}

void TextViewInputMethodTest::becomingReadOnlyKeepsTheComposition()
{
    ShownTextView view(QStringLiteral("a|b"));
    view.compose(QStringLiteral("한"));
    view.setReadOnly(true);
    QCOMPARE(view.text(), QStringLiteral("a한b"));
    QVERIFY(!view.isComposing());
}

void TextViewInputMethodTest::theCaretMayStandWithinTheComposition()
{
    ShownTextView view(QStringLiteral("a|b"));
    const qreal start = view.caretRect({1, false}).x();
    qreal last = start - 1;
    for (int position = 0; position <= 3; ++position) {
        view.compose(QStringLiteral("xyz"), {cursorAt(position)});
        const QRectF box = cursorRectangle(view);
        QVERIFY(box.x() > last);
        last = box.x();
    }
    QVERIFY(qAbs(last - view.caretRect({2, false}).x()) < 20);
    view.compose(QStringLiteral("xyz"), {cursorAt(0, false)});
    QVERIFY(!view.textLayout().preeditCaretRect());
    // A hidden caret still says where the candidates belong.
    QVERIFY(qAbs(cursorRectangle(view).x() - start) < 1);
}

void TextViewInputMethodTest::theCandidateWindowStandsAtTheCaret_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("an empty text") << QStringLiteral("|");
    QTest::newRow("the start of a line") << QStringLiteral("ab\n|cd");
    QTest::newRow("the end of a line") << QStringLiteral("ab\ncd|");
    QTest::newRow("an empty line") << QStringLiteral("ab\n|\ncd");
}

void TextViewInputMethodTest::theCandidateWindowStandsAtTheCaret()
{
    QFETCH(QString, text);
    ShownTextView view(text);
    const CaretPlace caret = view.editor().selections().primary().head;
    const QRectF plain = cursorRectangle(view);
    QCOMPARE(plain.topLeft(), view.caretRect(caret).topLeft() + view.viewport()->pos());
    QVERIFY(plain.width() >= 1);
    QCOMPARE(plain.height(), view.textLayout().rowHeight());
    // With the first syllable, before anything is painted: in the same row, right behind it.
    view.compose(QStringLiteral("ㅎ"));
    const QRectF composed = cursorRectangle(view);
    QCOMPARE(composed.top(), plain.top());
    QVERIFY(composed.x() > plain.x() && composed.x() < plain.x() + 30);
    view.compose(QStringLiteral("ㅎ"), {cursorAt(0)});
    QCOMPARE(cursorRectangle(view).topLeft(), plain.topLeft());
}

void TextViewInputMethodTest::theTextAroundTheCaretIsTold_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("surrounding");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<int>("anchor");
    QTest::addColumn<QString>("selected");
    QTest::newRow("one line") << QStringLiteral("ab|c") << QStringLiteral("abc") << 2 << 2 << QString();
    QTest::newRow("the caret's line") << QStringLiteral("one\ntw|o\nthree") << QStringLiteral("two\n") << 2 << 2
                                      << QString();
    QTest::newRow("a selection") << QStringLiteral("one\n[tw]o\nthree") << QStringLiteral("two\n") << 2 << 0
                                 << QStringLiteral("tw");
    QTest::newRow("a selection from the line before")
        << QStringLiteral("o[ne\ntw]o") << QStringLiteral("two") << 2 << 0 << QStringLiteral("ne\ntw");
    QTest::newRow("an empty text") << QStringLiteral("|") << QString() << 0 << 0 << QString();
}

void TextViewInputMethodTest::theTextAroundTheCaretIsTold()
{
    QFETCH(QString, text);
    ShownTextView view(text);
    QTEST(view.inputMethodQuery(Qt::ImSurroundingText).toString(), "surrounding");
    QTEST(view.inputMethodQuery(Qt::ImCursorPosition).toInt(), "cursor");
    QTEST(view.inputMethodQuery(Qt::ImAnchorPosition).toInt(), "anchor");
    QTEST(view.inputMethodQuery(Qt::ImCurrentSelection).toString(), "selected");
    QFETCH(QString, surrounding);
    QFETCH(int, cursor);
    QCOMPARE(view.inputMethodQuery(Qt::ImTextBeforeCursor).toString(), surrounding.left(cursor));
    QCOMPARE(view.inputMethodQuery(Qt::ImTextAfterCursor).toString(), surrounding.mid(cursor));
    QCOMPARE(view.inputMethodQuery(Qt::ImAbsolutePosition).toInt(),
             int(view.editor().selections().primary().head.offset));
    QCOMPARE(view.inputMethodQuery(Qt::ImEnabled).toBool(), true);
    QVERIFY(view.inputMethodQuery(Qt::ImHints).toInt() & Qt::ImhMultiLine);
    QCOMPARE(view.inputMethodQuery(Qt::ImFont).value<QFont>().pixelSize(), 14);
    // The composition is no part of what surrounds it.
    view.editor().setSelections(SelectionSet(Selection::caret(view.editor().selections().primary().head)));
    view.compose(QStringLiteral("한"));
    QTEST(view.inputMethodQuery(Qt::ImSurroundingText).toString(), "surrounding");
}

void TextViewInputMethodTest::surroundingsOfALongLineAreShort()
{
    ShownTextView view(QStringLiteral("😀").repeated(100'000));
    view.setSelectedRange({100'000, 0});
    const QString around = view.inputMethodQuery(Qt::ImSurroundingText).toString();
    QVERIFY(around.size() > 100 && around.size() < 4096);
    QVERIFY(around.front().isHighSurrogate());
    QVERIFY(around.back().isLowSurrogate());
    const int cursor = view.inputMethodQuery(Qt::ImCursorPosition).toInt();
    QVERIFY(cursor > 0 && cursor < around.size());
}

void TextViewInputMethodTest::oddEventsDoNoHarm()
{
    ShownTextView view(QStringLiteral("a|b"));
    view.compose(QStringLiteral("xy"), {cursorAt(-7), {QInputMethodEvent::TextFormat, -5, 100, QTextCharFormat()}});
    view.grab();
    view.compose(QStringLiteral("xy"), {cursorAt(99), {QInputMethodEvent::TextFormat, 50, -3, QTextCharFormat()}});
    view.grab();
    cursorRectangle(view);
    view.compose(QStringLiteral("\n\u2028\r"));
    view.grab();
    view.compose(QString(QChar(0xd83d)));
    view.grab();
    view.commitText(QString(), -1, 0);
    QCOMPARE(view.text(), QStringLiteral("ab"));
    view.commitText(QStringLiteral("x\r\ny"));
    QCOMPARE(view.marked(), QStringLiteral("ax\r\ny|b"));
}

const kelm::test::Registered<TextViewInputMethodTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_input_method_test

#include "text_view_input_method_test.moc"
