#include "git/panel/view/panel_fixture.h"
#include "platform/view/row_list.h"
#include "platform/view/row_painter.h"
#include "support/test_program.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QScrollBar>

namespace row_list_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A list over names, beside a field before it and one behind it.
struct ListFixture
{
    QWidget window;
    QLineEdit before{&window};
    RowList list{24, &window};
    QLineEdit behind{&window};
    QStringList first{u"a"_s, u"b"_s, u"c"_s};
    QStringList second{u"x"_s, u"y"_s};
    QStringList done;
    qsizetype made = 0;

    ListFixture()
    {
        auto* column = new QVBoxLayout(&window);
        column->addWidget(&before);
        column->addWidget(&list);
        column->addWidget(&behind);
        window.resize(300, 300);
        fill();
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        before.setFocus();
        QTest::mouseMove(&before);
    }

    RowSection section(const QString& title, QStringList& names)
    {
        return {title, names.size(), [this, names](qsizetype i) { return row(names[i]); },
                [names](qsizetype i) { return names[i]; }};
    }
    void fill() { list.setSections({section(u"First"_s, first), section(u"Second"_s, second)}); }

    Row row(const QString& name)
    {
        ++made;
        Row row;
        row.firstLine = {{.text = name, .font = RowFonts::standard().body}};
        row.help = name;
        row.onClick = [this, name] { done.append(u"click "_s + name); };
        row.clickName = u"Open"_s;
        row.actions = {{u"Take"_s, u"plus.circle"_s,
                        [this, name] {
                            done.append(u"take "_s + name);
                            first.removeAll(name);
                            second.removeAll(name);
                            fill();
                        }},
                       {u"Look"_s, u"circle"_s, [this, name] { done.append(u"look "_s + name); }}};
        return row;
    }

    QString current() const { return list.currentIndex().data().toString(); }
    QStringList takeDone() { return std::exchange(done, {}); }
    QString focused() const
    {
        const auto* button = qobject_cast<PlainButton*>(QApplication::focusWidget());
        return button != nullptr ? button->accessibleName() : QString();
    }
    void press(int key) const { QTest::keyClick(QApplication::focusWidget(), Qt::Key(key)); }
};

} // namespace

class RowListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }
    void titlesAndRowsStandInOrder();
    void actionsShowUnderTheMouseAlone();
    void anActionUnderTheMouseRuns();
    void aClickRunsTheRow();
    void tabGoesThroughTheListAndItsActions();
    void arrowKeysPassOverTitles();
    void arrowKeysGoThroughTheActions();
    void returnAndSpacePress();
    void theKeyboardStaysAtItsPlaceWhenItsRowGoes();
    void theKeyboardFollowsItsRow();
    void theKeyboardMovesOnWhenItsSectionGoes();
    void actionsHideWhenTheKeyboardLeaves();
    void aMenuOffersTheSame();
    void furtherEntriesStandInTheMenu();
    void everythingHasItsNames();
    void rowsKnowTheirFiles();
    void theScrollPositionStays();
    void rowsAreMadeWhenTheyAreSeen();
    void aPlaceholderStandsForNoRows();
    void piecesShareTheWidth_data();
    void piecesShareTheWidth();
    void aListOfNothingTakesKeys();
    void aSecondPressHitsNoRowThatSlidThere();
    void aRowThatSlidUnderThePointerWaitsForItToMove();
    void rowsThatStayTakePressesAtOnce();
    void aPressThatLostItsRowIsNone();
    void aHeldKeyPressesOnce_data();
    void aHeldKeyPressesOnce();
};

void RowListTest::titlesAndRowsStandInOrder()
{
    ListFixture f;
    QCOMPARE(linesOf(f.list), (QStringList{u"# First"_s, u"a"_s, u"b"_s, u"c"_s, u"# Second"_s, u"x"_s, u"y"_s}));
    for (int item = 0; item < f.list.rows().rowCount(); ++item) {
        QCOMPARE(f.list.rows().itemAt(f.list.rows().placeOf(item)), item);
    }
}

void RowListTest::actionsShowUnderTheMouseAlone()
{
    ListFixture f;
    QCOMPARE(shownActions(f.list), QStringList());
    hover(f.list, 2);
    QCOMPARE(shownActions(f.list), (QStringList{u"Take"_s, u"Look"_s}));
    const QWidget* button = visibleButton(*f.list.viewport(), u"Take"_s);
    const QRect place(button->mapTo(f.list.viewport(), QPoint()), button->size());
    QVERIFY(f.list.visualRect(f.list.model()->index(2, 0)).contains(place));
    hover(f.list, 4);
    QCOMPARE(shownActions(f.list), QStringList());
    hover(f.list, 5);
    QCOMPARE(shownActions(f.list).size(), 2);
    QTest::mouseMove(&f.behind);
    QTRY_COMPARE(shownActions(f.list), QStringList());
}

void RowListTest::anActionUnderTheMouseRuns()
{
    ListFixture f;
    act(f.list, u"b"_s, u"Look"_s);
    act(f.list, u"b"_s, u"Take"_s);
    QCOMPARE(f.takeDone(), (QStringList{u"look b"_s, u"take b"_s}));
    // The next row has come under the mouse.
    act(f.list, u"c"_s, u"Take"_s);
    QCOMPARE(f.takeDone(), QStringList{u"take c"_s});
}

void RowListTest::aClickRunsTheRow()
{
    ListFixture f;
    clickRow(f.list, u"x"_s);
    QCOMPARE(f.takeDone(), QStringList{u"click x"_s});
    const QModelIndex title = f.list.model()->index(0, 0);
    QTest::mouseClick(f.list.viewport(), Qt::LeftButton, {}, f.list.visualRect(title).center());
    QTest::mouseClick(f.list.viewport(), Qt::RightButton, {}, f.list.visualRect(f.list.model()->index(1, 0)).center());
    QCOMPARE(f.takeDone(), QStringList());
}

void RowListTest::tabGoesThroughTheListAndItsActions()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    QVERIFY(f.list.hasFocus());
    QCOMPARE(f.current(), u"a"_s);
    QCOMPARE(shownActions(f.list), (QStringList{u"Take"_s, u"Look"_s}));
    f.press(Qt::Key_Tab);
    QCOMPARE(f.focused(), u"Take"_s);
    f.press(Qt::Key_Tab);
    QCOMPARE(f.focused(), u"Look"_s);
    f.press(Qt::Key_Tab);
    QVERIFY(f.behind.hasFocus());
    QCOMPARE(shownActions(f.list), QStringList());
    f.press(Qt::Key_Backtab);
    QVERIFY(f.list.hasFocus());
    f.press(Qt::Key_Tab);
    f.press(Qt::Key_Backtab);
    QVERIFY(f.list.hasFocus());
    f.press(Qt::Key_Backtab);
    QVERIFY(f.before.hasFocus());
}

void RowListTest::arrowKeysPassOverTitles()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    QStringList visited;
    for (int i = 0; i < 5; ++i) {
        visited.append(f.current());
        f.press(Qt::Key_Down);
    }
    QCOMPARE(visited, (QStringList{u"a"_s, u"b"_s, u"c"_s, u"x"_s, u"y"_s}));
    QCOMPARE(f.current(), u"y"_s);
    f.press(Qt::Key_Up);
    f.press(Qt::Key_Up);
    QCOMPARE(f.current(), u"c"_s);
    f.press(Qt::Key_Home);
    QCOMPARE(f.current(), u"a"_s);
    f.press(Qt::Key_Up);
    QCOMPARE(f.current(), u"a"_s);
    f.press(Qt::Key_End);
    QCOMPARE(f.current(), u"y"_s);
    f.press(Qt::Key_PageUp);
    QCOMPARE(f.current(), u"a"_s);
    f.press(Qt::Key_PageDown);
    QCOMPARE(f.current(), u"y"_s);
}

void RowListTest::arrowKeysGoThroughTheActions()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    f.press(Qt::Key_Right);
    QCOMPARE(f.focused(), u"Take"_s);
    f.press(Qt::Key_Right);
    QCOMPARE(f.focused(), u"Look"_s);
    f.press(Qt::Key_Left);
    f.press(Qt::Key_Left);
    QVERIFY(f.list.hasFocus());
    f.press(Qt::Key_Right);
    f.press(Qt::Key_Escape);
    QVERIFY(f.list.hasFocus());
    f.press(Qt::Key_Right);
    f.press(Qt::Key_Down);
    QVERIFY(f.list.hasFocus());
    QCOMPARE(f.current(), u"b"_s);
}

void RowListTest::returnAndSpacePress()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    f.press(Qt::Key_Return);
    f.press(Qt::Key_Space);
    QCOMPARE(f.takeDone(), (QStringList{u"click a"_s, u"click a"_s}));
    f.press(Qt::Key_Right);
    f.press(Qt::Key_Right);
    f.press(Qt::Key_Return);
    f.press(Qt::Key_Space);
    QCOMPARE(f.takeDone(), (QStringList{u"look a"_s, u"look a"_s}));
}

void RowListTest::theKeyboardStaysAtItsPlaceWhenItsRowGoes()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    f.press(Qt::Key_Down);
    f.press(Qt::Key_Right);
    f.press(Qt::Key_Return);
    QCOMPARE(f.takeDone(), QStringList{u"take b"_s});
    QCOMPARE(f.current(), u"c"_s);
    QCOMPARE(f.focused(), u"Take"_s);
    f.press(Qt::Key_Return);
    QCOMPARE(f.takeDone(), QStringList{u"take c"_s});
    QCOMPARE(f.current(), u"a"_s);
}

void RowListTest::theKeyboardFollowsItsRow()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    f.press(Qt::Key_Down);
    f.first = {u"0"_s, u"1"_s, u"2"_s, u"a"_s, u"b"_s};
    f.fill();
    QCOMPARE(f.current(), u"b"_s);
    QCOMPARE(shownActions(f.list).size(), 2);
}

void RowListTest::theKeyboardMovesOnWhenItsSectionGoes()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    f.first = {};
    f.fill();
    QCOMPARE(f.current(), u"x"_s);
    f.second = {};
    f.fill();
    QVERIFY(f.list.hasFocus());
    QCOMPARE(shownActions(f.list), QStringList());
    f.press(Qt::Key_Return);
    QVERIFY(f.takeDone().isEmpty());
}

void RowListTest::actionsHideWhenTheKeyboardLeaves()
{
    ListFixture f;
    f.press(Qt::Key_Tab);
    f.press(Qt::Key_Right);
    f.behind.setFocus();
    QCOMPARE(shownActions(f.list), QStringList());
    // A click on a row does not mark it as a key does.
    clickRow(f.list, u"a"_s);
    hover(f.list, 6);
    QCOMPARE(shownActions(f.list).size(), 2);
}

void RowListTest::aMenuOffersTheSame()
{
    ListFixture f;
    const auto menu = [&] { return f.list.findChild<QMenu*>(); };
    const QPoint place = f.list.visualRect(f.list.model()->index(2, 0)).center();
    QContextMenuEvent byMouse(QContextMenuEvent::Mouse, place, f.list.viewport()->mapToGlobal(place));
    QApplication::sendEvent(f.list.viewport(), &byMouse);
    QVERIFY(menu() != nullptr);
    QCOMPARE(linesOf(*menu()), (QStringList{u"Open"_s, u"-"_s, u"Take"_s, u"Look"_s}));
    choose(*menu(), u"Look"_s);
    QCOMPARE(f.takeDone(), QStringList{u"look b"_s});
    QTRY_VERIFY(menu() == nullptr);

    f.list.setCurrentIndex(f.list.model()->index(1, 0));
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(&f.list, &byKey);
    QVERIFY(menu() != nullptr);
    choose(*menu(), u"Open"_s);
    QCOMPARE(f.takeDone(), QStringList{u"click a"_s});
}

void RowListTest::furtherEntriesStandInTheMenu()
{
    ListFixture f;
    const auto menu = [&] { return f.list.findChild<QMenu*>(); };
    f.list.setSections({{.title = {},
                         .count = 2,
                         .row =
                             [&f](qsizetype i) {
                                 Row row;
                                 row.menu = {{u"Copy"_s, {}, [&f, i] { f.done.append(u"copy %1"_s.arg(i)); }}};
                                 if (i == 1) {
                                     row.actions = {{u"Take"_s, u"plus"_s, [] {}}};
                                 }
                                 return row;
                             },
                         .key = [](qsizetype i) { return QString::number(i); }}});
    f.list.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&f.list, Qt::Key_F10, Qt::ShiftModifier);
    QVERIFY(menu() != nullptr);
    QCOMPARE(linesOf(*menu()), QStringList{u"Copy"_s});
    choose(*menu(), u"Copy"_s);
    QCOMPARE(f.takeDone(), QStringList{u"copy 0"_s});
    QTRY_VERIFY(menu() == nullptr);
    QTest::keyClick(&f.list, Qt::Key_Down);
    QTest::keyClick(&f.list, Qt::Key_F10, Qt::ShiftModifier);
    QCOMPARE(linesOf(*menu()), (QStringList{u"Take"_s, u"-"_s, u"Copy"_s}));
    choose(*menu(), u"Copy"_s);
    QCOMPARE(f.takeDone(), QStringList{u"copy 1"_s});
    // The key alone is none of the list's.
    QTest::keyClick(&f.list, Qt::Key_F10);
    QTRY_VERIFY(menu() == nullptr);
}

void RowListTest::rowsKnowTheirFiles()
{
    ListFixture fixture;
    RowSection files = fixture.section(u"Files"_s, fixture.first);
    files.file = [](qsizetype i) { return i == 1 ? QUrl() : QUrl(u"file:///a/"_s + QString::number(i)); };
    fixture.list.setSections({files, fixture.section(u"Others"_s, fixture.second)});
    QStringList found;
    for (int item = 0; item < fixture.list.rows().rowCount(); ++item) {
        found << fixture.list.rows().fileAt(item).toString();
    }
    QCOMPARE(found, (QStringList{{}, u"file:///a/0"_s, {}, u"file:///a/2"_s, {}, {}, {}}));
}

void RowListTest::everythingHasItsNames()
{
    ListFixture f;
    f.first = {u"<b>bold</b> & more"_s};
    f.fill();
    const QModelIndex row = f.list.model()->index(1, 0);
    QCOMPARE(row.data(Qt::AccessibleTextRole).toString(), u"<b>bold</b> & more"_s);
    QVERIFY(row.data(Qt::ToolTipRole).toString().contains(u"&lt;b&gt;bold&lt;/b&gt; &amp; more"));
    hover(f.list, 1);
    QAbstractButton* button = visibleButton(*f.list.viewport(), u"Take"_s);
    QCOMPARE(button->toolTip(), u"Take"_s);
    QCOMPARE(button->accessibleDescription(), u"<b>bold</b> & more"_s);

    f.list.setAccessibleName(u"Names"_s);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&f.list);
    QCOMPARE(list->text(QAccessible::Name), u"Names"_s);
    QStringList names;
    for (int i = 0; i < list->childCount(); ++i) {
        names.append(list->child(i)->text(QAccessible::Name));
    }
    QCOMPARE(names.mid(0, 3), (QStringList{u"First"_s, u"<b>bold</b> & more"_s, u"Second"_s}));
    QAccessibleInterface* action = QAccessible::queryAccessibleInterface(button);
    QCOMPARE(action->text(QAccessible::Name), u"Take"_s);
    QCOMPARE(action->role(), QAccessible::Button);
}

void RowListTest::theScrollPositionStays()
{
    ListFixture f;
    for (int i = 0; i < 200; ++i) {
        f.second.append(QString::number(i));
    }
    f.fill();
    f.list.verticalScrollBar()->setValue(777);
    f.first.append(u"more"_s);
    f.fill();
    QCOMPARE(f.list.verticalScrollBar()->value(), 777);
}

void RowListTest::rowsAreMadeWhenTheyAreSeen()
{
    ListFixture f;
    for (int i = 0; i < 100000; ++i) {
        f.second.append(QString::number(i));
    }
    f.made = 0;
    f.fill();
    f.list.grab();
    QVERIFY2(f.made < 200, qPrintable(QString::number(f.made)));
}

void RowListTest::aPlaceholderStandsForNoRows()
{
    ListFixture f;
    f.list.setPlaceholder(u"Nothing here"_s);
    QCOMPARE(f.list.accessibleDescription(), QString());
    f.list.setSections({});
    QCOMPARE(f.list.accessibleDescription(), u"Nothing here"_s);
    const QImage with = f.list.grab().toImage();
    f.list.setPlaceholder({});
    QVERIFY(f.list.grab().toImage() != with);
}

void RowListTest::piecesShareTheWidth_data()
{
    QTest::addColumn<QList<int>>("lengths");
    QTest::addColumn<QList<bool>>("giving");
    QTest::addColumn<int>("width");
    QTest::addColumn<QList<int>>("shares");
    // Each letter is ten points wide, and six points stand between two pieces.
    QTest::newRow("room") << QList{3, 4} << QList{true, true} << 200 << QList{31, 41};
    QTest::newRow("the long one gives") << QList{3, 40} << QList{true, true} << 106 << QList{31, 69};
    QTest::newRow("both give") << QList{30, 40} << QList{true, true} << 106 << QList{50, 50};
    QTest::newRow("one keeps its width") << QList{5, 40} << QList{false, true} << 106 << QList{51, 49};
    QTest::newRow("no room at all") << QList{20, 40} << QList{false, true} << 100 << QList{201, 0};
    QTest::newRow("one piece") << QList{40} << QList{true} << 100 << QList{100};
    QTest::newRow("none") << QList<int>() << QList<bool>() << 100 << QList<int>();
}

void RowListTest::piecesShareTheWidth()
{
    QFETCH(QList<int>, lengths);
    QFETCH(QList<bool>, giving);
    QFETCH(int, width);
    QList<RowText> pieces;
    for (qsizetype i = 0; i < lengths.size(); ++i) {
        pieces.append({.text = {}, .font = {}, .givesWay = giving[i], .leastWidth = lengths[i] * 10 + 1});
    }
    QTEST(pieceWidths(pieces, width), "shares");
}

void RowListTest::aListOfNothingTakesKeys()
{
    ListFixture f;
    f.list.setSections({});
    f.list.setFocus(Qt::TabFocusReason);
    for (const int key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Return, Qt::Key_Right, Qt::Key_Home}) {
        f.press(key);
    }
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(&f.list, &byKey);
    QVERIFY(f.list.findChild<QMenu*>() == nullptr);
    hover(f.list, 0);
    QVERIFY(f.takeDone().isEmpty());
}

void RowListTest::aSecondPressHitsNoRowThatSlidThere()
{
    ListFixture f;
    hover(f.list, 2);
    QAbstractButton* button = visibleButton(*f.list.viewport(), u"Take"_s);
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseDClick(button, Qt::LeftButton);
    QCOMPARE(f.takeDone(), QStringList{u"take b"_s});
    // Nor one that is still there, because what was asked for takes its time.
    ListFixture slow;
    hover(slow.list, 2);
    button = visibleButton(*slow.list.viewport(), u"Look"_s);
    QTest::mouseClick(button, Qt::LeftButton);
    QMouseEvent second(QEvent::MouseButtonDblClick, QPointF(2, 2), button->mapToGlobal(QPointF(2, 2)), Qt::LeftButton,
                       Qt::LeftButton, {});
    QApplication::sendEvent(button, &second);
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(slow.takeDone(), QStringList{u"look b"_s});
}

void RowListTest::aRowThatSlidUnderThePointerWaitsForItToMove()
{
    ListFixture f;
    act(f.list, u"b"_s, u"Take"_s);
    QCOMPARE(f.takeDone(), QStringList{u"take b"_s});
    clickOn(*f.list.viewport(), u"Take"_s);
    QTest::mouseClick(f.list.viewport(), Qt::LeftButton, {}, f.list.visualRect(f.list.model()->index(2, 0)).center());
    QCOMPARE(f.takeDone(), QStringList());
    hover(f.list, 2);
    clickOn(*f.list.viewport(), u"Take"_s);
    QCOMPARE(f.takeDone(), QStringList{u"take c"_s});
    // The same with a row that others put there.
    hover(f.list, 1);
    f.first.prepend(u"new"_s);
    f.fill();
    clickOn(*f.list.viewport(), u"Look"_s);
    QTest::mouseClick(f.list.viewport(), Qt::LeftButton, {}, f.list.visualRect(f.list.model()->index(1, 0)).center());
    QCOMPARE(f.takeDone(), QStringList());
    // The pointer moves on the button itself.
    QAbstractButton* button = visibleButton(*f.list.viewport(), u"Look"_s);
    QTest::mouseMove(button, QPoint(3, 3));
    QTest::mouseMove(button, QPoint(5, 5));
    clickOn(*f.list.viewport(), u"Look"_s);
    QCOMPARE(f.takeDone(), QStringList{u"look new"_s});
}

void RowListTest::rowsThatStayTakePressesAtOnce()
{
    ListFixture f;
    hover(f.list, 2);
    f.first.append(u"d"_s);
    f.second.clear();
    f.fill();
    clickOn(*f.list.viewport(), u"Look"_s);
    clickOn(*f.list.viewport(), u"Look"_s);
    QCOMPARE(f.takeDone(), (QStringList{u"look b"_s, u"look b"_s}));
}

void RowListTest::aPressThatLostItsRowIsNone()
{
    ListFixture f;
    hover(f.list, 1);
    QAbstractButton* button = visibleButton(*f.list.viewport(), u"Take"_s);
    QTest::mousePress(button, Qt::LeftButton);
    f.first.removeFirst();
    f.fill();
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(f.takeDone(), QStringList());
    QCOMPARE(f.first, (QStringList{u"b"_s, u"c"_s}));
}

void RowListTest::aHeldKeyPressesOnce_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("onButton");
    for (const auto& [name, key] :
         {std::pair{"Return", Qt::Key_Return}, {"Enter", Qt::Key_Enter}, {"Space", Qt::Key_Space}}) {
        QTest::addRow("%s on an action", name) << int(key) << true;
        QTest::addRow("%s on a row", name) << int(key) << false;
    }
}

void RowListTest::aHeldKeyPressesOnce()
{
    QFETCH(int, key);
    QFETCH(bool, onButton);
    ListFixture f;
    f.press(Qt::Key_Tab);
    if (onButton) {
        f.press(Qt::Key_Right);
    }
    const auto send = [&](QEvent::Type type, bool isRepeated) {
        QKeyEvent event(type, key, {}, QString(), isRepeated);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    };
    send(QEvent::KeyPress, false);
    for (int i = 0; i < 5; ++i) {
        send(QEvent::KeyRelease, true);
        send(QEvent::KeyPress, true);
    }
    send(QEvent::KeyRelease, false);
    QCOMPARE(f.takeDone(), QStringList{onButton ? u"take a"_s : u"click a"_s});
    send(QEvent::KeyPress, false);
    send(QEvent::KeyRelease, false);
    QCOMPARE(f.takeDone(), QStringList{onButton ? u"take b"_s : u"click a"_s});
}

const kelm::test::Registered<RowListTest> registered(kelm::test::Toolkit::widgets);

} // namespace row_list_test

#include "row_list_test.moc"
