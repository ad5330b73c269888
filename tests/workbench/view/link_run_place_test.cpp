#include "app/state/link_runs.h"
#include "learning/link_permission.h"
#include "platform/style/view/style.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"
#include "support/test_program.h"
#include "workbench/view/link_run_bar.h"
#include "workbench/view/link_run_place.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QAccessible>

namespace link_run_place_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A window in which links bring shell code that leaves a file.
struct Fixture : WindowFixture
{
    LinkRunBar* bar() { return window.linkRunPlace().bar(); }
    QString ran(const QString& name) const { return home.filePath(name); }
    bool hasRun(const QString& name) const { return QFile::exists(ran(name)); }
    /// Opens code that makes a file of this name, and asks to run it.
    std::shared_ptr<Document> ask(const QString& name, const std::optional<LessonInfo>& lesson = std::nullopt)
    {
        state.openSnippet(u"echo ran >> '%1'\n"_s.arg(ran(name)), Language::shell, lesson);
        state.linkRuns().request(state.currentDocument());
        turnQueue();
        return state.currentDocument();
    }
    void waitForButtons() { QTRY_VERIFY(bar()->runButton()->isEnabled()); }
    void waitForRun(const QString& name)
    {
        QTRY_VERIFY(hasRun(name));
        QTRY_VERIFY(!state.codeRunner().isRunning());
    }
};

} // namespace

class LinkRunPlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void aBarStandsAboveTheCodeAndTakesNoKeyboard();
    void theBarIsReadOut();
    void koreanLessonsAskInKorean();
    void runRunsOnceAndTheBarGoes();
    void alwaysIsStored();
    void puttingAwayRunsNothing();
    void theBarGoesWithItsTabAndComesBack();
    void typingPutsTheBarAway();
    void closingPutsTheBarAway();
    void theTabKeyReachesTheAnswers();
    void aKeyBringsTheKeyboardFromTheText();
    void theKeyGoesThereFirstAndThenRound();
    void atFirstTheBarIsDeaf();
    void aHeldKeyPressesNothing_data();
    void aHeldKeyPressesNothing();
    void aPressOnOneQuestionAnswersNoOther();
};

void LinkRunPlaceTest::aBarStandsAboveTheCodeAndTakesNoKeyboard()
{
    Fixture fixture;
    QVERIFY(fixture.bar() == nullptr);
    QVERIFY(fixture.window.linkRunPlace().isHidden());
    fixture.ask(u"a"_s);
    QVERIFY(fixture.bar() != nullptr && fixture.bar()->isVisible());
    const auto bottom = fixture.bar()->mapTo(&fixture.window, QPoint(0, fixture.bar()->height())).y();
    QVERIFY(bottom <= fixture.text().mapTo(&fixture.window, QPoint()).y());
    QVERIFY(fixture.text().hasFocus());
    QCOMPARE(fixture.bar()->runButton()->text(), u"Run"_s);
    QCOMPARE(fixture.bar()->alwaysButton()->text(), u"Always run lesson links"_s);
}

void LinkRunPlaceTest::theBarIsReadOut()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    QAccessibleInterface* const bar = QAccessible::queryAccessibleInterface(fixture.bar());
    QCOMPARE(bar->text(QAccessible::Name), u"A link asks to run this code on this computer."_s);
    QCOMPARE(bar->role(), QAccessible::AlertMessage);
}

void LinkRunPlaceTest::koreanLessonsAskInKorean()
{
    Fixture fixture;
    fixture.ask(u"a"_s, LessonInfo{.slug = u"s"_s, .lang = u"ko"_s});
    QCOMPARE(fixture.bar()->accessibleName(), u"링크가 이 코드를 이 컴퓨터에서 실행하려고 합니다."_s);
    QCOMPARE(fixture.bar()->runButton()->text(), u"실행"_s);
}

void LinkRunPlaceTest::runRunsOnceAndTheBarGoes()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    fixture.waitForButtons();
    QVERIFY(!fixture.hasRun(u"a"_s));
    // A double click is one gesture.
    const PlainButton& button = *fixture.bar()->runButton();
    const QPoint place = button.mapTo(&fixture.window, button.rect().center());
    QTest::mouseDClick(fixture.window.windowHandle(), Qt::LeftButton, {}, place);
    fixture.turnQueue();
    QVERIFY(fixture.bar() == nullptr);
    QVERIFY(fixture.window.linkRunPlace().isHidden());
    fixture.waitForRun(u"a"_s);
    QCOMPARE(WindowFixture::read(QUrl::fromLocalFile(fixture.ran(u"a"_s))), QByteArray("ran\n"));
    QVERIFY(!linkPermission::isGiven(fixture.defaults));
}

void LinkRunPlaceTest::alwaysIsStored()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    fixture.waitForButtons();
    QTest::mouseClick(fixture.bar()->alwaysButton(), Qt::LeftButton);
    fixture.waitForRun(u"a"_s);
    QVERIFY(linkPermission::isGiven(fixture.defaults));
    fixture.ask(u"b"_s);
    QVERIFY(fixture.bar() == nullptr);
    fixture.waitForRun(u"b"_s);
}

void LinkRunPlaceTest::puttingAwayRunsNothing()
{
    Fixture fixture;
    const auto document = fixture.ask(u"a"_s);
    fixture.waitForButtons();
    QTest::mouseClick(fixture.bar()->putAwayButton(), Qt::LeftButton);
    QVERIFY(fixture.bar() == nullptr);
    QVERIFY(!fixture.state.linkRuns().asksAbout(document));
    QVERIFY(!fixture.state.codeRunner().isRunning());
}

void LinkRunPlaceTest::theBarGoesWithItsTabAndComesBack()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    fixture.state.createNewTab();
    QVERIFY(fixture.bar() == nullptr);
    fixture.state.setCurrentDocumentIndex(0);
    QVERIFY(fixture.bar() != nullptr);
    fixture.ask(u"b"_s);
    fixture.waitForButtons();
    QTest::mouseClick(fixture.bar()->runButton(), Qt::LeftButton);
    fixture.waitForRun(u"b"_s);
    QVERIFY(!fixture.hasRun(u"a"_s));
    fixture.state.setCurrentDocumentIndex(0);
    QVERIFY(fixture.bar() != nullptr);
}

void LinkRunPlaceTest::typingPutsTheBarAway()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    QTest::keyClicks(&fixture.text(), u"x"_s);
    QVERIFY(fixture.bar() == nullptr);
}

void LinkRunPlaceTest::closingPutsTheBarAway()
{
    Fixture fixture;
    fixture.state.createNewTab();
    fixture.ask(u"a"_s);
    fixture.state.closeTab(1);
    QVERIFY(fixture.bar() == nullptr);
}

void LinkRunPlaceTest::theTabKeyReachesTheAnswers()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    fixture.waitForButtons();
    // From the tabs above on.
    QList<QWidget*> reached{fixture.window.tabBar().findChildren<PlainButton*>().last()};
    reached.last()->setFocus(Qt::TabFocusReason);
    while (reached.size() < 20 && reached.last() != fixture.bar()->putAwayButton()) {
        QTest::keyClick(reached.last(), Qt::Key_Tab);
        reached.append(fixture.window.focusWidget());
    }
    const auto at = reached.indexOf(fixture.bar()->runButton());
    QVERIFY(at >= 0);
    QCOMPARE(reached.mid(at), (QList<QWidget*>{fixture.bar()->runButton(), fixture.bar()->alwaysButton(),
                                               fixture.bar()->putAwayButton()}));
    fixture.bar()->runButton()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(fixture.bar()->runButton(), Qt::Key_Return);
    fixture.waitForRun(u"a"_s);
}

void LinkRunPlaceTest::aKeyBringsTheKeyboardFromTheText()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_F6);
    QVERIFY(fixture.text().hasFocus());
    fixture.waitForButtons();
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_F6);
    QVERIFY(fixture.bar()->runButton()->hasFocus());
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Tab);
    QVERIFY(fixture.bar()->alwaysButton()->hasFocus());
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Space);
    fixture.waitForRun(u"a"_s);
    QVERIFY(linkPermission::isGiven(fixture.defaults));
    QVERIFY(fixture.text().hasFocus());
}

void LinkRunPlaceTest::theKeyGoesThereFirstAndThenRound()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    fixture.waitForButtons();
    const auto press = [&fixture](Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(fixture.window.windowHandle(), Qt::Key_F6, modifiers);
    };
    fixture.window.sidebar()->tabButton(SidebarTab::files).setFocus(Qt::TabFocusReason);
    press(Qt::ShiftModifier);
    QVERIFY(fixture.bar()->runButton()->hasFocus());
    press({});
    QVERIFY(fixture.text().hasFocus());
    // It has been there, and stands in the row of the others now.
    press({});
    QVERIFY(fixture.window.sidebar()->isAncestorOf(QApplication::focusWidget()));
    press({});
    QVERIFY(fixture.bar()->runButton()->hasFocus());
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Escape);
    QVERIFY(fixture.text().hasFocus());
    // Another question comes first again.
    fixture.ask(u"b"_s);
    fixture.waitForButtons();
    press({});
    QVERIFY(fixture.bar()->runButton()->hasFocus());
}

void LinkRunPlaceTest::atFirstTheBarIsDeaf()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    for (PlainButton* button : {fixture.bar()->runButton(), fixture.bar()->alwaysButton()}) {
        QVERIFY(!button->isEnabled());
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::keyClick(button, Qt::Key_Space);
        QTest::keyClick(button, Qt::Key_Return);
    }
    QVERIFY(fixture.bar() != nullptr);
    QVERIFY(!fixture.state.codeRunner().isRunning());
    QVERIFY(!linkPermission::isGiven(fixture.defaults));
}

void LinkRunPlaceTest::aHeldKeyPressesNothing_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter") << Qt::Key_Enter;
    QTest::newRow("space") << Qt::Key_Space;
}

void LinkRunPlaceTest::aHeldKeyPressesNothing()
{
    QFETCH(Qt::Key, key);
    Fixture fixture;
    fixture.ask(u"a"_s);
    fixture.waitForButtons();
    for (PlainButton* button : {fixture.bar()->runButton(), fixture.bar()->alwaysButton()}) {
        button->setFocus(Qt::TabFocusReason);
        // The key went down before, somewhere else.
        for (int count = 0; count < 5; ++count) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, {}, true);
            QCoreApplication::sendEvent(button, &press);
            QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, {}, true);
            QCoreApplication::sendEvent(button, &release);
        }
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
        QCoreApplication::sendEvent(button, &release);
    }
    QVERIFY(fixture.bar() != nullptr);
    QVERIFY(!fixture.state.codeRunner().isRunning());
    QVERIFY(!linkPermission::isGiven(fixture.defaults));
}

void LinkRunPlaceTest::aPressOnOneQuestionAnswersNoOther()
{
    Fixture fixture;
    fixture.ask(u"a"_s);
    fixture.waitForButtons();
    const QPointer pressed = fixture.bar()->runButton();
    const QPoint place = pressed->mapTo(&fixture.window, pressed->rect().center());
    QWindow* const window = fixture.window.windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, place);
    const auto second = fixture.ask(u"b"_s);
    // The pointer moves a little, and the button comes up above the other question.
    QTest::mouseMove(window, place + QPoint(1, 1));
    QTest::mouseRelease(window, Qt::LeftButton, {}, place + QPoint(1, 1));
    fixture.turnQueue();
    QVERIFY(!fixture.state.codeRunner().isRunning());
    QVERIFY(!fixture.hasRun(u"a"_s) && !fixture.hasRun(u"b"_s));
    QVERIFY(fixture.state.linkRuns().asksAbout(second));
    fixture.state.setCurrentDocumentIndex(0);
    QVERIFY(fixture.bar() != nullptr);
}

const kelm::test::Registered<LinkRunPlaceTest> registered(kelm::test::Toolkit::widgets);

} // namespace link_run_place_test

#include "link_run_place_test.moc"
