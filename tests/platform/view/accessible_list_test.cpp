#include "platform/style/view/style.h"
#include "platform/view/accessible_list.h"
#include "platform/view/row_list.h"
#include "support/accessible_events.h"
#include "support/accessible_tree.h"
#include "support/test_program.h"

#include <QStringListModel>
#include <QtTest>

namespace accessible_list_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Rows in two sections, each with a click and two actions.
struct Fixture
{
    RowList list{24};
    QStringList names{u"a"_s, u"b"_s};
    QStringList done;

    Fixture()
    {
        list.setAccessibleName(u"Names"_s);
        list.resize(300, 300);
        fill();
        list.show();
        QVERIFY(QTest::qWaitForWindowActive(&list));
    }

    void fill()
    {
        RowSection section;
        section.title = u"First"_s;
        section.count = names.size();
        section.row = [this](qsizetype i) { return row(names[i]); };
        section.key = [this](qsizetype i) { return names[i]; };
        list.setSections({section});
    }

    Row row(const QString& name)
    {
        Row row;
        row.help = name;
        row.onClick = [this, name] { done.append(u"click "_s + name); };
        row.actions = {{u"Take"_s, u"plus.circle"_s, [this, name] {
                            done.append(u"take "_s + name);
                            names.removeAll(name);
                            fill();
                        }}};
        row.menu = {{u"Copy"_s, {}, [this, name] { done.append(u"copy "_s + name); }}};
        return row;
    }

    QAccessibleInterface& root() { return *accessible(list); }
    QAccessibleInterface& item(const QString& name) { return *findAccessible(root(), name, QAccessible::ListItem); }
};

} // namespace

class AccessibleListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void rowsAreChildrenWithNamesAndPlaces();
    void whatARowOffersIsDoneByName();
    void aRowThatIsGoneDoesNothing();
    void theRowThatTheKeyboardIsOnIsTold();
    void buttonsThatShowAreInTheTree();
    void nothingIsMadeWhileNobodyAsks();
    void foldersTellWhetherTheyAreExpanded();
    void anyListCanTellItsItems();
};

void AccessibleListTest::rowsAreChildrenWithNamesAndPlaces()
{
    Fixture f;
    QCOMPARE(f.root().role(), QAccessible::List);
    QCOMPARE(f.root().text(QAccessible::Name), u"Names"_s);
    QCOMPARE(f.root().childCount(), 3);
    QCOMPARE(f.root().child(0)->role(), QAccessible::Heading);
    QCOMPARE(f.root().child(0)->text(QAccessible::Name), u"First"_s);
    QCOMPARE(f.root().child(2)->text(QAccessible::Name), u"b"_s);
    QCOMPARE(f.root().indexOfChild(&f.item(u"b"_s)), 2);
    QCOMPARE(f.item(u"b"_s).parent(), &f.root());
    const QRect place = f.item(u"b"_s).rect();
    QCOMPARE(place, QRect(f.list.viewport()->mapToGlobal(f.list.visualRect(f.list.model()->index(2, 0)).topLeft()),
                          place.size()));
    QCOMPARE(f.root().childAt(place.center().x(), place.center().y()), &f.item(u"b"_s));
    QCOMPARE(accessibleFaults(f.root()), QStringList());
}

void AccessibleListTest::whatARowOffersIsDoneByName()
{
    Fixture f;
    QAccessibleActionInterface& actions = *f.item(u"b"_s).actionInterface();
    QCOMPARE(actions.actionNames(), (QStringList{QAccessibleActionInterface::pressAction(), u"Take"_s, u"Copy"_s,
                                                 QAccessibleActionInterface::setFocusAction()}));
    actions.doAction(QAccessibleActionInterface::pressAction());
    actions.doAction(u"Copy"_s);
    actions.doAction(u"Nothing of the kind"_s);
    QCOMPARE(f.done, (QStringList{u"click b"_s, u"copy b"_s}));
    actions.doAction(u"Take"_s);
    QCOMPARE(f.done.last(), u"take b"_s);
    QVERIFY(findAccessible(f.root(), u"b"_s) == nullptr);
    QCOMPARE(f.root().childCount(), 2);
    QVERIFY(!f.root().child(0)->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
}

void AccessibleListTest::aRowThatIsGoneDoesNothing()
{
    Fixture f;
    const QAccessible::Id gone = QAccessible::uniqueId(&f.item(u"b"_s));
    f.names.removeAll(u"b"_s);
    f.fill();
    QVERIFY(QAccessible::accessibleInterface(gone) == nullptr);
    auto list = std::make_unique<QListView>();
    QStringListModel model({u"x"_s});
    list->setModel(&model);
    setAccessibleItems(*list, [](int) { return AccessibleItem{.name = u"x"_s}; });
    const QAccessible::Id item = QAccessible::uniqueId(accessible(*list)->child(0));
    QVERIFY(QAccessible::accessibleInterface(item) != nullptr);
    list.reset();
    QVERIFY(QAccessible::accessibleInterface(item) == nullptr);
}

void AccessibleListTest::theRowThatTheKeyboardIsOnIsTold()
{
    Fixture f;
    f.list.setFocus(Qt::TabFocusReason);
    QVERIFY(f.item(u"a"_s).state().focused && f.item(u"a"_s).state().selected);
    QVERIFY(!f.item(u"b"_s).state().focused && !f.item(u"b"_s).state().selected);
    QCOMPARE(f.root().focusChild(), &f.item(u"a"_s));
    AccessibleListener listener;
    QTest::keyClick(&f.list, Qt::Key_Down);
    QVERIFY(f.item(u"b"_s).state().focused);
    // Who comes back to the list hears which row it is on.
    f.list.clearFocus();
    listener.take(QAccessible::Focus);
    f.list.setFocus();
    QCoreApplication::processEvents();
    QCOMPARE(listener.take(QAccessible::Focus, &f.list).last(), u"b"_s);
    f.item(u"a"_s).actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QVERIFY(f.item(u"a"_s).state().focused);
    QVERIFY(!f.root().child(0)->state().focusable);
}

void AccessibleListTest::buttonsThatShowAreInTheTree()
{
    Fixture f;
    QVERIFY(findAccessible(f.root(), u"Take"_s, QAccessible::Button) == nullptr);
    f.list.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&f.list, Qt::Key_Right);
    QAccessibleInterface* button = findAccessible(f.root(), u"Take"_s, QAccessible::Button);
    QVERIFY(button != nullptr && button->state().focused);
    // From the button upwards one comes to the list.
    QCOMPARE(button->parent()->role(), QAccessible::ToolBar);
    QCOMPARE(button->parent()->text(QAccessible::Name), u"a"_s);
    QCOMPARE(button->parent()->parent()->parent(), &f.root());
    QCOMPARE(accessibleFaults(f.root()), QStringList());
}

void AccessibleListTest::nothingIsMadeWhileNobodyAsks()
{
    RowList list(24);
    qsizetype made = 0;
    RowSection section;
    section.count = 100000;
    section.row = [&](qsizetype) { return ++made, Row{.help = u"row"_s}; };
    section.key = [](qsizetype i) { return QString::number(i); };
    list.setSections({section});
    made = 0;
    QCOMPARE(accessible(list)->childCount(), 100000);
    QCOMPARE(made, 0);
    QCOMPARE(accessible(list)->child(70000)->text(QAccessible::Name), u"row"_s);
    QCOMPARE(made, 1);
}

void AccessibleListTest::foldersTellWhetherTheyAreExpanded()
{
    QListView list;
    QStringListModel model({u"closed"_s, u"open"_s, u"file"_s});
    list.setModel(&model);
    setAccessibleItems(list, [&](int item) {
        return AccessibleItem{.name = model.stringList()[item], .isExpandable = item < 2, .isExpanded = item == 1};
    });
    const auto state = [&](int item) { return accessible(list)->child(item)->state(); };
    QVERIFY(state(0).expandable && state(0).collapsed && !state(0).expanded);
    QVERIFY(state(1).expandable && !state(1).collapsed && state(1).expanded);
    QVERIFY(!state(2).expandable && !state(2).collapsed && !state(2).expanded);
}

void AccessibleListTest::anyListCanTellItsItems()
{
    QListView list;
    // One that a screen reader has looked at already.
    QVERIFY(accessible(list) != nullptr);
    QStringListModel model({u"a"_s});
    list.setModel(&model);
    setAccessibleItems(list, [&](int item) {
        return AccessibleItem{.name = u"the "_s + model.stringList()[item], .description = u"more"_s};
    });
    QCOMPARE(accessible(list)->child(0)->text(QAccessible::Name), u"the a"_s);
    QCOMPARE(accessible(list)->child(0)->text(QAccessible::Description), u"more"_s);
    model.insertRow(0);
    model.setData(model.index(0), u"b"_s);
    QCOMPARE(accessible(list)->child(0)->text(QAccessible::Name), u"the b"_s);
    QCOMPARE(accessible(list)->child(1)->text(QAccessible::Name), u"the a"_s);
    QVERIFY(accessible(list)->child(2) == nullptr);
    QVERIFY(accessible(list)->child(-1) == nullptr);
}

const test::Registered<AccessibleListTest> registered(test::Toolkit::widgets);

} // namespace accessible_list_test

#include "accessible_list_test.moc"
