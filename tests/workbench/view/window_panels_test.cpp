#include "platform/events/notification_center.h"
#include "run/view/output_view.h"
#include "run/view/terminal_text_view.h"
#include "run/view/terminal_view.h"
#include "support/test_program.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/controls.h"
#include "workbench/view/recent_file_button.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QSplitter>

namespace window_panels_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : WindowFixture
{
    void settle()
    {
        turnQueue();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

} // namespace

class WindowPanelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void atFirstTheSidebarStandsBesideTheWelcome();
    void theSidebarKeepsItsWidths();
    void hidingTheSidebarReturnsItToFiles();
    void theSelectedSidebarTabIsMarked();
    void sidebarTabsStandInTheirOrder();
    void theBottomPanelKeepsItsTabOverClosing();
    void theBottomPanelKeepsItsHeights();
    void bottomTabsSelect();
    void theOutputGoesWithItsTabAndTheTerminalStays();
    void exitPutsThePanelAwayAndLeavesTheTerminal();
    void thePanelOpensAtItsHeightOverTheWelcomeToo();
    void anOpenedTerminalHasTheKeyboard();
    void anotherPageLeavesTheKeyboardInTheText();
    void theSettingsOpenOverTheWindow();
    void theWindowDoesNotShrinkBelowItsFloor();
    void panelsFitAtTheSmallestAndTheLargestSize_data();
    void panelsFitAtTheSmallestAndTheLargestSize();
};

void WindowPanelsTest::atFirstTheSidebarStandsBesideTheWelcome()
{
    Fixture fixture;
    QVERIFY(fixture.window.sidebar() != nullptr && fixture.window.sidebar()->isVisible());
    QVERIFY(visibleButton(fixture.window.editorArea(), u"New File"_s) != nullptr);
    QVERIFY(fixture.window.bottomPanel() == nullptr);
    QVERIFY(fixture.window.lessonPanel() == nullptr);
}

void WindowPanelsTest::theSidebarKeepsItsWidths()
{
    Fixture fixture;
    auto* splitter = qobject_cast<QSplitter*>(fixture.window.sidebar()->parentWidget());
    QVERIFY(splitter != nullptr);
    QCOMPARE(fixture.window.sidebar()->width(), 260);
    splitter->setSizes({10, 2000});
    QCOMPARE(fixture.window.sidebar()->width(), 220);
    splitter->setSizes({2000, 10});
    QCOMPARE(fixture.window.sidebar()->width(), 420);
}

void WindowPanelsTest::hidingTheSidebarReturnsItToFiles()
{
    Fixture fixture;
    fixture.window.sidebar()->select(SidebarTab::extensions);
    fixture.state.setShowSidebar(false);
    QVERIFY(fixture.window.sidebar() == nullptr);
    fixture.state.setShowSidebar(true);
    fixture.settle();
    QCOMPARE(fixture.window.sidebar()->selectedTab(), SidebarTab(SidebarTab::files));
    QCOMPARE(fixture.window.sidebar()->width(), 260);
}

void WindowPanelsTest::theSelectedSidebarTabIsMarked()
{
    Fixture fixture;
    SidebarView& sidebar = *fixture.window.sidebar();
    QTest::mouseClick(&sidebar.tabButton(SidebarTab::extensions), Qt::LeftButton);
    QCOMPARE(sidebar.selectedTab(), SidebarTab(SidebarTab::extensions));
    for (const SidebarTab tab : SidebarTab::allCases()) {
        QCOMPARE(sidebar.tabButton(tab).isChecked(), tab == SidebarTab(SidebarTab::extensions));
    }
    // A second click leaves it as it is.
    QTest::mouseClick(&sidebar.tabButton(SidebarTab::extensions), Qt::LeftButton);
    QVERIFY(sidebar.tabButton(SidebarTab::extensions).isChecked());
}

void WindowPanelsTest::sidebarTabsStandInTheirOrder()
{
    Fixture fixture;
    SidebarView& sidebar = *fixture.window.sidebar();
    QStringList helps;
    int right = 0;
    for (const SidebarTab tab : SidebarTab::allCases()) {
        helps.append(sidebar.tabButton(tab).toolTip());
        QVERIFY(sidebar.tabButton(tab).x() > right);
        right = sidebar.tabButton(tab).geometry().right();
    }
    QCOMPARE(helps, (QStringList{u"Explorer"_s, u"Search"_s, u"Source Control"_s, u"Extensions"_s}));
}

void WindowPanelsTest::theBottomPanelKeepsItsTabOverClosing()
{
    Fixture fixture;
    fixture.state.setBottomPanelTab(BottomPanelTab::problems);
    fixture.state.setShowBottomPanel(true);
    BottomPanel& panel = *fixture.window.bottomPanel();
    QVERIFY(panel.isVisible() && panel.tabButton(BottomPanelTab::problems).isChecked());
    QTest::mouseClick(&panel.closeButton(), Qt::LeftButton);
    QVERIFY(!fixture.state.showBottomPanel());
    QVERIFY(!panel.isVisible());
    fixture.command(Command::toggleBottomPanel)->trigger();
    QVERIFY(fixture.window.bottomPanel()->isVisible());
    QCOMPARE(fixture.state.bottomPanelTab(), BottomPanelTab(BottomPanelTab::problems));
}

void WindowPanelsTest::theBottomPanelKeepsItsHeights()
{
    Fixture fixture;
    fixture.state.setShowBottomPanel(true);
    fixture.turnQueue();
    auto* splitter = qobject_cast<QSplitter*>(fixture.window.bottomPanel()->parentWidget());
    QCOMPARE(fixture.window.bottomPanel()->height(), 280);
    splitter->setSizes({2000, 10});
    QCOMPARE(fixture.window.bottomPanel()->height(), 200);
    fixture.window.resize(1200, 1400);
    fixture.turnQueue();
    splitter->setSizes({10, 2000});
    QCOMPARE(fixture.window.bottomPanel()->height(), 500);
}

void WindowPanelsTest::bottomTabsSelect()
{
    Fixture fixture;
    fixture.state.setShowBottomPanel(true);
    BottomPanel& panel = *fixture.window.bottomPanel();
    for (const BottomPanelTab tab : {BottomPanelTab::output, BottomPanelTab::problems, BottomPanelTab::terminal}) {
        QTest::mouseClick(&panel.tabButton(tab), Qt::LeftButton);
        QCOMPARE(fixture.state.bottomPanelTab(), tab);
        QVERIFY(panel.content()->isVisible());
        for (const BottomPanelTab other : BottomPanelTab::allCases()) {
            QCOMPARE(panel.tabButton(other).isChecked(), other == tab);
        }
    }
}

void WindowPanelsTest::theOutputGoesWithItsTabAndTheTerminalStays()
{
    Fixture fixture;
    fixture.state.setShowBottomPanel(true);
    const auto terminal = [&] { return fixture.window.bottomPanel()->findChild<TerminalView*>(); };
    const auto output = [&] { return fixture.window.bottomPanel()->findChild<OutputView*>()->output(); };
    const QUuid session = terminal()->session().id();
    QTest::keyClicks(&terminal()->textView(), u"stays"_s);
    fixture.state.setBottomPanelTab(BottomPanelTab::output);
    fixture.notifications.post(notifications::codeOutput, u"seen"_s);
    QCOMPARE(output(), u"seen"_s);
    fixture.state.setBottomPanelTab(BottomPanelTab::problems);
    fixture.notifications.post(notifications::codeOutput, u"unseen"_s);
    fixture.settle();
    fixture.state.setBottomPanelTab(BottomPanelTab::output);
    QCOMPARE(output(), QString());
    fixture.state.setBottomPanelTab(BottomPanelTab::terminal);
    fixture.state.setShowBottomPanel(false);
    fixture.settle();
    fixture.state.setShowBottomPanel(true);
    QCOMPARE(terminal()->session().id(), session);
    QVERIFY(terminal()->textView().text().contains(u"stays"_s));
}

void WindowPanelsTest::exitPutsThePanelAwayAndLeavesTheTerminal()
{
    Fixture fixture;
    fixture.state.setShowBottomPanel(true);
    fixture.settle();
    auto* terminal = fixture.window.bottomPanel()->findChild<TerminalView*>();
    const QUuid session = terminal->session().id();
    QTest::keyClicks(&terminal->textView(), u"exit"_s);
    QTest::keyClick(&terminal->textView(), Qt::Key_Return);
    QVERIFY(!fixture.state.showBottomPanel());
    QVERIFY(!fixture.window.bottomPanel()->isVisible());
    fixture.settle();
    fixture.state.setShowBottomPanel(true);
    fixture.settle();
    QCOMPARE(fixture.state.bottomPanelTab(), BottomPanelTab(BottomPanelTab::terminal));
    terminal = fixture.window.bottomPanel()->findChild<TerminalView*>();
    QCOMPARE(terminal->session().id(), session);
    QVERIFY(terminal->textView().text().contains(u"exit"_s));
    QCOMPARE(terminal->session().commandHistory(), QStringList{u"exit"_s});
}

void WindowPanelsTest::thePanelOpensAtItsHeightOverTheWelcomeToo()
{
    Fixture fixture;
    for (int file = 0; file < 6; ++file) {
        fixture.state.openFile(fixture.write(u"%1.txt"_s.arg(file), "x"));
    }
    while (fixture.state.currentDocument()) {
        fixture.state.closeTab(0);
    }
    fixture.turnQueue();
    fixture.state.setShowBottomPanel(true);
    fixture.turnQueue();
    QCOMPARE(fixture.window.bottomPanel()->height(), 280);
    fixture.window.resize(900, 600);
    fixture.settle();
    const auto recent = fixture.window.editorArea().findChildren<RecentFileButton*>();
    QCOMPARE(recent.size(), 5);
    for (const auto* button : recent) {
        QCOMPARE(button->height(), button->sizeHint().height());
    }
}

void WindowPanelsTest::anOpenedTerminalHasTheKeyboard()
{
    Fixture fixture;
    fixture.state.createNewTab();
    fixture.turnQueue();
    fixture.text().setFocus();
    fixture.state.setShowBottomPanel(true);
    fixture.turnQueue();
    BottomPanel& panel = *fixture.window.bottomPanel();
    QVERIFY(panel.content()->isAncestorOf(fixture.window.focusWidget()));
    fixture.state.setShowBottomPanel(false);
    QVERIFY(fixture.text().hasFocus());
    // So it has after a click on its tab.
    fixture.state.setBottomPanelTab(BottomPanelTab::problems);
    fixture.state.setShowBottomPanel(true);
    fixture.turnQueue();
    QVERIFY(fixture.text().hasFocus());
    QTest::mouseClick(&panel.tabButton(BottomPanelTab::terminal), Qt::LeftButton);
    QVERIFY(panel.content()->isAncestorOf(fixture.window.focusWidget()));
    // Who goes through the tabs by keyboard stays there.
    panel.tabButton(BottomPanelTab::terminal).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&panel.tabButton(BottomPanelTab::terminal), Qt::Key_Space);
    QVERIFY(panel.tabButton(BottomPanelTab::terminal).hasFocus());
}

void WindowPanelsTest::anotherPageLeavesTheKeyboardInTheText()
{
    Fixture fixture;
    fixture.state.createNewTab();
    fixture.turnQueue();
    fixture.text().setFocus();
    QVERIFY(fixture.state.bottomPanelTab() == BottomPanelTab::terminal);
    // As running a file does it: the panel first, and then the page.
    fixture.state.setShowBottomPanel(true);
    fixture.state.setBottomPanelTab(BottomPanelTab::output);
    fixture.turnQueue();
    QVERIFY(fixture.text().hasFocus());
}

void WindowPanelsTest::theSettingsOpenOverTheWindow()
{
    Fixture fixture;
    fixture.window.openSettings();
    const auto windows = QApplication::topLevelWidgets();
    const auto settings = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
        return window->windowTitle() == u"Settings" && window->isVisible();
    });
    QVERIFY(settings != windows.end());
    const QPoint apart = (*settings)->geometry().center() - fixture.window.frameGeometry().center();
    // Give or take what a frame adds.
    QVERIFY(std::abs(apart.x()) < 10 && std::abs(apart.y()) < 40);
}

void WindowPanelsTest::theWindowDoesNotShrinkBelowItsFloor()
{
    Fixture fixture;
    fixture.window.resize(100, 100);
    QVERIFY(fixture.window.width() >= 900 && fixture.window.height() >= 600);
    QCOMPARE(fixture.window.centralWidget()->size(), QSize(900, 600));
    const QWidget& statusBar = fixture.window.statusBarView();
    QVERIFY(fixture.window.rect().contains(QRect(statusBar.mapTo(&fixture.window, QPoint()), statusBar.size())));
}

void WindowPanelsTest::panelsFitAtTheSmallestAndTheLargestSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smallest") << QSize(900, 600);
    QTest::newRow("largest") << QSize(3840, 2160);
}

void WindowPanelsTest::panelsFitAtTheSmallestAndTheLargestSize()
{
    QFETCH(QSize, size);
    Fixture fixture;
    fixture.state.openSnippet(u"a"_s, Language::python, std::nullopt);
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.path()));
    fixture.state.setShowBottomPanel(true);
    fixture.window.resize(size);
    fixture.settle();
    QVERIFY(fixture.window.height() <= std::max(size.height(), fixture.window.minimumSizeHint().height()));
    QVERIFY(fixture.window.rect().contains(fixture.window.centralWidget()->geometry()));
    // No control of toolbar and status bar is cut or lies on its neighbour.
    for (const QWidget* bar :
         {static_cast<QWidget*>(&fixture.window.toolbar()), static_cast<QWidget*>(&fixture.window.statusBarView())}) {
        QList<QRect> places;
        for (const auto* button : bar->findChildren<PlainButton*>()) {
            if (!button->isVisible()) {
                continue;
            }
            const QRect place(button->mapTo(bar, QPoint()), button->size());
            QVERIFY(bar->rect().contains(place));
            QVERIFY(button->width() >= button->sizeHint().width());
            for (const QRect& other : std::as_const(places)) {
                QVERIFY(!other.intersects(place));
            }
            places.append(place);
        }
    }
    QVERIFY(fixture.window.editorArea().height() > 60);
}

const kelm::test::Registered<WindowPanelsTest> registered(kelm::test::Toolkit::widgets);

} // namespace window_panels_test

#include "window_panels_test.moc"
