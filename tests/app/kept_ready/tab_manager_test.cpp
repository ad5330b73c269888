#include "app/kept_ready/tab_manager.h"
#include "support/test_program.h"

#include <QtTest>

namespace tab_manager_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class TabManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tabsAndSelectionAreObservable();
    void everyTabHasAnIdentity();
};

void TabManagerTest::tabsAndSelectionAreObservable()
{
    TabManager manager;
    QVERIFY(manager.tabs().isEmpty());
    QVERIFY(!manager.selectedTabId());
    const QSignalSpy tabs(&manager, &TabManager::tabsChanged);
    const QSignalSpy selected(&manager, &TabManager::selectedTabIdChanged);
    TabItem item;
    item.document = std::make_shared<Document>(u"a"_s, std::nullopt, std::nullopt, std::nullopt);
    manager.setTabs({item});
    manager.setTabs({item});
    manager.setSelectedTabId(item.id);
    manager.setSelectedTabId(item.id);
    QCOMPARE(tabs.size(), 1);
    QCOMPARE(selected.size(), 1);
    QCOMPARE(manager.tabs().front().document->content(), u"a"_s);
    manager.setSelectedTabId(std::nullopt);
    QVERIFY(!manager.selectedTabId());
    QCOMPARE(selected.size(), 2);
}

void TabManagerTest::everyTabHasAnIdentity()
{
    const TabItem one;
    const TabItem other;
    QVERIFY(!one.id.isNull());
    QVERIFY(one.id != other.id);
    QVERIFY(!(one == other));
}

const kelm::test::Registered<TabManagerTest> registered;

} // namespace tab_manager_test

#include "tab_manager_test.moc"
