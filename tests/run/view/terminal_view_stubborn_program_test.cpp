#include "platform/process/process_table.h"
#include "platform/view/plain_button.h"
#include "run/view/terminal_page.h"
#include "run/view/terminal_strip.h"
#include "support/test_program.h"

#include <QStandardPaths>

namespace terminal_view_stubborn_program_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString ignoring = u"trap '' INT; echo $$ started; while :; do sleep 0.02; done"_s;
const QString ignoringBoth = u"trap '' INT TERM; echo $$ started; while :; do sleep 0.02; done"_s;
/// Its shell ends by the signal that its child ignores.
const QString ignoringBelow =
    u"trap '' INT; sh -c \"trap '' INT TERM; echo \\$\\$ started; while :; do sleep 0.02; done\"; exit"_s;

/// The number that the program of a line has said before "started".
qint64 programOf(const TerminalPage& page)
{
    const QString before = page.written().section(u" started\n"_s, 0, 0);
    qsizetype digits = before.size();
    while (digits > 0 && before[digits - 1].isDigit()) {
        --digits;
    }
    return before.sliced(digits).toLongLong();
}

bool lives(qint64 process)
{
    const std::vector<ProcessEntry> table = processTable();
    return std::any_of(table.begin(), table.end(),
                       [process](const ProcessEntry& entry) { return entry.id == process && !entry.hasEnded; });
}

} // namespace

class TerminalViewStubbornProgramTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSecondEscapeEndsIt_data();
    void aSecondEscapeEndsIt();
    void theHintComesWhenItGoesOn();
    void theButtonEndsIt();
    void aKeyThatIsHeldDownAsksOnce();
    void noHintForWhoEnds();
    void theNextCommandIsAskedAnew();
    void programsThatWantAScreenEnd_data();
    void programsThatWantAScreenEnd();
};

void TerminalViewStubbornProgramTest::aSecondEscapeEndsIt_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("ignores the interrupt") << ignoring;
    QTest::newRow("ignores being told to end") << ignoringBoth;
    QTest::newRow("its child ignores both") << ignoringBelow;
}

void TerminalViewStubbornProgramTest::aSecondEscapeEndsIt()
{
    QFETCH(QString, line);
    TerminalPage page;
    page.showBanner();
    qint64 program = 0;
    page.onceRunning(
        [&] {
            program = programOf(page);
            page.press(Qt::Key_Escape);
            QVERIFY(page.session().isInterrupted() && page.session().isBusy());
            QVERIFY(lives(program));
            page.press(Qt::Key_Escape);
        },
        u" started\n"_s);
    page.run(line);
    QVERIFY(program > 0);
    QTRY_VERIFY(!lives(program));
    const QString interrupt = u"^C"_s + page.prompt();
    QVERIFY(page.written().endsWith(interrupt + interrupt + page.prompt()));
    QVERIFY(!page.session().isInterrupted());
    page.run(u"echo ok"_s);
    QVERIFY(page.written().endsWith(u"echo okok\n"_s + page.prompt()));
}

void TerminalViewStubbornProgramTest::theHintComesWhenItGoesOn()
{
    TerminalPage page;
    page.showBanner();
    QVERIFY(page.view->strip().isHidden());
    page.onceRunning(
        [&] {
            page.app.scheduler.advance(CommandInterrupt::patience);
            QVERIFY(page.view->strip().isHidden());
            page.press(Qt::Key_Escape);
            page.app.scheduler.advance(CommandInterrupt::patience - std::chrono::milliseconds(1));
            QVERIFY(page.view->strip().isHidden());
            page.app.scheduler.advance(std::chrono::milliseconds(1));
            QVERIFY(page.view->strip().isVisible());
            QCOMPARE(page.view->strip().hint(), u"“%1” still runs Escape again ends it"_s.arg(ignoring));
            QCOMPARE(page.view->strip().accessibleName(), page.view->strip().hint());
            QVERIFY(page.text().hasFocus());
            page.press(Qt::Key_Escape);
        },
        u" started\n"_s);
    page.run(ignoring);
    QVERIFY(page.view->strip().isHidden());
    QCOMPARE(page.view->strip().hint(), QString());
}

void TerminalViewStubbornProgramTest::theButtonEndsIt()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning(
        [&] {
            page.press(Qt::Key_Escape);
            page.app.scheduler.advance(CommandInterrupt::patience);
            QTest::mouseClick(page.view->strip().endButton(), Qt::LeftButton);
        },
        u" started\n"_s);
    page.run(ignoring);
    // It says nothing of itself.
    QVERIFY(page.written().endsWith(u"started\n^C"_s + page.prompt() + page.prompt()));
    QVERIFY(page.text().hasFocus());
}

void TerminalViewStubbornProgramTest::aKeyThatIsHeldDownAsksOnce()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning(
        [&] {
            QKeyEvent first(QEvent::KeyPress, Qt::Key_Escape, {});
            QKeyEvent again(QEvent::KeyPress, Qt::Key_Escape, {}, {}, true);
            QCoreApplication::sendEvent(&page.text(), &first);
            QCOMPARE(page.session().stops(), quint64(1));
            QCoreApplication::sendEvent(&page.text(), &again);
            QCOMPARE(page.session().stops(), quint64(2));
            page.press(Qt::Key_Escape);
            QCOMPARE(page.session().stops(), quint64(4));
        },
        u" started\n"_s);
    page.run(ignoring);
}

void TerminalViewStubbornProgramTest::noHintForWhoEnds()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] { page.press(Qt::Key_Escape); }, u"started\n"_s);
    page.run(u"echo started; while :; do sleep 0.01; done"_s);
    page.app.scheduler.advance(2 * CommandInterrupt::patience);
    QVERIFY(page.view->strip().isHidden());
    // Nothing runs.
    page.press(Qt::Key_Escape);
    page.app.scheduler.advance(2 * CommandInterrupt::patience);
    QVERIFY(!page.session().isInterrupted() && page.view->strip().isHidden());
}

void TerminalViewStubbornProgramTest::theNextCommandIsAskedAnew()
{
    TerminalPage page;
    page.showBanner();
    for (int command = 0; command < 2; ++command) {
        const QString line = u"trap 'echo asked; exit' INT; echo number%1; while :; do sleep 0.01; done"_s.arg(command);
        page.onceRunning([&] { page.press(Qt::Key_Escape); }, u"number%1\n"_s.arg(command));
        page.run(line);
        QVERIFY(page.written().endsWith(u"asked\n"_s + page.prompt()));
    }
}

void TerminalViewStubbornProgramTest::programsThatWantAScreenEnd_data()
{
    QTest::addColumn<QString>("program");
    for (const QString& program : {u"vim"_s, u"top -b"_s, u"less"_s, u"python3 -i"_s, u"cat"_s, u"vi -"_s}) {
        QTest::addRow("%s", qPrintable(program)) << program;
    }
}

void TerminalViewStubbornProgramTest::programsThatWantAScreenEnd()
{
    QFETCH(QString, program);
    if (QStandardPaths::findExecutable(program.section(u' ', 0, 0)).isEmpty()) {
        QSKIP("it is not installed here");
    }
    TerminalPage page;
    page.showBanner();
    // Its input stays open, and says nothing.
    const QString line = u"(trap '' INT; echo started >&2; exec sleep 4000) | "_s + program;
    page.onceRunning(
        [&] {
            page.press(Qt::Key_Escape);
            if (page.session().isBusy()) {
                page.press(Qt::Key_Escape);
            }
        },
        u"\nstarted\n"_s);
    page.run(line);
    page.run(u"echo ok"_s);
    QVERIFY(page.written().endsWith(u"echo okok\n"_s + page.prompt()));
}

const kelm::test::Registered<TerminalViewStubbornProgramTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_view_stubborn_program_test

#include "terminal_view_stubborn_program_test.moc"
