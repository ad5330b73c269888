#include "support/shown_text_view.h"
#include "support/test_program.h"
#include "text/view/text_view_keys.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

namespace text_view_keys_test {

using namespace kelm;
using test::ShownTextView;

namespace {

using Standard = QKeySequence::StandardKey;

/// Takes every key before the view does, when it is told to.
class HookedView : public ShownTextView
{
public:
    using ShownTextView::ShownTextView;
    bool takes = false;
    QString seen;

protected:
    bool keyDown(QKeyEvent* event) override
    {
        seen += event->text();
        return takes;
    }
};

struct CountingDelegate : TextViewDelegate
{
    QStringList calls;
    void textDidChange() override { calls.append(QStringLiteral("text")); }
    void textViewDidChangeSelection() override { calls.append(QStringLiteral("selection")); }
};

/// The keys of the platform for an action; most list none for Backspace, which has a key of that name.
QList<QKeySequence> keysOf(Standard key)
{
    QList<QKeySequence> keys = QKeySequence::keyBindings(key);
    if (key == Standard::Backspace) {
        keys.append(QKeySequence(Qt::Key_Backspace));
    }
    return keys;
}

void press(QWidget& view, Standard key)
{
    QTest::keySequence(&view, keysOf(key).constFirst());
}

/// Sends a key again, as a keyboard does while it is held down. True when the view takes it.
bool sendRepeated(QWidget& view, Qt::Key key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {})
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text, true);
    QCoreApplication::sendEvent(&view, &event);
    return event.isAccepted();
}

} // namespace

class TextViewKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStandardKeyDoesWhatThePlatformMeans_data();
    void everyStandardKeyDoesWhatThePlatformMeans();
    void eachKeyOfThePlatformIsTaken();
    void theNumberBlockMeansTheSame();
    void cursorKeysGoByRows();
    void pagesGoByTheRowsOnScreen();
    void keysAddCaretsAboveAndBelow_data();
    void keysAddCaretsAboveAndBelow();
    void escapeKeepsTheLastCaret();
    void redoHasTheKeyThatTheMenuNames();
    void shiftBackspaceDeletesLikeBackspace();
    void textIsTyped_data();
    void textIsTyped();
    void keysThatTypeNothingAreLeft_data();
    void keysThatTypeNothingAreLeft();
    void typingGoesIntoAllSelections();
    void typedRunsAreOneStep();
    void aReadOnlyViewTypesNothing();
    void tabLeavesAReadOnlyView();
    void aSubclassTakesKeysFirst();
    void shortcutsOfTheWindowDoNotTakeTheViewsKeys_data();
    void shortcutsOfTheWindowDoNotTakeTheViewsKeys();
    void aKeyThatIsHeldFromElsewhereEditsNothing();
    void aKeyThatIsHeldFromElsewhereIsNoneOfASubclass();
    void aHeldTabWalksOverAReadOnlyView();
    void theOwnerIsToldOfEdits();
    void othersEditsAreNotTold();
};

void TextViewKeysTest::everyStandardKeyDoesWhatThePlatformMeans_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const auto row = [](const char* name, Standard key, const char* before, const char* after) {
        QTest::newRow(name) << int(key) << QString::fromUtf8(before) << QString::fromUtf8(after);
    };
    row("previous character", Standard::MoveToPreviousChar, "ab|c", "a|bc");
    row("next character", Standard::MoveToNextChar, "a|bc", "ab|c");
    row("next character over an emoji", Standard::MoveToNextChar, "|👩‍👩‍👧c", "👩‍👩‍👧|c");
    row("previous word", Standard::MoveToPreviousWord, "foo bar|", "foo |bar");
    row("next word", Standard::MoveToNextWord, "|foo bar", "foo| bar");
    row("previous line", Standard::MoveToPreviousLine, "ab\nc|d", "a|b\ncd");
    row("next line", Standard::MoveToNextLine, "a|b\ncd", "ab\nc|d");
    row("previous page", Standard::MoveToPreviousPage, "a\nb\nc|", "|a\nb\nc");
    row("next page", Standard::MoveToNextPage, "a|\nb\nc", "a\nb\nc|");
    row("start of the row", Standard::MoveToStartOfLine, "a\nbc|d", "a\n|bcd");
    row("end of the row", Standard::MoveToEndOfLine, "a\n|bcd\ne", "a\nbcd|\ne");
    row("start of the text", Standard::MoveToStartOfDocument, "a\nb|c", "|a\nbc");
    row("end of the text", Standard::MoveToEndOfDocument, "a|\nbc", "a\nbc|");
    row("select previous character", Standard::SelectPreviousChar, "ab|c", "a[b]c");
    row("select next character", Standard::SelectNextChar, "a|bc", "a[b]c");
    row("select previous word", Standard::SelectPreviousWord, "foo bar|", "foo [bar]");
    row("select next word", Standard::SelectNextWord, "|foo bar", "[foo] bar");
    row("select previous line", Standard::SelectPreviousLine, "ab\nc|d", "a[b\nc]d");
    row("select next line", Standard::SelectNextLine, "a|b\ncd", "a[b\nc]d");
    row("select previous page", Standard::SelectPreviousPage, "a\nb\nc|", "[a\nb\nc]");
    row("select next page", Standard::SelectNextPage, "|a\nb\nc", "[a\nb\nc]");
    row("select to the row's start", Standard::SelectStartOfLine, "a\nbc|d", "a\n[bc]d");
    row("select to the row's end", Standard::SelectEndOfLine, "a\n|bcd\ne", "a\n[bcd]\ne");
    row("select to the text's start", Standard::SelectStartOfDocument, "a\nb|c", "[a\nb]c");
    row("select to the text's end", Standard::SelectEndOfDocument, "a|\nbc", "a[\nbc]");
    row("select all", Standard::SelectAll, "a|\nbc", "[a\nbc]");
    row("backspace", Standard::Backspace, "ab|c", "a|c");
    row("backspace over a CRLF", Standard::Backspace, "a\r\n|c", "a|c");
    row("backspace with a selection", Standard::Backspace, "a[bc]d", "a|d");
    row("delete", Standard::Delete, "a|bc", "a|c");
    row("delete word back", Standard::DeleteStartOfWord, "foo bar|", "foo |");
    row("delete word ahead", Standard::DeleteEndOfWord, "|foo bar", "| bar");
}

void TextViewKeysTest::everyStandardKeyDoesWhatThePlatformMeans()
{
    QFETCH(int, key);
    QFETCH(QString, before);
    const QList<QKeySequence> bindings = keysOf(Standard(key));
    if (bindings.isEmpty()) {
        QSKIP("the platform has no such key");
    }
    for (const QKeySequence& binding : bindings) {
        ShownTextView view(before);
        QVERIFY(view.isShown());
        QTest::keySequence(&view, binding);
        QFETCH(QString, after);
        QVERIFY2(view.marked() == after, qPrintable(binding.toString() + QStringLiteral(": ") + view.marked()));
    }
}

void TextViewKeysTest::eachKeyOfThePlatformIsTaken()
{
    // Whatever stands in the table and has a key is found again under that key.
    for (const KeyAction& action : keyActions()) {
        const QList<QKeySequence> keys = action.standardKey == Standard::UnknownKey
                                             ? QList<QKeySequence>{action.sequence}
                                             : QKeySequence::keyBindings(action.standardKey);
        for (const QKeySequence& key : keys) {
            const QKeyCombination pressed = key[0];
            const QKeyEvent event(QEvent::KeyPress, pressed.key(), pressed.keyboardModifiers());
            const auto found = keyActionFor(event);
            QVERIFY2(found, qPrintable(key.toString()));
            const KeyAction& taken = keyActions()[static_cast<std::size_t>(*found)];
            QCOMPARE(taken.kind, action.kind);
        }
    }
    const QKeyEvent none(QEvent::KeyPress, Qt::Key_F5, Qt::ControlModifier);
    QVERIFY(!keyActionFor(none));
}

void TextViewKeysTest::theNumberBlockMeansTheSame()
{
    ShownTextView view(QStringLiteral("ab|c"));
    QTest::keyClick(&view, Qt::Key_Left, Qt::KeypadModifier);
    QCOMPARE(view.marked(), QStringLiteral("a|bc"));
    QTest::keyClick(&view, Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(view.marked(), QStringLiteral("a\n|bc"));
}

void TextViewKeysTest::cursorKeysGoByRows()
{
    // One line over several rows; the caret keeps its column and stands at a row's end where the End key puts it.
    ShownTextView view(QStringLiteral("|") + QString(200, u'x'));
    const std::vector<TextRow> rows = view.visibleRows();
    QVERIFY(rows.size() >= 3);
    press(view, Standard::MoveToNextChar);
    press(view, Standard::MoveToNextLine);
    QCOMPARE(view.selectedRange().location, rows[1].range.location + 1);
    press(view, Standard::MoveToEndOfLine);
    QCOMPARE(view.selectedRange().location, rows[1].range.end());
    QCOMPARE(view.caretRect(view.editor().selections().primary().head).top(), rows[1].top);
    press(view, Standard::MoveToStartOfLine);
    QCOMPARE(view.selectedRange().location, rows[1].range.location);
}

void TextViewKeysTest::pagesGoByTheRowsOnScreen()
{
    ShownTextView view(QStringLiteral("|") + QStringLiteral("line\n").repeated(300));
    const auto onScreen = static_cast<qsizetype>(view.viewport()->height() / view.textLayout().rowHeight());
    press(view, Standard::MoveToNextPage);
    const auto line = [&] { return view.storage().lines().lineAt(view.selectedRange().location); };
    QCOMPARE(line(), onScreen - 1);
    press(view, Standard::MoveToNextPage);
    QCOMPARE(line(), 2 * (onScreen - 1));
    QVERIFY(view.visibleRect().contains(view.visibleRect().x(), view.textLayout().topOfLine(line())));
    press(view, Standard::MoveToPreviousPage);
    press(view, Standard::MoveToPreviousPage);
    QCOMPARE(line(), qsizetype(0));
    QCOMPARE(view.visibleRect().top(), 0.0);
}

void TextViewKeysTest::keysAddCaretsAboveAndBelow_data()
{
    QTest::addColumn<Qt::KeyboardModifier>("second");
    QTest::newRow("Control and Alt") << Qt::AltModifier;
    // Where the desktop takes those.
    QTest::newRow("Control and Shift") << Qt::ShiftModifier;
}

void TextViewKeysTest::keysAddCaretsAboveAndBelow()
{
    QFETCH(Qt::KeyboardModifier, second);
    ShownTextView view(QStringLiteral("ab\nc|d\nef"));
    QTest::keyClick(&view, Qt::Key_Down, Qt::ControlModifier | second);
    QCOMPARE(view.marked(), QStringLiteral("ab\nc|d\ne|f"));
    QTest::keyClick(&view, Qt::Key_Up, Qt::ControlModifier | second);
    QCOMPARE(view.marked(), QStringLiteral("a|b\nc|d\ne|f"));
    QTest::keyClicks(&view, QStringLiteral("x"));
    QCOMPARE(view.marked(), QStringLiteral("ax|b\ncx|d\nex|f"));
    press(view, Standard::Undo);
    QCOMPARE(view.marked(), QStringLiteral("a|b\nc|d\ne|f"));
}

void TextViewKeysTest::escapeKeepsTheLastCaret()
{
    ShownTextView view(QStringLiteral("a|b|c"));
    QTest::keyClick(&view, Qt::Key_Escape);
    QCOMPARE(view.marked(), QStringLiteral("ab|c"));
    // With one caret it is left to whoever is around the view.
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &escape);
    QVERIFY(!escape.isAccepted());
}

void TextViewKeysTest::redoHasTheKeyThatTheMenuNames()
{
    ShownTextView view;
    QTest::keyClicks(&view, QStringLiteral("ab"));
    view.undo();
    QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(view.text(), QStringLiteral("ab"));
}

void TextViewKeysTest::shiftBackspaceDeletesLikeBackspace()
{
    ShownTextView view(QStringLiteral("ab|c"));
    QTest::keyClick(&view, Qt::Key_Backspace, Qt::ShiftModifier);
    QCOMPARE(view.marked(), QStringLiteral("a|c"));
}

void TextViewKeysTest::textIsTyped_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("typed");
    const auto row = [](const char* name, int key, Qt::KeyboardModifiers modifiers, const QString& text,
                        const QString& typed) {
        QTest::newRow(name) << key << int(modifiers.toInt()) << text << typed;
    };
    row("a letter", Qt::Key_A, {}, QStringLiteral("a"), QStringLiteral("a"));
    row("a capital", Qt::Key_A, Qt::ShiftModifier, QStringLiteral("A"), QStringLiteral("A"));
    row("a blank", Qt::Key_Space, {}, QStringLiteral(" "), QStringLiteral(" "));
    row("a no-break space", Qt::Key_nobreakspace, {}, QStringLiteral("\u00a0"), QStringLiteral("\u00a0"));
    row("Return", Qt::Key_Return, {}, QStringLiteral("\r"), QStringLiteral("\n"));
    row("Shift-Return", Qt::Key_Return, Qt::ShiftModifier, QStringLiteral("\r"), QStringLiteral("\n"));
    row("Enter", Qt::Key_Enter, Qt::KeypadModifier, QStringLiteral("\r"), QStringLiteral("\n"));
    row("Tab", Qt::Key_Tab, {}, QStringLiteral("\t"), QStringLiteral("\t"));
    row("a number of the number block", Qt::Key_5, Qt::KeypadModifier, QStringLiteral("5"), QStringLiteral("5"));
    row("a third-level letter", Qt::Key_Q, Qt::GroupSwitchModifier, QStringLiteral("@"), QStringLiteral("@"));
    row("Control with Alt as third level", Qt::Key_Q, Qt::ControlModifier | Qt::AltModifier, QStringLiteral("@"),
        QStringLiteral("@"));
    row("an emoji from a keyboard", 0, {}, QStringLiteral("😀"), QStringLiteral("😀"));
    row("a Korean letter from a keyboard", 0, {}, QStringLiteral("한"), QStringLiteral("한"));
    row("a zero-width joiner", 0, {}, QStringLiteral("\u200d"), QStringLiteral("\u200d"));
}

void TextViewKeysTest::textIsTyped()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, text);
    QFETCH(QString, typed);
    ShownTextView view(QStringLiteral("a[b]c"));
    QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers), text);
    QCoreApplication::sendEvent(&view, &event);
    QVERIFY(event.isAccepted());
    QCOMPARE(view.text(), u'a' + typed + u'c');
    QCOMPARE(view.selectedRange(), (TextRange{1 + typed.size(), 0}));
    press(view, Standard::Undo);
    QCOMPARE(view.marked(), QStringLiteral("a[b]c"));
}

void TextViewKeysTest::keysThatTypeNothingAreLeft_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::newRow("Escape") << int(Qt::Key_Escape) << 0 << QStringLiteral("\u001b");
    QTest::newRow("a function key") << int(Qt::Key_F3) << 0 << QString();
    QTest::newRow("Control and a letter") << int(Qt::Key_B) << int(Qt::ControlModifier) << QStringLiteral("\u0002");
    QTest::newRow("Alt and a letter") << int(Qt::Key_F) << int(Qt::AltModifier) << QStringLiteral("f");
    QTest::newRow("Control and Return") << int(Qt::Key_Return) << int(Qt::ControlModifier) << QStringLiteral("\r");
    QTest::newRow("Shift alone") << int(Qt::Key_Shift) << int(Qt::ShiftModifier) << QString();
}

void TextViewKeysTest::keysThatTypeNothingAreLeft()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, text);
    ShownTextView view(QStringLiteral("a[b]c"));
    QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers), text);
    QCoreApplication::sendEvent(&view, &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(view.marked(), QStringLiteral("a[b]c"));
}

void TextViewKeysTest::typingGoesIntoAllSelections()
{
    ShownTextView view(QStringLiteral("[a] b| [c]"));
    QTest::keyClicks(&view, QStringLiteral("xy"));
    QCOMPARE(view.marked(), QStringLiteral("xy| bxy| xy|"));
    press(view, Standard::Backspace);
    QCOMPARE(view.marked(), QStringLiteral("x| bx| x|"));
    press(view, Standard::Undo);
    QCOMPARE(view.marked(), QStringLiteral("xy| bxy| xy|"));
    press(view, Standard::Undo);
    QCOMPARE(view.marked(), QStringLiteral("[a] b| [c]"));
    press(view, Standard::Redo);
    QCOMPARE(view.marked(), QStringLiteral("xy| bxy| xy|"));
}

void TextViewKeysTest::typedRunsAreOneStep()
{
    ShownTextView view;
    QTest::keyClicks(&view, QStringLiteral("one"));
    press(view, Standard::MoveToPreviousChar);
    QTest::keyClicks(&view, QStringLiteral("two"));
    QCOMPARE(view.marked(), QStringLiteral("ontwo|e"));
    press(view, Standard::Undo);
    QCOMPARE(view.marked(), QStringLiteral("on|e"));
    press(view, Standard::Undo);
    QCOMPARE(view.text(), QString());
    press(view, Standard::Undo);
    QCOMPARE(view.text(), QString());

    // Losing the focus ends a run.
    QTest::keyClicks(&view, QStringLiteral("a"));
    QLineEdit other(&view);
    other.show();
    other.setFocus();
    view.setFocus();
    QTest::keyClicks(&view, QStringLiteral("b"));
    press(view, Standard::Undo);
    QCOMPARE(view.text(), QStringLiteral("a"));
}

void TextViewKeysTest::aReadOnlyViewTypesNothing()
{
    ShownTextView view(QStringLiteral("a[b]c"));
    QTest::keyClicks(&view, QStringLiteral("x"));
    view.setReadOnly(true);
    const QString before = view.marked();
    QTest::keyClicks(&view, QStringLiteral("y"));
    for (const Standard key : {Standard::Backspace, Standard::Delete, Standard::Cut, Standard::Paste, Standard::Undo,
                               Standard::Redo, Standard::DeleteEndOfWord}) {
        press(view, key);
        QCOMPARE(view.marked(), before);
    }
    press(view, Standard::SelectAll);
    QCOMPARE(view.marked(), QStringLiteral("[axc]"));
    view.setReadOnly(false);
    press(view, Standard::Undo);
    QCOMPARE(view.marked(), QStringLiteral("a[b]c"));
}

void TextViewKeysTest::tabLeavesAReadOnlyView()
{
    QWidget window;
    TextView view(&window);
    QLineEdit next(&window);
    next.move(0, 100);
    window.show();
    view.setFocus();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTRY_VERIFY(view.hasFocus());
    QTest::keyClick(&view, Qt::Key_Tab);
    QCOMPARE(view.text(), QStringLiteral("\t"));
    QVERIFY(view.hasFocus());
    view.setReadOnly(true);
    QTest::keyClick(&view, Qt::Key_Tab);
    QVERIFY(next.hasFocus());
    QCOMPARE(view.text(), QStringLiteral("\t"));
}

void TextViewKeysTest::aSubclassTakesKeysFirst()
{
    HookedView view(QStringLiteral("|"));
    QTest::keyClicks(&view, QStringLiteral("a"));
    view.takes = true;
    QTest::keyClicks(&view, QStringLiteral("b"));
    press(view, Standard::Backspace);
    QCOMPARE(view.text(), QStringLiteral("a"));
    QVERIFY(view.seen.startsWith(QStringLiteral("ab")));
}

void TextViewKeysTest::shortcutsOfTheWindowDoNotTakeTheViewsKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("taken");
    QTest::newRow("a letter") << int(Qt::Key_A) << 0 << QStringLiteral("a") << true;
    QTest::newRow("Undo") << int(Qt::Key_Z) << int(Qt::ControlModifier) << QString() << true;
    QTest::newRow("Copy") << int(Qt::Key_C) << int(Qt::ControlModifier) << QString() << true;
    QTest::newRow("Left") << int(Qt::Key_Left) << 0 << QString() << true;
    QTest::newRow("Save") << int(Qt::Key_S) << int(Qt::ControlModifier) << QString() << false;
    QTest::newRow("a function key") << int(Qt::Key_F3) << 0 << QString() << false;
}

void TextViewKeysTest::shortcutsOfTheWindowDoNotTakeTheViewsKeys()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, text);
    ShownTextView view(QStringLiteral("|"));
    QKeyEvent event(QEvent::ShortcutOverride, key, Qt::KeyboardModifiers(modifiers), text);
    event.ignore();
    QCoreApplication::sendEvent(&view, &event);
    QTEST(event.isAccepted(), "taken");
    QCOMPARE(view.text(), QString());
}

void TextViewKeysTest::aKeyThatIsHeldFromElsewhereEditsNothing()
{
    ShownTextView view(QStringLiteral("ab|c"));
    QVERIFY(view.isShown());
    // Nor does it go to whoever is around the view.
    QVERIFY(sendRepeated(view, Qt::Key_Return, QStringLiteral("\r")));
    QVERIFY(sendRepeated(view, Qt::Key_X, QStringLiteral("x")));
    QVERIFY(sendRepeated(view, Qt::Key_Tab, QStringLiteral("\t")));
    QVERIFY(sendRepeated(view, Qt::Key_Delete));
    QVERIFY(sendRepeated(view, Qt::Key_Backspace));
    QCOMPARE(view.marked(), QStringLiteral("ab|c"));
    // What is no key of the text does, and the caret moves on.
    QVERIFY(!sendRepeated(view, Qt::Key_Escape, QStringLiteral("\u001b")));
    QVERIFY(!sendRepeated(view, Qt::Key_F3));
    QVERIFY(sendRepeated(view, Qt::Key_Right));
    QCOMPARE(view.marked(), QStringLiteral("abc|"));
    // A key that is pressed here repeats here, also with another sign by then.
    QTest::keyPress(&view, 'x');
    QVERIFY(sendRepeated(view, Qt::Key_X, QStringLiteral("x")));
    QVERIFY(sendRepeated(view, Qt::Key_X, QStringLiteral("X"), Qt::ShiftModifier));
    QCOMPARE(view.marked(), QStringLiteral("abcxxX|"));
    QTest::keyRelease(&view, 'x');
    view.clearFocus();
    view.setFocus();
    QVERIFY(view.hasFocus());
    QVERIFY(sendRepeated(view, Qt::Key_Backspace));
    QCOMPARE(view.marked(), QStringLiteral("abcxxX|"));
    QTest::keyClick(&view, Qt::Key_Backspace);
    QCOMPARE(view.marked(), QStringLiteral("abcxx|"));
}

void TextViewKeysTest::aKeyThatIsHeldFromElsewhereIsNoneOfASubclass()
{
    HookedView view(QStringLiteral("|"));
    QVERIFY(view.isShown());
    QVERIFY(sendRepeated(view, Qt::Key_X, QStringLiteral("x")));
    QVERIFY(!sendRepeated(view, Qt::Key_D, QStringLiteral("\u0004"), Qt::ControlModifier));
    QCOMPARE(view.seen, QString());
    QTest::keyClick(&view, 'x');
    QVERIFY(sendRepeated(view, Qt::Key_X, QStringLiteral("x")));
    QCOMPARE(view.seen, QStringLiteral("xx"));
}

void TextViewKeysTest::aHeldTabWalksOverAReadOnlyView()
{
    QWidget window;
    auto* view = new TextView(&window);
    auto* next = new QLineEdit(&window);
    next->move(0, 250);
    view->setReadOnly(true);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    view->setFocus();
    QVERIFY(view->hasFocus());
    sendRepeated(*view, Qt::Key_Tab, QStringLiteral("\t"));
    QVERIFY(next->hasFocus());
}

void TextViewKeysTest::theOwnerIsToldOfEdits()
{
    ShownTextView view(QStringLiteral("ab|"));
    CountingDelegate delegate;
    view.setDelegate(&delegate);
    QTest::keyClicks(&view, QStringLiteral("c"));
    QCOMPARE(delegate.calls, (QStringList{QStringLiteral("selection"), QStringLiteral("text")}));
    delegate.calls.clear();
    press(view, Standard::Undo);
    QCOMPARE(delegate.calls.count(QStringLiteral("text")), 1);
    delegate.calls.clear();
    press(view, Standard::MoveToPreviousChar);
    QCOMPARE(delegate.calls, QStringList{QStringLiteral("selection")});
    delegate.calls.clear();
    // Nothing happens where nothing changes.
    press(view, Standard::MoveToStartOfDocument);
    press(view, Standard::Backspace);
    delegate.calls.clear();
    press(view, Standard::Backspace);
    QCOMPARE(delegate.calls.count(QStringLiteral("text")), 0);
    view.setDelegate(nullptr);
    QTest::keyClicks(&view, QStringLiteral("d"));
}

void TextViewKeysTest::othersEditsAreNotTold()
{
    ShownTextView view(QStringLiteral("ab|c"));
    CountingDelegate delegate;
    view.setDelegate(&delegate);
    view.storage().replace({3, 0}, u"x");
    QCOMPARE(delegate.calls, QStringList());
    view.storage().replace({0, 0}, u"x");
    QCOMPARE(delegate.calls, QStringList{QStringLiteral("selection")});
    QCOMPARE(view.marked(), QStringLiteral("xab|cx"));
    view.storage().setText(QStringLiteral("new"));
    QCOMPARE(delegate.calls.count(QStringLiteral("text")), 0);
}

const kelm::test::Registered<TextViewKeysTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_keys_test

#include "text_view_keys_test.moc"
