#include "editor/kept_ready/view/kelm_editor_container.h"
#include "editor/kept_ready/view/kelm_text_view.h"
#include "platform/desktop/named_colors.h"
#include "platform/events/scheduler.h"
#include "platform/style/view/style.h"
#include "support/captured_log.h"
#include "support/painted.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"

#include <QWindow>

namespace kelm_text_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A code view with a clock and a log of its own.
struct Fixture
{
    ManualScheduler scheduler;
    CapturedLog log;
    Shown<KelmTextView> view;

    explicit Fixture(const QString& text = {}, TextRange selection = {}) : view({}, {400, 200}, scheduler, log)
    {
        show(text, selection);
    }

    void show(const QString& text, TextRange selection)
    {
        view.storage().setText(text);
        view.setSelectedRange(selection);
        log.printed.clear();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(&view, static_cast<Qt::Key>(key), modifiers);
    }
    /// Where the mark of a bracket is, -1 where none is.
    qsizetype markedAt() const
    {
        const auto runs = view.storage().background().runsIn({0, view.storage().length()});
        return runs.empty() ? -1 : runs.front().range.location;
    }
};

/// The same with a container, whose completion list and commands work on the code view.
struct ContainedFixture : Fixture
{
    NotificationCenter notifications;
    KelmEditorContainer container{notifications};

    explicit ContainedFixture(const QString& text = {}, TextRange selection = {}) : Fixture(text, selection)
    {
        view.editorContainer = &container;
    }
};

} // namespace

class KelmTextViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fieldsStartAsTheyShould();
    void keysAreTold();
    void focusIsTold();
    void theFirstFocusOfANewWindowIsTold();
    void clicksAreTold();
    void aSignOfTheThirdLevelIsTyped();
    void aNewWindowIsAskedForTheKeyboard();
    void aViewThatIsGoneIsNotAsked();

    void pairsCloseThemselves_data();
    void pairsCloseThemselves();
    void closingSignsAreNotTypedOver();
    void pairsCloseAtEveryCaret();
    void returnAndTabAreOrdinary();
    void thePartnerOfABracketIsMarked();
    void otherCommandKeysAreOrdinary();
    void clicksLeaveTheMarkAlone();

    void comments_data();
    void comments();
    void indents_data();
    void indents();
    void linesAreDoubled_data();
    void linesAreDoubled();
    void commandsAreForWhatIsComposedToo();
    void insertionsAreUndoStepsAndRemovalsAreNot();

    void withoutAContainerItsKeysDoNothing();
    void completionTakesItsKeysFirst();
    void lettersOpenCompletion_data();
    void lettersOpenCompletion();
    void controlAndSpaceCompletes();
    void cursorsAreAddedByTheContainer();
    void selectionCommandsAreTheContainers();
    void aReadOnlyTextIsNotChanged();
};

void KelmTextViewTest::fieldsStartAsTheyShould()
{
    const Fixture fixture;
    QCOMPARE(fixture.view.currentLineHighlightColor, QColor::fromRgbF(0.2F, 0.2F, 0.2F, 0.3F));
    QVERIFY(fixture.view.showIndentGuides);
    QCOMPARE(fixture.view.indentGuideColor, QColor::fromRgbF(0.3F, 0.3F, 0.3F, 0.5F));
    QCOMPARE(fixture.view.tabWidth, 4);
    QVERIFY(fixture.view.editorContainer.isNull());
    QVERIFY(!fixture.view.matchingBracketRange());
}

void KelmTextViewTest::keysAreTold()
{
    Fixture fixture(u"ab"_s);
    fixture.press(Qt::Key_X, Qt::NoModifier);
    QCOMPARE(fixture.log.printed.takeLast(), u"⌨️ keyDown: 'x' keyCode: 7"_s);
    fixture.press(Qt::Key_Down, Qt::NoModifier);
    QCOMPARE(fixture.log.printed.takeLast(), u"⌨️ keyDown: 'nil' keyCode: 125"_s);
    fixture.press(Qt::Key_D);
    QCOMPARE(fixture.log.printed.takeLast(), u"⌨️ keyDown: 'd' keyCode: 2"_s);
    // The keys that are held with others are not told of.
    fixture.log.printed.clear();
    for (const Qt::Key key : {Qt::Key_Control, Qt::Key_Shift, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_CapsLock}) {
        fixture.press(key, Qt::NoModifier);
    }
    QCOMPARE(fixture.log.printed, QStringList());
    QCOMPARE(fixture.log.written, QStringList());
}

void KelmTextViewTest::focusIsTold()
{
    Fixture fixture;
    QWidget window;
    QWidget other(&window);
    KelmTextView view(fixture.scheduler, fixture.log, &window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other.setFocus();
    fixture.log.printed.clear();
    view.setFocus();
    QCOMPARE(fixture.log.printed, (QStringList{u"🎯 acceptsFirstResponder called -> true"_s,
                                               u"🎯 becomeFirstResponder called"_s, u"   result: true"_s}));
    fixture.log.printed.clear();
    other.setFocus();
    QCOMPARE(fixture.log.printed, (QStringList{u"🎯 resignFirstResponder called"_s}));
}

void KelmTextViewTest::theFirstFocusOfANewWindowIsTold()
{
    ManualScheduler scheduler;
    CapturedLog log;
    KelmTextView view(scheduler, log);
    view.setFocus();
    view.show();
    view.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    QVERIFY(view.hasFocus());
    QCOMPARE(log.printed.count(u"🎯 becomeFirstResponder called"_s), 1);
    // Another window's coming and going changes nothing.
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    view.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    QCOMPARE(log.printed.count(u"🎯 becomeFirstResponder called"_s), 1);
    QCOMPARE(log.printed.count(u"🎯 resignFirstResponder called"_s), 0);
}

void KelmTextViewTest::clicksAreTold()
{
    Fixture fixture(u"abc"_s);
    fixture.log.printed.clear();
    QTest::mouseClick(fixture.view.viewport(), Qt::LeftButton, {}, {12, 9});
    QCOMPARE(fixture.log.printed, (QStringList{u"🖱️ mouseDown at (12, 9)"_s}));
    QVERIFY(fixture.view.hasFocus());
    fixture.log.printed.clear();
    QTest::mouseClick(fixture.view.viewport(), Qt::MiddleButton, {}, {12, 9});
    QCOMPARE(fixture.log.printed, QStringList());
    // The second press of two is one too.
    QTest::mouseDClick(fixture.view.viewport(), Qt::LeftButton, {}, {12, 9});
    QCOMPARE(fixture.log.printed, (QStringList{u"🖱️ mouseDown at (12, 9)"_s}));
}

void KelmTextViewTest::aSignOfTheThirdLevelIsTyped()
{
    Fixture fixture;
    for (const auto& [key, sign] : {std::pair(Qt::Key_BracketRight, u"]"_s), std::pair(Qt::Key_Slash, u"/"_s)}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::ControlModifier | Qt::AltModifier, sign);
        QCoreApplication::sendEvent(&fixture.view, &press);
    }
    QCOMPARE(fixture.view.text(), u"]/"_s);
}

void KelmTextViewTest::aNewWindowIsAskedForTheKeyboard()
{
    ManualScheduler scheduler;
    CapturedLog log;
    QWidget window;
    QWidget other(&window);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    KelmTextView view(scheduler, log);
    view.setParent(&window);
    QCOMPARE(log.printed, (QStringList{u"📍 viewDidMoveToWindow - window: true"_s}));
    view.show();
    other.setFocus();
    scheduler.advance(std::chrono::milliseconds(499));
    QVERIFY(!view.hasFocus());
    scheduler.advance(std::chrono::milliseconds(1));
    QVERIFY(view.hasFocus());
    QCOMPARE(log.printed.last(), u"📍 Requested first responder"_s);
    log.printed.clear();
    view.setParent(nullptr);
    QVERIFY(log.printed.contains(u"📍 viewDidMoveToWindow - window: false"_s));
    QCOMPARE(scheduler.pending(), std::size_t(0));
}

void KelmTextViewTest::aViewThatIsGoneIsNotAsked()
{
    ManualScheduler scheduler;
    CapturedLog log;
    QWidget window;
    auto view = std::make_unique<KelmTextView>(scheduler, log);
    view->setParent(&window);
    log.printed.clear();
    view.reset();
    scheduler.advance(std::chrono::milliseconds(500));
    QCOMPARE(log.printed, (QStringList{u"📍 Requested first responder"_s}));
}

void KelmTextViewTest::pairsCloseThemselves_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("text");
    QTest::newRow("parentheses") << u"("_s << u"a()b"_s;
    QTest::newRow("brackets") << u"["_s << u"a[]b"_s;
    QTest::newRow("braces") << u"{"_s << u"a{}b"_s;
    QTest::newRow("double quotes, behind a letter too") << u"\""_s << u"a\"\"b"_s;
    QTest::newRow("single quotes") << u"'"_s << u"a''b"_s;
    QTest::newRow("no pair") << u"<"_s << u"a<b"_s;
    QTest::newRow("within") << u"(x"_s << u"a(x)b"_s;
}

void KelmTextViewTest::pairsCloseThemselves()
{
    QFETCH(QString, typed);
    QFETCH(QString, text);
    Fixture fixture(u"ab"_s, {1, 0});
    QTest::keyClicks(&fixture.view, typed);
    QCOMPARE(fixture.view.text(), text);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{1 + typed.size(), 0}));
    // A selection makes way for the pair.
    fixture.show(u"aXYb"_s, {1, 2});
    QTest::keyClicks(&fixture.view, typed);
    QCOMPARE(fixture.view.text(), text);
}

void KelmTextViewTest::closingSignsAreNotTypedOver()
{
    Fixture fixture;
    QTest::keyClicks(&fixture.view, u"()"_s);
    QCOMPARE(fixture.view.text(), u"())"_s);
    fixture.show({}, {});
    QTest::keyClicks(&fixture.view, u"''"_s);
    QCOMPARE(fixture.view.text(), u"''''"_s);
}

void KelmTextViewTest::pairsCloseAtEveryCaret()
{
    Fixture fixture;
    fixture.view.set(u"a|b|"_s);
    QTest::keyClicks(&fixture.view, u"(x"_s);
    QCOMPARE(fixture.view.text(), u"a(x)b(x)"_s);
}

void KelmTextViewTest::returnAndTabAreOrdinary()
{
    Fixture fixture(u"    {"_s, {5, 0});
    fixture.press(Qt::Key_Return, Qt::NoModifier);
    fixture.press(Qt::Key_Tab, Qt::NoModifier);
    QCOMPARE(fixture.view.text(), u"    {\n\t"_s);
}

void KelmTextViewTest::thePartnerOfABracketIsMarked()
{
    Fixture fixture(u"f(a, (b)) x"_s, {0, 0});
    fixture.press(Qt::Key_Right, Qt::NoModifier);
    QCOMPARE(fixture.markedAt(), -1);
    fixture.press(Qt::Key_Right, Qt::NoModifier);
    QCOMPARE(fixture.markedAt(), 8);
    QCOMPARE(fixture.view.matchingBracketRange(), (TextRange{8, 1}));
    const auto color = fixture.view.storage().background().colorAt(8);
    QCOMPARE(qAlpha(*color), 77);
    const QColor yellow = systemColor(SystemColor::yellow, style::appearanceOf(fixture.view));
    QVERIFY(isNear(QColor::fromRgb(*color), QColor::fromRgb(yellow.rgb())));
    fixture.press(Qt::Key_Right, Qt::NoModifier);
    QCOMPARE(fixture.markedAt(), -1);
    QVERIFY(!fixture.view.matchingBracketRange());
    fixture.view.setSelectedRange({8, 0});
    fixture.press(Qt::Key_Right, Qt::NoModifier);
    QCOMPARE(fixture.markedAt(), 1);
    fixture.press(Qt::Key_Home, Qt::NoModifier);
    QCOMPARE(fixture.markedAt(), -1);
    // Typing a pair leaves an old mark where it is.
    fixture.show(u"(a)"_s, {2, 0});
    fixture.press(Qt::Key_Right, Qt::NoModifier);
    QCOMPARE(fixture.markedAt(), 0);
    QTest::keyClicks(&fixture.view, u"["_s);
    QCOMPARE(fixture.markedAt(), 0);
    // And so do the keys of commands.
    fixture.show(u"(a)"_s, {2, 0});
    fixture.press(Qt::Key_Right, Qt::NoModifier);
    fixture.view.setSelectedRange({1, 0});
    fixture.press(Qt::Key_D);
    QCOMPARE(fixture.markedAt(), 0);
    fixture.press(Qt::Key_Space);
    QCOMPARE(fixture.markedAt(), 0);
    QCOMPARE(fixture.view.matchingBracketRange(), (TextRange{0, 1}));
    // At the start of the text nothing is marked, whatever was.
    fixture.view.setSelectedRange({1, 0});
    fixture.press(Qt::Key_Left, Qt::NoModifier);
    QCOMPARE(fixture.markedAt(), -1);
}

void KelmTextViewTest::otherCommandKeysAreOrdinary()
{
    Fixture fixture(u"ab"_s, {1, 0});
    fixture.press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(fixture.view.marked(), u"a|b"_s);
    fixture.press(Qt::Key_A);
    QCOMPARE(fixture.view.marked(), u"[ab]"_s);
    QTest::keyClicks(&fixture.view, u"x"_s);
    fixture.press(Qt::Key_Z);
    QCOMPARE(fixture.view.text(), u"ab"_s);
}

void KelmTextViewTest::clicksLeaveTheMarkAlone()
{
    Fixture fixture(u"(a)"_s, {2, 0});
    fixture.press(Qt::Key_Right, Qt::NoModifier);
    QTest::mouseClick(fixture.view.viewport(), Qt::LeftButton, {}, fixture.view.inLetter(1));
    QCOMPARE(fixture.markedAt(), 0);
}

void KelmTextViewTest::comments_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<TextRange>("selection");
    QTest::addColumn<QString>("after");
    const TextRange start;
    QTest::newRow("behind the indent") << u"    x"_s << start << u"    // x"_s;
    QTest::newRow("away again") << u"    // x"_s << start << u"    x"_s;
    QTest::newRow("without a blank") << u"    //x"_s << start << u"    x"_s;
    QTest::newRow("a later token with a blank goes first") << u"//x // y"_s << start << u"//x y"_s;
    QTest::newRow("an empty line") << u"\nx"_s << start << u"\n// x"_s;
    QTest::newRow("the empty text") << QString() << start << u"// "_s;
    QTest::newRow("of several lines the first with text") << u"\n  a\nb\n"_s << TextRange{0, 6} << u"\n  // a\nb\n"_s;
    QTest::newRow("several commented lines") << u"// a\n// b\n"_s << TextRange{0, 9} << u"a\n// b\n"_s;
    QTest::newRow("a comment that does not begin the line") << u"x // y"_s << start << u"// x // y"_s;
    QTest::newRow("the caret's line only") << u"a\nb\nc"_s << TextRange{2, 0} << u"a\n// b\nc"_s;
}

void KelmTextViewTest::comments()
{
    QFETCH(QString, before);
    QFETCH(TextRange, selection);
    Fixture fixture(before, selection);
    fixture.press(Qt::Key_Slash);
    QTEST(fixture.view.text(), "after");
}

void KelmTextViewTest::indents_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<TextRange>("selection");
    QTest::addColumn<QString>("less");
    QTest::addColumn<QString>("more");
    QTest::newRow("four blanks") << u"    x"_s << TextRange() << u"x"_s << u"        x"_s;
    QTest::newRow("five blanks") << u"     x"_s << TextRange() << u" x"_s << u"         x"_s;
    QTest::newRow("three blanks") << u"   x"_s << TextRange() << u"   x"_s << u"       x"_s;
    QTest::newRow("a tab") << u"\t\tx"_s << TextRange() << u"\tx"_s << u"    \t\tx"_s;
    QTest::newRow("the first line only") << u"    a\n    b"_s << TextRange{0, 11} << u"a\n    b"_s
                                         << u"        a\n    b"_s;
    QTest::newRow("the empty text") << QString() << TextRange() << QString() << u"    "_s;
}

void KelmTextViewTest::indents()
{
    QFETCH(QString, before);
    QFETCH(TextRange, selection);
    Fixture fixture(before, selection);
    fixture.press(Qt::Key_BracketLeft);
    QTEST(fixture.view.text(), "less");
    fixture.show(before, selection);
    fixture.press(Qt::Key_BracketRight);
    QTEST(fixture.view.text(), "more");
}

void KelmTextViewTest::linesAreDoubled_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<TextRange>("selection");
    QTest::addColumn<QString>("after");
    QTest::newRow("a line") << u"a\nb\n"_s << TextRange{0, 0} << u"a\na\nb\n"_s;
    QTest::newRow("several lines") << u"a\nb\nc"_s << TextRange{0, 3} << u"a\nb\na\nb\nc"_s;
    QTest::newRow("the last line without a line end") << u"a\nbc"_s << TextRange{3, 0} << u"a\nbcbc"_s;
    QTest::newRow("CRLF") << u"a\r\nb"_s << TextRange{0, 0} << u"a\r\na\r\nb"_s;
}

void KelmTextViewTest::linesAreDoubled()
{
    QFETCH(QString, before);
    QFETCH(TextRange, selection);
    Fixture fixture(before, selection);
    fixture.press(Qt::Key_D);
    QTEST(fixture.view.text(), "after");
}

void KelmTextViewTest::commandsAreForWhatIsComposedToo()
{
    Fixture fixture;
    fixture.view.compose(u"한"_s);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_D, Qt::ControlModifier);
    QCoreApplication::sendEvent(&fixture.view, &press);
    QCOMPARE(fixture.view.text(), u"한한"_s);
}

void KelmTextViewTest::insertionsAreUndoStepsAndRemovalsAreNot()
{
    Fixture fixture(u"a\nb"_s);
    fixture.press(Qt::Key_D);
    fixture.press(Qt::Key_BracketRight);
    fixture.view.undo();
    QCOMPARE(fixture.view.text(), u"a\na\nb"_s);
    fixture.view.undo();
    QCOMPARE(fixture.view.text(), u"a\nb"_s);
    fixture.show(u"    a"_s, {});
    fixture.press(Qt::Key_BracketLeft);
    QVERIFY(!fixture.view.editor().canUndo());
    QCOMPARE(fixture.view.text(), u"a"_s);
}

void KelmTextViewTest::withoutAContainerItsKeysDoNothing()
{
    Fixture fixture(u"aa aa"_s, {0, 2});
    fixture.press(Qt::Key_L);
    fixture.press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    fixture.press(Qt::Key_Down, Qt::ControlModifier | Qt::AltModifier);
    fixture.press(Qt::Key_Up, Qt::ControlModifier | Qt::AltModifier);
    fixture.press(Qt::Key_Space);
    fixture.press(Qt::Key_Space, Qt::MetaModifier);
    QCOMPARE(fixture.view.marked(), u"[aa] aa"_s);
}

void KelmTextViewTest::completionTakesItsKeysFirst()
{
    NotificationCenter notifications;
    KelmEditorContainer container{notifications};
    container.setCurrentLanguage(Language::python);
    container.textView().storage().setText(u"fo"_s);
    container.textView().setSelectedRange({2, 0});
    Fixture fixture(u"x"_s, {1, 0});
    fixture.view.editorContainer = &container;
    container.autoCompleteManager().triggerCompletion(Language::python);
    fixture.press(Qt::Key_Down, Qt::NoModifier);
    QCOMPARE(container.autoCompleteManager().selectedIndex(), 1);
    fixture.press(Qt::Key_Up, Qt::NoModifier);
    fixture.press(Qt::Key_Tab, Qt::NoModifier);
    QCOMPARE(container.text(), u"for"_s);
    // The key went no further.
    QCOMPARE(fixture.view.text(), u"x"_s);
    fixture.press(Qt::Key_Tab, Qt::NoModifier);
    QCOMPARE(fixture.view.text(), u"x\t"_s);
}

void KelmTextViewTest::lettersOpenCompletion_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("opens");
    QTest::newRow("a letter") << u"f"_s << true;
    QTest::newRow("a letter of another script") << u"가"_s << true;
    QTest::newRow("an underscore") << u"_"_s << true;
    QTest::newRow("an at sign") << u"@"_s << true;
    QTest::newRow("an opening bracket") << u"("_s << true;
    QTest::newRow("a digit") << u"1"_s << false;
    QTest::newRow("a blank") << u" "_s << false;
    QTest::newRow("a full stop") << u"."_s << false;
}

void KelmTextViewTest::lettersOpenCompletion()
{
    QFETCH(QString, typed);
    QFETCH(bool, opens);
    ContainedFixture fixture;
    // The container's own text is what its list looks at.
    fixture.container.textView().storage().setText(u"fo"_s);
    fixture.container.textView().setSelectedRange({2, 0});
    QTest::sendKeyEvent(QTest::Click, &fixture.view, Qt::Key_unknown, typed, Qt::NoModifier);
    QCOMPARE(fixture.container.autoCompleteManager().isVisible(), opens);
}

void KelmTextViewTest::controlAndSpaceCompletes()
{
    for (const Qt::KeyboardModifier control : {Qt::ControlModifier, Qt::MetaModifier}) {
        ContainedFixture fixture;
        fixture.container.textView().storage().setText(u"fo"_s);
        fixture.container.textView().setSelectedRange({2, 0});
        fixture.press(Qt::Key_Space, control);
        QVERIFY(fixture.container.autoCompleteManager().isVisible());
        QCOMPARE(fixture.view.text(), QString());
    }
}

void KelmTextViewTest::cursorsAreAddedByTheContainer()
{
    ContainedFixture fixture(u"x\ny"_s, {0, 0});
    MultiCursorManager& cursors = fixture.container.multiCursorManager();
    fixture.container.textView().storage().setText(u"ab\ncd\nef"_s);
    fixture.press(Qt::Key_Down, Qt::ControlModifier | Qt::AltModifier);
    QVERIFY(cursors.cursors().empty());
    cursors.addCursor(4);
    fixture.press(Qt::Key_Down, Qt::ControlModifier | Qt::AltModifier);
    fixture.press(Qt::Key_Up, Qt::ControlModifier | Qt::AltModifier);
    QCOMPARE(cursors.cursors(), (std::vector<Cursor>{{1, {}}, {4, {}}, {7, {}}}));
    // The view's own carets are not touched.
    QCOMPARE(fixture.view.marked(), u"|x\ny"_s);
}

void KelmTextViewTest::selectionCommandsAreTheContainers()
{
    ContainedFixture fixture;
    TextView& held = fixture.container.textView();
    held.storage().setText(u"ab ab\nx"_s);
    held.setSelectedRange({0, 2});
    fixture.press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(held.editor().selections().all().size(), std::size_t(2));
    held.setSelectedRange({1, 0});
    fixture.press(Qt::Key_L);
    QCOMPARE(held.selectedRange(), (TextRange{0, 6}));
    // The letter may come small although Shift is held.
    held.setSelectedRange({0, 2});
    QTest::sendKeyEvent(QTest::Click, &fixture.view, Qt::Key_L, u"l"_s, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(held.editor().selections().all().size(), std::size_t(2));
}

void KelmTextViewTest::aReadOnlyTextIsNotChanged()
{
    Fixture fixture(u"    // (a)\n"_s, {8, 0});
    fixture.view.setReadOnly(true);
    for (const int key : {Qt::Key_Slash, Qt::Key_BracketLeft, Qt::Key_BracketRight, Qt::Key_D}) {
        fixture.press(key);
    }
    QTest::keyClicks(&fixture.view, u"(x"_s);
    QCOMPARE(fixture.view.text(), u"    // (a)\n"_s);
}

const kelm::test::Registered<KelmTextViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace kelm_text_view_test

#include "kelm_text_view_test.moc"
