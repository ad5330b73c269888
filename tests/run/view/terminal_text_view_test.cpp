#include "run/view/terminal_page.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QScrollBar>
#include <QWheelEvent>

namespace terminal_text_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The colour of the text that is `piece`, where it stands last.
QColor colorOf(const TextView& view, const QString& piece)
{
    const qsizetype at = view.text().lastIndexOf(piece);
    const std::vector<ColorRun> runs = view.storage().foreground().runsIn({at, piece.size()});
    return runs.size() == 1 && runs.front().range.length == piece.size() ? QColor::fromRgba(runs.front().color)
                                                                         : QColor();
}

bool isAtEnd(const TextView& view)
{
    return view.verticalScrollBar()->value() == view.verticalScrollBar()->maximum();
}

void turnWheel(TextView& view, int angle)
{
    QWheelEvent event(QPointF(5, 5), view.viewport()->mapToGlobal(QPointF(5, 5)), {}, {0, angle}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void fill(TerminalTextView& view, const QString& line = u"line\n"_s)
{
    view.appendText(line.repeated(200), plainColors::white);
    QCoreApplication::processEvents();
}

} // namespace

class TerminalTextViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itLooksLikeATerminal();
    void theBannerAndAPromptComeFirst();
    void outputFollowsTheTypedLine();
    void anEmptyLineWritesAPromptOnly();
    void theLineIsTrimmed();
    void typedTextIsGreen();
    void tabCompletesTheOnlyName();
    void tabListsSeveralNamesAndTheLineBecomesOutput();
    void tabDoesNotLeaveTheTerminal();
    void backspaceStopsAtThePrompt();
    void backspaceOverASelectionNeedsItsStartBehindThePrompt();
    void upAndDownWalkThroughTheHistory();
    void theCaretMayGoIntoTheHistory();
    void enterOfTheNumberBlockIsNoReturn();
    void escapeWritesAPromptAlsoWhenIdle();
    void clearLeavesTwoPrompts();
    void exportAndCdWork();
    void commandStartCountsUnits_data();
    void commandStartCountsUnits();
    void replacingTheCommandGoesToTheEnd();
    void aShorterTextThanTheCommandStartIsHarmless();
    void errorsBeginALineAndAreRed();
    void coloursOfOutputAreShown();
    void coloursFollowTheAppearance();
    void escapeEndsACommandAtOnce();
    void escapeInterruptsAnEndlessStream();
    void keysDuringACommandWaitForThePrompt();
    void keysThatOnlyLookDoNotWait();
    void aLookWaitsBehindWhatWaits();
    void nobodyEditsWhileACommandRuns();
    void aCompositionDuringACommandWaits();
    void aWaitingLineRunsInItsTurn();
    void theViewMayGoWhileACommandRuns();
    void theSessionMayGoBeforeTheView();
    void writingScrollsToTheEnd();
    void whoScrollsBackStaysThere();
    void scrollingByTheProgramIsNoLookBack();
    void aKeyReturnsToTheEnd();
    void aSelectionStaysWhileOutputComes();
    void whatIsWrittenCannotBeUndone();
    void withoutASessionItIsATextView();
};

void TerminalTextViewTest::itLooksLikeATerminal()
{
    TerminalPage page;
    const TerminalTextView& view = page.text();
    QCOMPARE(view.colors().background, plainColors::black);
    QCOMPARE(view.colors().text, plainColors::green);
    QCOMPARE(view.colors().insertionPoint, plainColors::green);
    QCOMPARE(page.text().textLayout().font().pixelSize(), 13);
    QVERIFY(!view.isReadOnly());
    QCOMPARE(view.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(view.frameShape(), QFrame::NoFrame);
    QCOMPARE(view.commandStartLocation(), qsizetype(0));
    QCOMPARE(view.session(), &page.session());
    QVERIFY(page.session().textView() == &page.text());
}

void TerminalTextViewTest::theBannerAndAPromptComeFirst()
{
    TerminalPage page;
    QCOMPARE(page.text().text(), QString());
    page.showBanner();
    QCOMPARE(page.text().text(), u"KelmWright Terminal v2.0\nType 'help' for available commands\n"_s + page.prompt());
    QCOMPARE(colorOf(page.text(), u"KelmWright Terminal v2.0\n"_s), plainColors::cyan);
    QCOMPARE(colorOf(page.text(), u"Type 'help' for available commands\n"_s), plainColors::gray);
    QCOMPARE(colorOf(page.text(), page.prompt()), plainColors::cyan);
    QCOMPARE(page.text().commandStartLocation(), page.text().text().size());
    QCOMPARE(page.text().selectedRange(), (TextRange{page.text().text().size(), 0}));
}

void TerminalTextViewTest::outputFollowsTheTypedLine()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"echo hi"_s);
    QCOMPARE(page.written(), u"echo hihi\n"_s + page.prompt());
    QCOMPARE(page.session().commandHistory(), QStringList{u"echo hi"_s});
    page.run(u"pwd"_s);
    QCOMPARE(page.written(), u"echo hihi\n"_s + page.prompt() + u"pwd\n"_s + page.home() + page.prompt());
}

void TerminalTextViewTest::anEmptyLineWritesAPromptOnly()
{
    TerminalPage page;
    page.showBanner();
    page.press(Qt::Key_Return);
    QCOMPARE(page.written(), page.prompt());
    QVERIFY(page.session().commandHistory().isEmpty());
}

void TerminalTextViewTest::theLineIsTrimmed()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"  pwd   "_s);
    QCOMPARE(page.session().commandHistory(), QStringList{u"pwd"_s});
}

void TerminalTextViewTest::typedTextIsGreen()
{
    TerminalPage page;
    page.showBanner();
    page.type(u"typed"_s);
    QCOMPARE(colorOf(page.text(), u"typed"_s), plainColors::green);
    // Also in the middle of the prompt.
    page.text().setSelectedRange({page.start - 3, 0});
    page.type(u"x"_s);
    QCOMPARE(colorOf(page.text(), u"x"_s), plainColors::green);
    QCOMPARE(colorOf(page.text(), u" $ "_s.last(2)), plainColors::cyan);
}

void TerminalTextViewTest::tabCompletesTheOnlyName()
{
    TerminalPage page;
    page.makeFile(u"only-이름.txt"_s);
    page.showBanner();
    page.type(u"cat on"_s);
    page.press(Qt::Key_Tab);
    QCOMPARE(page.written(), u"cat only-이름.txt"_s);
    QCOMPARE(page.text().commandStartLocation(), page.start);
    QCOMPARE(page.text().selectedRange().location, page.text().text().size());
    page.type(u" x"_s);
    QCOMPARE(page.text().currentCommand(), u"cat only-이름.txt x"_s);
    QCOMPARE(colorOf(page.text(), u"cat only-이름.txt x"_s), plainColors::green);
    page.type(u"y"_s);
    page.press(Qt::Key_Tab);
    QCOMPARE(page.written(), u"cat only-이름.txt xy"_s);
}

void TerminalTextViewTest::tabListsSeveralNamesAndTheLineBecomesOutput()
{
    TerminalPage page;
    page.makeFile(u"one"_s);
    page.makeFile(u"other"_s);
    page.showBanner();
    page.type(u"ls o"_s);
    page.press(Qt::Key_Tab);
    const QString listed = page.written();
    QVERIFY(listed == u"ls o\none  other"_s + page.prompt() + u"ls o"_s ||
            listed == u"ls o\nother  one"_s + page.prompt() + u"ls o"_s);
    QCOMPARE(page.text().currentCommand(), QString());
    page.press(Qt::Key_Return);
    QCOMPARE(page.written(), listed + page.prompt());
    QVERIFY(page.session().commandHistory().isEmpty());
}

void TerminalTextViewTest::tabDoesNotLeaveTheTerminal()
{
    TerminalPage page;
    page.showBanner();
    page.press(Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(page.text().hasFocus());
    page.press(Qt::Key_Tab);
    QVERIFY(page.text().hasFocus());
    QVERIFY(!page.text().text().contains(u'\t'));
}

void TerminalTextViewTest::backspaceStopsAtThePrompt()
{
    TerminalPage page;
    page.showBanner();
    page.press(Qt::Key_Backspace);
    QCOMPARE(page.written(), QString());
    page.type(u"ab"_s);
    page.press(Qt::Key_Backspace);
    QCOMPARE(page.written(), u"a"_s);
    page.press(Qt::Key_Backspace);
    page.press(Qt::Key_Backspace);
    page.press(Qt::Key_Backspace, Qt::ControlModifier);
    QCOMPARE(page.written(), QString());
    QVERIFY(page.text().text().endsWith(page.prompt()));
}

void TerminalTextViewTest::backspaceOverASelectionNeedsItsStartBehindThePrompt()
{
    TerminalPage page;
    page.showBanner();
    page.type(u"abc"_s);
    for (const qsizetype from : {qsizetype(0), page.start - 1, page.start}) {
        page.text().setSelectedRange({from, page.start + 2 - from});
        page.press(Qt::Key_Backspace);
        QCOMPARE(page.written(), u"abc"_s);
    }
    page.text().setSelectedRange({page.start + 1, 2});
    page.press(Qt::Key_Backspace);
    QCOMPARE(page.written(), u"a"_s);
}

void TerminalTextViewTest::upAndDownWalkThroughTheHistory()
{
    TerminalPage page;
    page.showBanner();
    page.press(Qt::Key_Up);
    page.press(Qt::Key_Down);
    QCOMPARE(page.written(), QString());
    page.run(u"cd ."_s);
    page.run(u"cd /"_s);
    page.start = page.text().text().size();
    const QList<std::pair<Qt::Key, QString>> steps{
        {Qt::Key_Up, u"cd /"_s},   {Qt::Key_Up, u"cd ."_s},   {Qt::Key_Up, u"cd ."_s}, {Qt::Key_Down, u"cd /"_s},
        {Qt::Key_Down, QString()}, {Qt::Key_Down, QString()}, {Qt::Key_Up, u"cd /"_s}, {Qt::Key_Down, QString()},
    };
    for (const auto& [key, line] : steps) {
        page.press(key);
        QCOMPARE(page.written(), line);
        QCOMPARE(page.text().selectedRange(), (TextRange{page.text().text().size(), 0}));
    }
    QCOMPARE(page.session().historyIndex(), qsizetype(2));
    page.press(Qt::Key_Up);
    page.type(u"x"_s);
    QCOMPARE(page.written(), u"cd /x"_s);
    QCOMPARE(colorOf(page.text(), u"cd /x"_s), plainColors::green);
}

void TerminalTextViewTest::theCaretMayGoIntoTheHistory()
{
    TerminalPage page;
    page.showBanner();
    page.press(Qt::Key_Left);
    page.press(Qt::Key_Left);
    page.type(u"z"_s);
    QVERIFY(page.text().text().endsWith(u"z$ "_s));
    // It counts as output, and the command is what stands behind the old length.
    QCOMPARE(page.text().currentCommand(), QString());
    page.text().setSelectedRange({0, 0});
    page.press(Qt::Key_Return);
    QCOMPARE(page.text().selectedRange().location, page.text().text().size());
}

void TerminalTextViewTest::enterOfTheNumberBlockIsNoReturn()
{
    TerminalPage page;
    page.showBanner();
    page.type(u"echo a"_s);
    page.press(Qt::Key_Enter, Qt::KeypadModifier);
    page.type(u"echo b"_s);
    QCOMPARE(page.written(), u"echo a\necho b"_s);
    page.press(Qt::Key_Return);
    QCOMPARE(page.written(), u"echo a\necho ba\nb\n"_s + page.prompt());
}

void TerminalTextViewTest::escapeWritesAPromptAlsoWhenIdle()
{
    TerminalPage page;
    page.showBanner();
    page.type(u"half"_s);
    page.press(Qt::Key_Escape);
    QCOMPARE(page.written(), u"half^C"_s + page.prompt());
    QCOMPARE(colorOf(page.text(), u"^C"_s), plainColors::red);
    QCOMPARE(page.text().currentCommand(), QString());
}

void TerminalTextViewTest::clearLeavesTwoPrompts()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"clear"_s);
    QCOMPARE(page.text().text(), page.prompt() + page.prompt());
    QCOMPARE(page.text().commandStartLocation(), page.text().text().size());
    QCOMPARE(page.text().selectedRange().location, page.text().text().size());
}

void TerminalTextViewTest::exportAndCdWork()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"export GREETING=안녕 하세요"_s);
    page.run(u"cd /"_s);
    page.run(u"echo $GREETING in $PWD"_s);
    QVERIFY(page.written().endsWith(u"안녕 하세요 in /\n\n/ $ "_s));
}

void TerminalTextViewTest::commandStartCountsUnits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("count");
    QTest::newRow("ASCII") << u"abc"_s << qsizetype(3);
    QTest::newRow("Korean") << u"한글"_s << qsizetype(2);
    QTest::newRow("emoji") << u"a😀"_s << qsizetype(3);
    QTest::newRow("line ends") << u"a\r\nb"_s << qsizetype(4);
    QTest::newRow("accents") << u"e\u0301"_s << qsizetype(2);
    QTest::newRow("nothing") << QString() << qsizetype(0);
}

void TerminalTextViewTest::commandStartCountsUnits()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, count);
    TerminalTextView view;
    view.appendText(text, plainColors::white);
    QCOMPARE(view.commandStartLocation(), count);
    view.appendPrompt();
    QCOMPARE(view.commandStartLocation(), count + 5);
    QCOMPARE(view.text(), text + u"\n~ $ "_s);
}

void TerminalTextViewTest::replacingTheCommandGoesToTheEnd()
{
    TerminalTextView view;
    view.appendText(u"😀 > "_s, plainColors::white);
    view.storage().replace({5, 0}, u"a😀b"_s);
    view.replaceCurrentCommand(u"new"_s);
    QCOMPARE(view.text(), u"😀 > new"_s);
    QCOMPARE(view.commandStartLocation(), qsizetype(5));
    view.replaceCurrentCommand(QString());
    QCOMPARE(view.text(), u"😀 > "_s);
}

void TerminalTextViewTest::aShorterTextThanTheCommandStartIsHarmless()
{
    TerminalPage page;
    page.showBanner();
    page.text().selectAll();
    page.press(Qt::Key_Delete);
    QCOMPARE(page.text().text(), QString());
    QCOMPARE(page.text().currentCommand(), QString());
    page.type(u"abc"_s);
    page.press(Qt::Key_Backspace);
    QCOMPARE(page.text().text(), u"abc"_s);
    page.press(Qt::Key_Down);
    QCOMPARE(page.text().text(), u"abc"_s);
    page.press(Qt::Key_Return);
    QCOMPARE(page.text().text(), u"abc"_s + page.prompt());
    QCOMPARE(page.text().commandStartLocation(), page.text().text().size());
}

void TerminalTextViewTest::errorsBeginALineAndAreRed()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"echo wrong >&2"_s);
    QCOMPARE(page.written(), u"echo wrong >&2\nwrong\n"_s + page.prompt());
    QCOMPARE(colorOf(page.text(), u"\nwrong\n"_s), plainColors::red);
}

void TerminalTextViewTest::coloursOfOutputAreShown()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"printf 'plain \\033[31mred \\033[0;93mbright\\033[0m end'"_s);
    QVERIFY(page.written().endsWith(u"plain red bright end"_s + page.prompt()));
    QCOMPARE(colorOf(page.text(), u"plain "_s), plainColors::green);
    QCOMPARE(colorOf(page.text(), u"red "_s), systemColor(SystemColor::red, style::appearanceOf(page.text())));
    QCOMPARE(colorOf(page.text(), u"bright"_s), QColor(255, 255, 128));
    QCOMPARE(colorOf(page.text(), u" end"_s), plainColors::green);
}

void TerminalTextViewTest::coloursFollowTheAppearance()
{
    TerminalTextView view;
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(50, 50, 50));
    dark.setColor(QPalette::WindowText, Qt::white);
    QPalette light;
    light.setColor(QPalette::Window, QColor(236, 236, 236));
    light.setColor(QPalette::WindowText, Qt::black);
    view.setPalette(light);
    view.appendOutput({u"red other"_s, {{0, 4, SystemColor::red}, {4, 5, plainColors::white.rgba()}}});
    QCOMPARE(colorOf(view, u"red "_s), systemColor(SystemColor::red, Appearance::light));
    view.setPalette(dark);
    QCOMPARE(colorOf(view, u"red "_s), systemColor(SystemColor::red, Appearance::dark));
    QCOMPARE(colorOf(view, u"other"_s), plainColors::white);
    view.setPalette(light);
    QCOMPARE(colorOf(view, u"red "_s), systemColor(SystemColor::red, Appearance::light));
}

void TerminalTextViewTest::escapeEndsACommandAtOnce()
{
    TerminalPage page;
    page.showBanner();
    // Without the interrupt the test would not end. A child that is on its way from shell to program may lose the
    // signal, but the shell remembers it between two of them.
    const QString line = u"echo started; while :; do sleep 0.01; done"_s;
    page.onceRunning([&] { page.press(Qt::Key_Escape); }, line + u"started"_s);
    page.run(line);
    QCOMPARE(page.written(), line + u"started\n^C"_s + page.prompt() + page.prompt());
    QVERIFY(!page.session().isBusy());
    page.run(u"echo again"_s);
    QVERIFY(page.written().endsWith(u"again\n"_s + page.prompt()));
}

void TerminalTextViewTest::escapeInterruptsAnEndlessStream()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] { page.press(Qt::Key_Escape); }, u"endless\nendless\n"_s);
    page.run(u"yes endless"_s);
    QVERIFY(page.written().contains(u"^C"_s + page.prompt()));
    QVERIFY(page.text().text().endsWith(page.prompt()));
    QVERIFY(isAtEnd(page.text()));
    QVERIFY(!page.session().process()->isRunning());
}

void TerminalTextViewTest::keysDuringACommandWaitForThePrompt()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] {
        page.type(u"pwx"_s);
        page.press(Qt::Key_Backspace);
        page.type(u"d"_s);
        page.press(Qt::Key_Return);
        page.press(Qt::Key_Up);
        QCOMPARE(page.written(), page.waitingLine());
        page.openGate();
    });
    page.run(page.waitingLine());
    QTRY_COMPARE(page.written(), page.waitingLine() + u"through\n"_s + page.prompt() + u"pwd\n"_s + page.home() +
                                     page.prompt() + u"pwd"_s);
}

void TerminalTextViewTest::keysThatOnlyLookDoNotWait()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] {
        page.press(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(page.text().selectedRange(), (TextRange{0, page.text().text().size()}));
        page.press(Qt::Key_C, Qt::ControlModifier);
        QVERIFY(QGuiApplication::clipboard()->text().startsWith(u"KelmWright Terminal"_s));
        page.press(Qt::Key_End, Qt::ControlModifier);
        QVERIFY(page.text().selectedRange().isEmpty());
        page.openGate();
    });
    page.run(page.waitingLine());
    QCOMPARE(page.written(), page.waitingLine() + u"through\n"_s + page.prompt());
}

void TerminalTextViewTest::aLookWaitsBehindWhatWaits()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] {
        page.type(u"echo ad"_s);
        page.press(Qt::Key_Left);
        page.type(u"b"_s);
        page.openGate();
    });
    page.run(page.waitingLine());
    QTRY_COMPARE(page.written(), page.waitingLine() + u"through\n"_s + page.prompt() + u"echo abd"_s);
}

void TerminalTextViewTest::nobodyEditsWhileACommandRuns()
{
    TerminalPage page;
    page.showBanner();
    QGuiApplication::clipboard()->setText(u"pasted"_s);
    page.onceRunning([&] {
        page.text().paste();
        page.text().selectAll();
        page.text().deleteSelection();
        QCOMPARE(page.written(), page.waitingLine());
        page.text().setSelectedRange({page.text().text().size(), 0});
        // A key that pastes is kept.
        page.press(Qt::Key_V, Qt::ControlModifier);
        page.press(Qt::Key_Tab);
        QVERIFY(page.text().hasFocus());
        page.openGate();
    });
    page.run(page.waitingLine());
    QTRY_COMPARE(page.written(), page.waitingLine() + u"through\n"_s + page.prompt() + u"pasted"_s);
}

void TerminalTextViewTest::aCompositionDuringACommandWaits()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] {
        QInputMethodEvent composing(u"하"_s, {});
        QCoreApplication::sendEvent(&page.text(), &composing);
        QInputMethodEvent committed;
        committed.setCommitString(u"한"_s);
        QCoreApplication::sendEvent(&page.text(), &committed);
        page.type(u"!"_s);
        QCOMPARE(page.written(), page.waitingLine());
        page.openGate();
    });
    page.run(page.waitingLine());
    QTRY_COMPARE(page.written(), page.waitingLine() + u"through\n"_s + page.prompt() + u"한!"_s);
}

void TerminalTextViewTest::aWaitingLineRunsInItsTurn()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] {
        // The second command waits for a file too, and a key comes while it runs in its turn.
        page.type(u"while [ ! -e second ]; do sleep 0.01; done; echo two"_s);
        page.press(Qt::Key_Return);
        page.openGate();
        QTimer::singleShot(0, page.view.get(), [&] {
            page.onceRunning(
                [&] {
                    page.type(u"end"_s);
                    page.makeFile(u"second"_s);
                },
                u"echo two"_s);
        });
    });
    page.run(page.waitingLine());
    QTRY_VERIFY(page.written().endsWith(u"echo twotwo\n"_s + page.prompt() + u"end"_s));
    QCOMPARE(page.session().commandHistory().size(), qsizetype(2));
}

void TerminalTextViewTest::theViewMayGoWhileACommandRuns()
{
    TerminalPage page;
    page.showBanner();
    page.type(page.waitingLine());
    page.onceRunning([&] { page.view.reset(); });
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, {});
    QCoreApplication::sendEvent(&page.text(), &press);
    QVERIFY(!page.view);
    page.openGate();
}

void TerminalTextViewTest::theSessionMayGoBeforeTheView()
{
    TerminalTextView view;
    auto session =
        std::make_unique<TerminalSession>(TerminalSession::Services{Scheduler::system(), NotificationCenter::shared()});
    view.setSession(session.get());
    session.reset();
    QVERIFY(view.session() == nullptr);
    view.appendPrompt();
    QCOMPARE(view.text(), u"\n~ $ "_s);
    QTest::keyClick(&view, Qt::Key_Return);
    QCOMPARE(view.text(), u"\n~ $ \n"_s);
}

void TerminalTextViewTest::writingScrollsToTheEnd()
{
    TerminalPage page;
    page.showBanner();
    fill(page.text());
    QVERIFY(page.text().verticalScrollBar()->maximum() > 0);
    QVERIFY(isAtEnd(page.text()));
    // Wide characters take more rows than their number suggests.
    fill(page.text(), u"넓은 글자로 된 긴 줄 "_s.repeated(20) + u'\n');
    QVERIFY(isAtEnd(page.text()));
    const QRectF caret = page.text().caretRect({page.text().text().size(), false});
    QVERIFY(caret.bottom() <= page.text().viewport()->height());
    page.view->resize(500, 120);
    QTRY_VERIFY(isAtEnd(page.text()));
}

void TerminalTextViewTest::whoScrollsBackStaysThere()
{
    TerminalPage page;
    page.showBanner();
    fill(page.text());
    turnWheel(page.text(), 240);
    const int place = page.text().verticalScrollBar()->value();
    QVERIFY(!isAtEnd(page.text()));
    fill(page.text());
    QCOMPARE(page.text().verticalScrollBar()->value(), place);
    // Back at the end, the end is followed again.
    while (!isAtEnd(page.text())) {
        turnWheel(page.text(), -1200);
    }
    fill(page.text());
    QVERIFY(isAtEnd(page.text()));
    // The scroll bar and keys scroll back as well.
    page.text().verticalScrollBar()->triggerAction(QScrollBar::SliderPageStepSub);
    fill(page.text());
    QVERIFY(!isAtEnd(page.text()));
    page.text().verticalScrollBar()->triggerAction(QScrollBar::SliderToMaximum);
    fill(page.text());
    QVERIFY(isAtEnd(page.text()));
    page.press(Qt::Key_Home, Qt::ControlModifier);
    fill(page.text());
    QVERIFY(!isAtEnd(page.text()));
}

void TerminalTextViewTest::scrollingByTheProgramIsNoLookBack()
{
    TerminalPage page;
    page.showBanner();
    fill(page.text());
    page.text().scrollToY(0);
    page.text().appendText(u"more"_s, plainColors::white);
    QVERIFY(isAtEnd(page.text()));
    page.text().verticalScrollBar()->setValue(0);
    page.text().appendText(u"more"_s, plainColors::white);
    QVERIFY(isAtEnd(page.text()));
}

void TerminalTextViewTest::aKeyReturnsToTheEnd()
{
    TerminalPage page;
    page.showBanner();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        fill(page.text());
        turnWheel(page.text(), 240);
        QVERIFY(!isAtEnd(page.text()));
        page.press(key);
        QVERIFY(isAtEnd(page.text()));
    }
}

void TerminalTextViewTest::aSelectionStaysWhileOutputComes()
{
    TerminalPage page;
    page.showBanner();
    page.text().setSelectedRange({0, 10});
    page.text().appendOutput({u"more"_s, {{0, 4, plainColors::green.rgba()}}});
    QCOMPARE(page.text().selectedRange(), (TextRange{0, 10}));
    // Nothing moves under a mouse that selects.
    fill(page.text());
    QTest::mousePress(page.text().viewport(), Qt::LeftButton, {}, QPoint(20, 20));
    const int place = page.text().verticalScrollBar()->value();
    fill(page.text());
    QCOMPARE(page.text().verticalScrollBar()->value(), place);
    QTest::mouseRelease(page.text().viewport(), Qt::LeftButton, {}, QPoint(20, 20));
    QVERIFY(isAtEnd(page.text()));
}

void TerminalTextViewTest::whatIsWrittenCannotBeUndone()
{
    TerminalPage page;
    page.showBanner();
    page.type(u"cd /"_s);
    page.text().undo();
    QCOMPARE(page.written(), QString());
    page.text().redo();
    page.press(Qt::Key_Return);
    const QString before = page.text().text();
    page.text().undo();
    QCOMPARE(page.text().text(), before);
    QVERIFY(!page.text().editor().canUndo());
}

void TerminalTextViewTest::withoutASessionItIsATextView()
{
    TerminalTextView view;
    QTest::keyClicks(&view, u"ab"_s);
    QTest::keyClick(&view, Qt::Key_Return);
    QTest::keyClick(&view, Qt::Key_Tab);
    QTest::keyClick(&view, Qt::Key_Escape);
    QCOMPARE(view.text(), u"ab\n\t"_s);
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(&view, Qt::Key_Backspace);
    }
    QCOMPARE(view.text(), QString());
}

const kelm::test::Registered<TerminalTextViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_text_view_test

#include "terminal_text_view_test.moc"
