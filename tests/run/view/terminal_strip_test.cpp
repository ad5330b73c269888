#include "run/view/terminal_page.h"
#include "run/view/terminal_strip.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QGuiApplication>

namespace terminal_strip_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Types while a command runs, and looks at what waits; then the command goes on.
void whileRunning(TerminalPage& page, const std::function<void()>& typing)
{
    page.onceRunning([&] {
        typing();
        page.openGate();
    });
    page.run(page.waitingLine());
    QVERIFY(QTest::qWaitFor([&page] { return page.session().isIdle(); }, kelm::test::patience));
}

} // namespace

class TerminalStripTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesTypedAheadAreShown();
    void itIsThereOnlyWhileSomethingWaits();
    void linesGoAsTheyAreRun();
    void linesAreEditedAsTheyWillBe();
    void theHistoryIsWalkedThrough();
    void onlyTheLastFewAreShown();
    void escapeTakesThemAway();
    void keysThatOnlyLookAreNotShown();
};

void TerminalStripTest::linesTypedAheadAreShown()
{
    TerminalPage page;
    page.showBanner();
    whileRunning(page, [&] {
        page.type(u"echo one"_s);
        QCOMPARE(page.view->strip().waitingLines(), QStringList{u"echo one▏"_s});
        page.press(Qt::Key_Return);
        QCOMPARE(page.view->strip().waitingLines(), QStringList{u"echo one"_s});
        page.type(u"echo 한"_s);
        QCOMPARE(page.view->strip().waitingLines(), (QStringList{u"echo one"_s, u"echo 한▏"_s}));
        QVERIFY(page.view->strip().isVisible());
        QVERIFY(page.text().hasFocus());
    });
    QVERIFY(page.view->strip().isHidden());
    QCOMPARE(page.text().currentCommand(), u"echo 한"_s);
    QVERIFY(page.written().contains(u"echo oneone\n"_s));
}

void TerminalStripTest::itIsThereOnlyWhileSomethingWaits()
{
    TerminalPage page;
    page.showBanner();
    page.type(u"echo"_s);
    QVERIFY(page.view->strip().isHidden());
    page.press(Qt::Key_Return);
    QVERIFY(page.view->strip().isHidden());
    whileRunning(page, [&] {
        page.type(u"a"_s);
        QVERIFY(!page.view->strip().isHidden());
        page.press(Qt::Key_Backspace);
        QVERIFY(page.view->strip().isHidden());
    });
}

void TerminalStripTest::linesGoAsTheyAreRun()
{
    TerminalPage page;
    page.showBanner();
    QStringList seen;
    page.onceRunning([&] {
        page.type(u"while [ ! -e second ]; do sleep 0.01; done; echo two"_s);
        page.press(Qt::Key_Return);
        page.type(u"echo three"_s);
        page.press(Qt::Key_Return);
        page.openGate();
        QTimer::singleShot(0, page.view.get(), [&] {
            page.onceRunning(
                [&] {
                    seen = page.view->strip().waitingLines();
                    page.makeFile(u"second"_s);
                },
                u"echo two"_s);
        });
    });
    page.run(page.waitingLine());
    QTRY_VERIFY(page.written().endsWith(u"echo threethree\n"_s + page.prompt()));
    QCOMPARE(seen, QStringList{u"echo three"_s});
    QVERIFY(page.view->strip().isHidden());
}

void TerminalStripTest::linesAreEditedAsTheyWillBe()
{
    TerminalPage page;
    page.showBanner();
    QGuiApplication::clipboard()->setText(u"pasted"_s);
    whileRunning(page, [&] {
        page.type(u"echo ad"_s);
        page.press(Qt::Key_Left);
        page.type(u"bx"_s);
        page.press(Qt::Key_Backspace);
        page.press(Qt::Key_End);
        page.press(Qt::Key_V, Qt::ControlModifier);
        page.press(Qt::Key_Tab);
        QCOMPARE(page.view->strip().waitingLines(), QStringList{u"echo abdpasted▏"_s});
    });
    QCOMPARE(page.text().currentCommand(), u"echo abdpasted"_s);
    page.press(Qt::Key_Escape);
    QFile::remove(page.path(u"gate"_s));
    QGuiApplication::clipboard()->setText(u"echo one\necho two\n"_s);
    whileRunning(page, [&] {
        page.press(Qt::Key_V, Qt::ControlModifier);
        page.type(u"echo"_s);
        QCOMPARE(page.view->strip().waitingLines(), (QStringList{u"echo one"_s, u"echo two"_s, u"echo▏"_s}));
    });
    QTRY_COMPARE(page.text().currentCommand(), u"echo"_s);
    QVERIFY(page.view->strip().isHidden());
}

void TerminalStripTest::theHistoryIsWalkedThrough()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"pwd"_s);
    whileRunning(page, [&] {
        page.press(Qt::Key_Up);
        page.press(Qt::Key_Up);
        QCOMPARE(page.view->strip().waitingLines(), QStringList{u"pwd▏"_s});
        page.press(Qt::Key_Up);
        QCOMPARE(page.view->strip().waitingLines(), QStringList{u"pwd▏"_s});
        page.press(Qt::Key_Down);
        page.press(Qt::Key_Down);
        QVERIFY(page.view->strip().isHidden());
        page.type(u"echo a"_s);
        page.press(Qt::Key_Return);
        page.press(Qt::Key_Up);
        QCOMPARE(page.view->strip().waitingLines(), (QStringList{u"echo a"_s, u"echo a▏"_s}));
    });
    QCOMPARE(page.text().currentCommand(), u"echo a"_s);
}

void TerminalStripTest::onlyTheLastFewAreShown()
{
    TerminalPage page;
    page.showBanner();
    whileRunning(page, [&] {
        for (int line = 1; line <= 8; ++line) {
            page.type(u"echo %1"_s.arg(line));
            page.press(Qt::Key_Return);
        }
        QCOMPARE(page.view->strip().waitingLines(),
                 (QStringList{u"4 more"_s, u"echo 5"_s, u"echo 6"_s, u"echo 7"_s, u"echo 8"_s}));
    });
    QTRY_VERIFY(page.written().endsWith(u"echo 88\n"_s + page.prompt()));
    QVERIFY(page.view->strip().isHidden());
}

void TerminalStripTest::escapeTakesThemAway()
{
    TerminalPage page;
    page.showBanner();
    const QString line = u"trap '' INT; "_s + page.waitingLine();
    page.onceRunning([&] {
        page.type(u"echo one"_s);
        page.press(Qt::Key_Return);
        page.type(u"half"_s);
        page.press(Qt::Key_Escape);
        QVERIFY(page.view->strip().isHidden());
        page.type(u"pwd"_s);
        QCOMPARE(page.view->strip().waitingLines(), QStringList{u"pwd▏"_s});
        page.openGate();
    });
    page.run(line);
    QTRY_COMPARE(page.text().currentCommand(), u"pwd"_s);
    QVERIFY(page.view->strip().isHidden());
    QCOMPARE(page.session().commandHistory(), (QStringList{line, u"echo one"_s}));
}

void TerminalStripTest::keysThatOnlyLookAreNotShown()
{
    TerminalPage page;
    page.showBanner();
    whileRunning(page, [&] {
        page.press(Qt::Key_PageUp);
        page.press(Qt::Key_C, Qt::ControlModifier);
        page.press(Qt::Key_Shift);
        page.press(Qt::Key_F9);
        QVERIFY(page.view->strip().isHidden());
    });
}

const kelm::test::Registered<TerminalStripTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_strip_test

#include "terminal_strip_test.moc"
