#include "run/view/terminal_page.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QGuiApplication>

namespace terminal_text_view_typed_ahead_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Does something while a command runs, interrupts it, and waits until all has come to rest.
void interrupted(TerminalPage& page, const std::function<void()>& typing, const std::function<void()>& behind = {})
{
    const QString line = u"echo started; while :; do sleep 0.01; done"_s;
    page.onceRunning(
        [&] {
            typing();
            page.press(Qt::Key_Escape);
            if (behind) {
                behind();
            }
        },
        line + u"started"_s);
    page.run(line);
    QVERIFY(QTest::qWaitFor([&page] { return page.session().isIdle(); }, kelm::test::patience));
}

} // namespace

class TerminalTextViewTypedAheadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void escapeThrowsAwayLinesThatWait();
    void whatIsHalfTypedGoesToo();
    void editedLinesAreRememberedAsTheyWere();
    void whatIsTypedBehindEscapeStays();
    void theCaretInTheHistoryTextIsLeftAlone();
    void aFileThatWaitsIsNotRun();
    void linesGivenToTheSessionAreNotRun();
    void whatIsTypedBeforeTheFirstPromptIsTheFirstCommand();
    void linesRunWhereverTheCaretIsPutMeanwhile();
};

void TerminalTextViewTypedAheadTest::escapeThrowsAwayLinesThatWait()
{
    TerminalPage page;
    page.showBanner();
    interrupted(page, [&] {
        for (const QString& line : {u"touch one"_s, u"touch two"_s}) {
            page.type(line);
            page.press(Qt::Key_Return);
        }
    });
    QVERIFY(page.written().endsWith(u"^C"_s + page.prompt() + page.prompt()));
    QCOMPARE(page.session().commandHistory().mid(1), (QStringList{u"touch one"_s, u"touch two"_s}));
    QVERIFY(!QFileInfo::exists(page.path(u"one"_s)) && !QFileInfo::exists(page.path(u"two"_s)));
    page.press(Qt::Key_Up);
    QCOMPARE(page.text().currentCommand(), u"touch two"_s);
    page.press(Qt::Key_Up);
    page.press(Qt::Key_Return);
    QVERIFY(QFileInfo::exists(page.path(u"one"_s)));
    QVERIFY(!QFileInfo::exists(page.path(u"two"_s)));
}

void TerminalTextViewTypedAheadTest::whatIsHalfTypedGoesToo()
{
    TerminalPage page;
    page.showBanner();
    interrupted(page, [&] { page.type(u"touch hal한"_s); });
    QCOMPARE(page.text().currentCommand(), QString());
    QCOMPARE(page.session().commandHistory().size(), qsizetype(1));
    page.text().undo();
    QVERIFY(page.written().endsWith(u"^C"_s + page.prompt() + page.prompt()));
}

void TerminalTextViewTypedAheadTest::editedLinesAreRememberedAsTheyWere()
{
    TerminalPage page;
    page.makeFile(u"one"_s);
    page.makeFile(u"other"_s);
    page.showBanner();
    QGuiApplication::clipboard()->setText(u"pasted"_s);
    interrupted(page, [&] {
        page.type(u"echo ad"_s);
        page.press(Qt::Key_Left);
        page.type(u"bx"_s);
        page.press(Qt::Key_Backspace);
        page.press(Qt::Key_Return);
        page.type(u"echo "_s);
        page.press(Qt::Key_V, Qt::ControlModifier);
        page.press(Qt::Key_Return);
        // It would list two names.
        page.type(u"ls o"_s);
        page.press(Qt::Key_Tab);
        page.press(Qt::Key_Return);
        page.press(Qt::Key_Return);
    });
    QCOMPARE(page.session().commandHistory().mid(1), (QStringList{u"echo abd"_s, u"echo pasted"_s, u"ls o"_s}));
    QVERIFY(page.written().endsWith(u"started\n^C"_s + page.prompt() + page.prompt()));
}

void TerminalTextViewTypedAheadTest::whatIsTypedBehindEscapeStays()
{
    TerminalPage page;
    page.showBanner();
    interrupted(
        page,
        [&] {
            page.type(u"touch one"_s);
            page.press(Qt::Key_Return);
            page.type(u"half"_s);
        },
        [&] { page.type(u"pwd"_s); });
    QCOMPARE(page.text().currentCommand(), u"pwd"_s);
    QVERIFY(!QFileInfo::exists(page.path(u"one"_s)));
}

void TerminalTextViewTypedAheadTest::theCaretInTheHistoryTextIsLeftAlone()
{
    TerminalPage page;
    page.showBanner();
    const QString banner = page.text().text();
    interrupted(page, [&] {
        page.text().setSelectedRange({3, 0});
        page.type(u"echo lost"_s);
        page.press(Qt::Key_Return);
    });
    QVERIFY(page.text().text().startsWith(banner));
    QCOMPARE(page.session().commandHistory().mid(1), QStringList{u"echo lost"_s});
}

void TerminalTextViewTypedAheadTest::aFileThatWaitsIsNotRun()
{
    TerminalPage page;
    page.showBanner();
    const QUrl file = QUrl::fromLocalFile(page.path(u"a.sh"_s));
    interrupted(page, [&] { page.app.notificationCenter.post(notifications::runFile, file); });
    QCOMPARE(page.session().commandHistory().mid(1), QStringList{u"bash \""_s + page.path(u"a.sh"_s) + u'"'});
    QVERIFY(page.written().endsWith(u"^C"_s + page.prompt() + page.prompt()));
}

void TerminalTextViewTypedAheadTest::linesGivenToTheSessionAreNotRun()
{
    TerminalPage page;
    page.showBanner();
    interrupted(page, [&] { page.session().executeCommand(u"touch given"_s); });
    QCOMPARE(page.session().commandHistory().mid(1), QStringList{u"touch given"_s});
    QVERIFY(!QFileInfo::exists(page.path(u"given"_s)));
}

void TerminalTextViewTypedAheadTest::whatIsTypedBeforeTheFirstPromptIsTheFirstCommand()
{
    TerminalPage page;
    page.type(u"echo o"_s);
    page.showBanner();
    QVERIFY(page.text().text().endsWith(page.prompt() + u"echo o"_s));
    QCOMPARE(page.text().currentCommand(), u"echo o"_s);
    page.type(u"k > one"_s);
    page.press(Qt::Key_Return);
    QVERIFY(QFileInfo::exists(page.path(u"one"_s)));
}

void TerminalTextViewTypedAheadTest::linesRunWhereverTheCaretIsPutMeanwhile()
{
    TerminalPage page;
    page.showBanner();
    const QString banner = page.text().text();
    page.onceRunning([&] {
        page.type(u"echo one"_s);
        page.press(Qt::Key_Return);
        page.type(u"한"_s);
        page.text().setSelectedRange({3, 0});
        page.openGate();
    });
    page.run(page.waitingLine());
    QTRY_VERIFY(page.written().endsWith(u"echo oneone\n"_s + page.prompt() + u"한"_s));
    QVERIFY(page.text().text().startsWith(banner));
    QCOMPARE(page.session().commandHistory(), (QStringList{page.waitingLine(), u"echo one"_s}));
}

const kelm::test::Registered<TerminalTextViewTypedAheadTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_text_view_typed_ahead_test

#include "terminal_text_view_typed_ahead_test.moc"
