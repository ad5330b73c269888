#include "app/state/window_tabs.h"
#include "support/test_program.h"

#include <QtTest>

namespace window_tabs_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class WindowTabsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bottomPanelTabsStandInTheirOrder();
    void sidebarTabsStandInTheirOrder();
    void modesOfTheSearchStandInTheirOrder();
};

void WindowTabsTest::bottomPanelTabsStandInTheirOrder()
{
    QStringList rows;
    for (const BottomPanelTab tab : BottomPanelTab::allCases()) {
        rows << tab.label() + u'|' + tab.iconName();
    }
    QCOMPARE(rows, (QStringList{u"Terminal|terminal"_s, u"Output|doc.text"_s, u"Problems|exclamationmark.triangle"_s}));
    QCOMPARE(BottomPanelTab(), BottomPanelTab(BottomPanelTab::terminal));
}

void WindowTabsTest::sidebarTabsStandInTheirOrder()
{
    QStringList rows;
    for (const SidebarTab tab : SidebarTab::allCases()) {
        rows << tab.helpLabel() + u'|' + tab.iconName();
    }
    QCOMPARE(rows, (QStringList{u"Explorer|doc.text"_s, u"Search|magnifyingglass"_s,
                                u"Source Control|arrow.triangle.branch"_s, u"Extensions|puzzlepiece.extension"_s}));
    QCOMPARE(SidebarTab(), SidebarTab(SidebarTab::files));
}

void WindowTabsTest::modesOfTheSearchStandInTheirOrder()
{
    QCOMPARE(SearchMode(), SearchMode::find);
    QVERIFY(SearchMode::find < SearchMode::replace && SearchMode::replace < SearchMode::project);
}

const kelm::test::Registered<WindowTabsTest> registered;

} // namespace window_tabs_test

#include "window_tabs_test.moc"
