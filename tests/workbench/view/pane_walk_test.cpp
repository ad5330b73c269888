#include "app/state/notices.h"
#include "platform/style/view/style.h"
#include "support/test_program.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/controls.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/pane_walk.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QLineEdit>

namespace pane_walk_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : WindowFixture
{
    explicit Fixture(bool hasTab = true)
    {
        if (hasTab) {
            state.createNewTab();
        }
        turnQueue();
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window.windowHandle(), key, modifiers);
        turnQueue();
    }
    /// Which pane has the keyboard on something that is seen.
    QString pane()
    {
        const QWidget* const focused = QApplication::focusWidget();
        const auto isIn = [focused](const QWidget* part) { return part != nullptr && part->isAncestorOf(focused); };
        if (focused == nullptr || !focused->isVisible()) {
            return u"nowhere"_s;
        }
        return isIn(window.sidebar())       ? u"sidebar"_s
               : isIn(&window.editorArea()) ? u"text"_s
               : isIn(window.lessonPanel()) ? u"lesson"_s
               : isIn(window.bottomPanel()) ? u"bottom"_s
               : isIn(&window.noticeBar())  ? u"notice"_s
               : isIn(&window.tabBar())     ? u"tabs"_s
               : isIn(&window.toolbar())    ? u"toolbar"_s
                                            : u"elsewhere"_s;
    }
    void showAll()
    {
        openSnippet(u"code"_s, Language::swift, LessonInfo{});
        state.setShowBottomPanel(true);
        turnQueue();
        state.notices().report(u"News"_s, {{u"Take"_s, [] {}}});
        QTRY_VERIFY(window.noticeBar().isVisible());
        QTRY_VERIFY(window.lessonPanel() != nullptr);
        window.editorArea().focusCurrentEditor();
    }
};

} // namespace

class PaneWalkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void aKeyGoesRoundThePanes();
    void whatIsNotShownIsPassedOver();
    void eachPaneGivesItBackToWhatHadIt();
    void withoutATabTheWelcomeIsThePane();
    void theTabKeyReachesTheNotice();
    void escapeGoesBackToTheText_data();
    void escapeGoesBackToTheText();
    void escapeIsThoseFirstWhoNeedIt();
    void theSearchFieldHasItWhenItsTabIsChosen_data();
    void theSearchFieldHasItWhenItsTabIsChosen();
    void arrowsGoAlongTheSidebarsTabs();
};

void PaneWalkTest::aKeyGoesRoundThePanes()
{
    Fixture fixture;
    fixture.showAll();
    const QStringList round{u"lesson"_s, u"bottom"_s, u"notice"_s, u"sidebar"_s, u"text"_s, u"lesson"_s};
    for (const QString& pane : round) {
        fixture.press(Qt::Key_F6);
        QCOMPARE(fixture.pane(), pane);
    }
    for (qsizetype index = round.size() - 2; index >= 0; --index) {
        fixture.press(Qt::Key_F6, Qt::ShiftModifier);
        QCOMPARE(fixture.pane(), round[index]);
    }
    // What was gone through is as it was.
    QCOMPARE(fixture.state.currentDocument()->content(), u"code"_s);
    // From what is no pane it begins at an end.
    fixture.window.tabBar().newTabButton().setFocus(Qt::TabFocusReason);
    fixture.press(Qt::Key_F6);
    QCOMPARE(fixture.pane(), u"sidebar"_s);
    fixture.window.tabBar().newTabButton().setFocus(Qt::TabFocusReason);
    fixture.press(Qt::Key_F6, Qt::ShiftModifier);
    QCOMPARE(fixture.pane(), u"notice"_s);
}

void PaneWalkTest::whatIsNotShownIsPassedOver()
{
    Fixture fixture;
    fixture.window.editorArea().focusCurrentEditor();
    for (const QString& pane : {u"sidebar"_s, u"text"_s, u"sidebar"_s}) {
        fixture.press(Qt::Key_F6);
        QCOMPARE(fixture.pane(), pane);
    }
    fixture.state.setShowSidebar(false);
    fixture.turnQueue();
    fixture.press(Qt::Key_F6);
    QCOMPARE(fixture.pane(), u"text"_s);
}

void PaneWalkTest::eachPaneGivesItBackToWhatHadIt()
{
    Fixture fixture;
    fixture.window.sidebar()->select(SidebarTab::search);
    fixture.turnQueue();
    QWidget* const button = &fixture.window.sidebar()->tabButton(SidebarTab::search);
    button->setFocus(Qt::TabFocusReason);
    fixture.press(Qt::Key_F6);
    QCOMPARE(fixture.pane(), u"text"_s);
    fixture.press(Qt::Key_F6);
    QCOMPARE(QApplication::focusWidget(), button);
    // What is there no more is not gone back to.
    fixture.press(Qt::Key_F6);
    fixture.state.setShowSidebar(false);
    fixture.state.setShowSidebar(true);
    fixture.turnQueue();
    fixture.press(Qt::Key_F6);
    QCOMPARE(fixture.pane(), u"sidebar"_s);
}

void PaneWalkTest::withoutATabTheWelcomeIsThePane()
{
    Fixture fixture(false);
    fixture.window.sidebar()->tabButton(SidebarTab::files).setFocus(Qt::TabFocusReason);
    fixture.press(Qt::Key_F6);
    QCOMPARE(fixture.pane(), u"text"_s);
    QVERIFY(qobject_cast<QAbstractButton*>(QApplication::focusWidget()) != nullptr);
    fixture.press(Qt::Key_F6);
    QCOMPARE(fixture.pane(), u"sidebar"_s);
}

void PaneWalkTest::theTabKeyReachesTheNotice()
{
    Fixture fixture;
    fixture.state.notices().report(u"News"_s, {{u"Take"_s, [] {}}});
    QTRY_VERIFY(fixture.window.noticeBar().isVisible());
    fixture.window.sidebar()->tabButton(SidebarTab::files).setFocus(Qt::TabFocusReason);
    // Backwards, over the toolbar and the status bar; behind the notice comes the text, where Tab is typed.
    QSet<QWidget*> reached;
    while (fixture.pane() != u"notice" && fixture.pane() != u"text" && !reached.contains(QApplication::focusWidget())) {
        reached.insert(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    }
    QCOMPARE(fixture.pane(), u"notice"_s);
}

void PaneWalkTest::escapeGoesBackToTheText_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<int>("tab");
    for (const SidebarTab tab : SidebarTab::allCases()) {
        QTest::addRow("sidebar, %s", qPrintable(tab.helpLabel())) << u"sidebar"_s << int(tab);
    }
    QTest::newRow("output") << u"bottom"_s << int(BottomPanelTab::output);
    QTest::newRow("problems") << u"bottom"_s << int(BottomPanelTab::problems);
    for (const QString& from : {u"lesson"_s, u"notice"_s, u"tabs"_s, u"toolbar"_s, u"status"_s}) {
        QTest::newRow(qPrintable(from)) << from << 0;
    }
}

void PaneWalkTest::escapeGoesBackToTheText()
{
    QFETCH(QString, from);
    QFETCH(int, tab);
    Fixture fixture;
    fixture.showAll();
    if (from == u"sidebar") {
        fixture.window.sidebar()->select(SidebarTab::allCases()[std::size_t(tab)]);
    } else if (from == u"bottom") {
        fixture.state.setBottomPanelTab(BottomPanelTab::allCases()[std::size_t(tab)]);
    }
    fixture.turnQueue();
    QWidget* const part = from == u"sidebar"   ? static_cast<QWidget*>(fixture.window.sidebar())
                          : from == u"bottom"  ? static_cast<QWidget*>(fixture.window.bottomPanel())
                          : from == u"lesson"  ? fixture.window.lessonPanel()
                          : from == u"notice"  ? static_cast<QWidget*>(&fixture.window.noticeBar())
                          : from == u"tabs"    ? static_cast<QWidget*>(&fixture.window.tabBar())
                          : from == u"toolbar" ? static_cast<QWidget*>(&fixture.window.toolbar())
                                               : static_cast<QWidget*>(&fixture.window.statusBarView());
    int stops = 0;
    for (auto* stop : part->findChildren<QWidget*>()) {
        if (!stop->isVisible() || !stop->isEnabled() || (stop->focusPolicy() & Qt::TabFocus) == 0) {
            continue;
        }
        ++stops;
        stop->setFocus(Qt::TabFocusReason);
        QVERIFY(part->isAncestorOf(QApplication::focusWidget()));
        fixture.press(Qt::Key_Escape);
        QVERIFY2(fixture.text().hasFocus(), stop->metaObject()->className());
    }
    QVERIFY(stops > 0);
}

void PaneWalkTest::escapeIsThoseFirstWhoNeedIt()
{
    Fixture fixture;
    // The terminal's is the terminal's; the panes are the way out of it.
    fixture.state.setShowBottomPanel(true);
    QTRY_COMPARE(fixture.pane(), u"bottom"_s);
    fixture.press(Qt::Key_Escape);
    QCOMPARE(fixture.pane(), u"bottom"_s);
    fixture.press(Qt::Key_F6, Qt::ShiftModifier);
    QVERIFY(fixture.text().hasFocus());
    // What goes on is ended first.
    bool hasStopped = false;
    Notice notice{.text = u"Going on"_s};
    Notices::Id id = 0;
    notice.stop = [&] {
        hasStopped = true;
        fixture.state.notices().remove(id);
    };
    id = fixture.state.notices().add(notice);
    fixture.window.sidebar()->tabButton(SidebarTab::files).setFocus(Qt::TabFocusReason);
    fixture.press(Qt::Key_Escape);
    QVERIFY(hasStopped);
    QCOMPARE(fixture.pane(), u"sidebar"_s);
    fixture.press(Qt::Key_Escape);
    QVERIFY(fixture.text().hasFocus());
    // An overlay closes, and no more.
    fixture.state.setShowGoToLine(true);
    fixture.turnQueue();
    fixture.press(Qt::Key_Escape);
    QVERIFY(!fixture.state.showGoToLine());
    QVERIFY(fixture.text().hasFocus());
}

void PaneWalkTest::theSearchFieldHasItWhenItsTabIsChosen_data()
{
    QTest::addColumn<QString>("how");
    for (const QString& how : {u"a click"_s, u"a click from another tab"_s, u"Space"_s, u"Return"_s, u"once more"_s}) {
        QTest::newRow(qPrintable(how)) << how;
    }
}

void PaneWalkTest::theSearchFieldHasItWhenItsTabIsChosen()
{
    QFETCH(QString, how);
    Fixture fixture;
    SidebarView& sidebar = *fixture.window.sidebar();
    PlainButton& button = sidebar.tabButton(SidebarTab::search);
    if (how == u"a click from another tab") {
        sidebar.tabButton(SidebarTab::files).setFocus(Qt::TabFocusReason);
    } else if (how == u"once more") {
        sidebar.select(SidebarTab::search);
        fixture.text().setFocus();
    }
    if (how == u"Space" || how == u"Return") {
        button.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&button, how == u"Space" ? Qt::Key_Space : Qt::Key_Return);
    } else {
        QTest::mouseClick(&button, Qt::LeftButton);
    }
    fixture.turnQueue();
    auto* const field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(field != nullptr && sidebar.content()->isAncestorOf(field));
    // The others leave it where it is.
    fixture.text().setFocus();
    QTest::mouseClick(&sidebar.tabButton(SidebarTab::extensions), Qt::LeftButton);
    fixture.turnQueue();
    QVERIFY(fixture.text().hasFocus());
}

void PaneWalkTest::arrowsGoAlongTheSidebarsTabs()
{
    Fixture fixture;
    SidebarView& sidebar = *fixture.window.sidebar();
    sidebar.tabButton(SidebarTab::files).setFocus(Qt::TabFocusReason);
    for (const SidebarTab tab :
         {SidebarTab::search, SidebarTab::sourceControl, SidebarTab::extensions, SidebarTab::extensions}) {
        fixture.press(Qt::Key_Right);
        QCOMPARE(sidebar.selectedTab(), tab);
        QCOMPARE(QApplication::focusWidget(), &sidebar.tabButton(tab));
    }
    fixture.press(Qt::Key_Left);
    QCOMPARE(sidebar.selectedTab(), SidebarTab(SidebarTab::sourceControl));
}

const kelm::test::Registered<PaneWalkTest> registered(kelm::test::Toolkit::widgets);

} // namespace pane_walk_test

#include "pane_walk_test.moc"
