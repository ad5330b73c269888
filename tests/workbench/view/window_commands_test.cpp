#include "app/state/notices.h"
#include "app/state/unsaved_texts.h"
#include "platform/view/plain_button.h"
#include "support/test_program.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"
#include "workbench/view/window_fixture.h"

namespace window_commands_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A window with a tab for each letter, each holding that letter; the last is seen.
struct Fixture : WindowFixture
{
    explicit Fixture(const QString& letters)
    {
        for (const QChar letter : letters) {
            state.openFile(write(QString(letter) + u".txt"_s, QByteArray(1, letter.toLatin1())));
        }
        turnQueue();
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window.windowHandle(), key, modifiers);
        turnQueue();
    }
    /// Presses keys while Control is held.
    void pressHeld(const QList<QPair<Qt::Key, Qt::KeyboardModifiers>>& keys)
    {
        QTest::keyPress(window.windowHandle(), Qt::Key_Control, Qt::ControlModifier);
        for (const auto& [key, modifiers] : keys) {
            QTest::keyPress(window.windowHandle(), key, modifiers | Qt::ControlModifier);
            // With its modifiers, they would be released as well.
            QTest::keyRelease(window.windowHandle(), key);
        }
    }
    void letGo()
    {
        QTest::keyRelease(window.windowHandle(), Qt::Key_Control);
        turnQueue();
    }

    QString seen() const { return state.currentDocument() ? state.currentDocument()->content() : u"-"_s; }
    QString tabs() const
    {
        QString letters;
        for (const auto& document : state.documents()) {
            letters += document->content();
        }
        return letters;
    }
};

const QPair<Qt::Key, Qt::KeyboardModifiers> tab{Qt::Key_Tab, Qt::NoModifier};
const QPair<Qt::Key, Qt::KeyboardModifiers> backTab{Qt::Key_Backtab, Qt::ShiftModifier};

} // namespace

class WindowCommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tabsByPlace_data();
    void tabsByPlace();
    void tabsByNumber_data();
    void tabsByNumber();
    void tabsByUse();
    void aHeldWalkGoesOn();
    void aWalkEndsWithItsWindow();
    void oneTabStaysWhereItIs();
    void aKeyClosesTheTab();
    void whatIsClosedComesBack_data();
    void whatIsClosedComesBack();
    void unsavedTextComesBackAsItWas();
    void whatIsOpenAgainIsPassedOver();
    void textsAreRememberedWithinBounds();
    void nothingIsDoneUnderAnOverlay();
    void helpsTellTheKeys();
};

void WindowCommandsTest::tabsByPlace_data()
{
    QTest::addColumn<qsizetype>("from");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("seen");
    QTest::newRow("next") << qsizetype(0) << Qt::Key_PageDown << u"b"_s;
    QTest::newRow("previous") << qsizetype(2) << Qt::Key_PageUp << u"b"_s;
    QTest::newRow("next, from the last") << qsizetype(2) << Qt::Key_PageDown << u"a"_s;
    QTest::newRow("previous, from the first") << qsizetype(0) << Qt::Key_PageUp << u"c"_s;
}

void WindowCommandsTest::tabsByPlace()
{
    QFETCH(qsizetype, from);
    QFETCH(Qt::Key, key);
    QFETCH(QString, seen);
    Fixture fixture(u"abc"_s);
    fixture.state.setCurrentDocumentIndex(from);
    fixture.press(key, Qt::ControlModifier);
    QCOMPARE(fixture.seen(), seen);
    QVERIFY(fixture.text().hasFocus());
}

void WindowCommandsTest::tabsByNumber_data()
{
    QTest::addColumn<QString>("tabs");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("seen");
    QTest::newRow("the first") << u"abc"_s << Qt::Key_1 << u"a"_s;
    QTest::newRow("the second") << u"abc"_s << Qt::Key_2 << u"b"_s;
    QTest::newRow("one that is not there") << u"abc"_s << Qt::Key_4 << u"c"_s;
    QTest::newRow("the eighth") << u"abcdefghijk"_s << Qt::Key_8 << u"h"_s;
    QTest::newRow("the last of eleven") << u"abcdefghijk"_s << Qt::Key_9 << u"k"_s;
    QTest::newRow("the last of two") << u"ab"_s << Qt::Key_9 << u"b"_s;
    QTest::newRow("none") << u""_s << Qt::Key_1 << u"-"_s;
}

void WindowCommandsTest::tabsByNumber()
{
    QFETCH(QString, tabs);
    QFETCH(Qt::Key, key);
    QFETCH(QString, seen);
    Fixture fixture(tabs);
    fixture.press(key, Qt::AltModifier);
    QCOMPARE(fixture.seen(), seen);
    QCOMPARE(fixture.tabs(), tabs);
}

void WindowCommandsTest::tabsByUse()
{
    Fixture fixture(u"abc"_s);
    fixture.state.setCurrentDocumentIndex(0);
    // Back and forth between the two that were used last.
    for (const QString& seen : {u"c"_s, u"a"_s, u"c"_s}) {
        fixture.pressHeld({tab});
        fixture.letGo();
        QCOMPARE(fixture.seen(), seen);
    }
    // Backwards to the one that was not used for longest.
    fixture.pressHeld({backTab});
    fixture.letGo();
    QCOMPARE(fixture.seen(), u"b"_s);
    fixture.pressHeld({tab});
    fixture.letGo();
    QCOMPARE(fixture.seen(), u"c"_s);
    // One that is chosen in the menu settles at once.
    fixture.command(Command::nextRecentTab)->trigger();
    QCOMPARE(fixture.seen(), u"b"_s);
    fixture.command(Command::nextRecentTab)->trigger();
    QCOMPARE(fixture.seen(), u"c"_s);
}

void WindowCommandsTest::aHeldWalkGoesOn()
{
    Fixture fixture(u"abcd"_s);
    fixture.pressHeld({tab});
    QCOMPARE(fixture.seen(), u"c"_s);
    fixture.pressHeld({tab, tab});
    QCOMPARE(fixture.seen(), u"a"_s);
    fixture.pressHeld({backTab});
    QCOMPARE(fixture.seen(), u"b"_s);
    fixture.letGo();
    // What was only gone past was not used.
    fixture.pressHeld({tab});
    fixture.letGo();
    QCOMPARE(fixture.seen(), u"d"_s);
    // Round.
    fixture.pressHeld({tab, tab, tab, tab});
    fixture.letGo();
    QCOMPARE(fixture.seen(), u"d"_s);
}

void WindowCommandsTest::aWalkEndsWithItsWindow()
{
    Fixture fixture(u"abc"_s);
    fixture.pressHeld({tab, tab});
    QCOMPARE(fixture.seen(), u"a"_s);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    fixture.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&fixture.window));
    fixture.letGo();
    fixture.pressHeld({tab});
    fixture.letGo();
    QCOMPARE(fixture.seen(), u"c"_s);
}

void WindowCommandsTest::oneTabStaysWhereItIs()
{
    Fixture fixture(u"a"_s);
    for (const auto modifiers : {Qt::ControlModifier}) {
        fixture.press(Qt::Key_PageDown, modifiers);
        fixture.press(Qt::Key_PageUp, modifiers);
    }
    fixture.pressHeld({tab, backTab});
    fixture.letGo();
    QCOMPARE(fixture.seen(), u"a"_s);
    QVERIFY(fixture.text().hasFocus());
}

void WindowCommandsTest::aKeyClosesTheTab()
{
    Fixture fixture(u"abc"_s);
    fixture.state.setCurrentDocumentIndex(1);
    fixture.turnQueue();
    fixture.press(Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(fixture.tabs(), u"ac"_s);
    QCOMPARE(fixture.seen(), u"c"_s);
    fixture.press(Qt::Key_W, Qt::ControlModifier);
    fixture.press(Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(fixture.tabs(), QString());
    // There is nothing more to close, not the window either.
    fixture.press(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(fixture.window.isVisible());
    QVERIFY(fixture.state.notices().current() == nullptr);
}

void WindowCommandsTest::whatIsClosedComesBack_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("one by one") << u"one"_s;
    QTest::newRow("all but one") << u"others"_s;
    QTest::newRow("all") << u"all"_s;
}

void WindowCommandsTest::whatIsClosedComesBack()
{
    QFETCH(QString, how);
    Fixture fixture(u"abc"_s);
    QVERIFY(!fixture.command(Command::reopenTab)->isEnabled());
    if (how == u"one") {
        fixture.state.closeTab(2);
        fixture.state.closeTab(1);
    } else if (how == u"others") {
        fixture.state.closeOtherTabs(0);
    } else {
        fixture.state.setDocuments({});
    }
    QSet<QString> seen;
    while (fixture.command(Command::reopenTab)->isEnabled()) {
        fixture.press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(fixture.text().hasFocus());
        seen.insert(fixture.seen());
    }
    QCOMPARE(seen, how == u"all" ? (QSet<QString>{u"a"_s, u"b"_s, u"c"_s}) : (QSet<QString>{u"b"_s, u"c"_s}));
    QCOMPARE(fixture.state.documents().size(), 3);
    fixture.press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(fixture.state.documents().size(), 3);
}

void WindowCommandsTest::unsavedTextComesBackAsItWas()
{
    Fixture fixture(u"abc"_s);
    fixture.state.setCurrentDocumentIndex(1);
    fixture.turnQueue();
    QTest::keyClicks(&fixture.text(), u"typed "_s);
    const std::shared_ptr<Document> document = fixture.state.currentDocument();
    fixture.press(Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(fixture.tabs(), u"ac"_s);
    QCOMPARE(fixture.state.notices().current()->text, u"Closed with unsaved changes"_s);
    fixture.press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(fixture.tabs(), u"atyped bc"_s);
    QCOMPARE(fixture.state.currentDocument(), document);
    QVERIFY(document->isModified());
    // It is offered no longer.
    QVERIFY(fixture.state.notices().current() == nullptr);
    QCOMPARE(WindowFixture::read(*document->fileURL()), QByteArray("b"));

    // A text without a file, unsaved or not.
    fixture.state.openSnippet(u"code"_s, Language::python, std::nullopt);
    fixture.press(Qt::Key_W, Qt::ControlModifier);
    fixture.press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(fixture.seen(), u"code"_s);
    QCOMPARE(fixture.state.currentDocument()->language(), Language(Language::python));
    // And one that has nothing is not kept.
    fixture.state.createNewTab();
    fixture.press(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!fixture.command(Command::reopenTab)->isEnabled());
}

void WindowCommandsTest::whatIsOpenAgainIsPassedOver()
{
    Fixture fixture(u"abc"_s);
    const QUrl c = *fixture.state.currentDocument()->fileURL();
    fixture.state.closeTab(1);
    fixture.state.closeTab(1);
    fixture.state.openFile(c);
    fixture.press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(fixture.seen(), u"b"_s);
    QCOMPARE(fixture.tabs().size(), 3);
}

void WindowCommandsTest::textsAreRememberedWithinBounds()
{
    Fixture fixture(QString{});
    constexpr int closed = 15;
    constexpr int remembered = 10;
    for (int count = 0; count < closed; ++count) {
        fixture.state.openSnippet(QString::number(count), Language::swift, std::nullopt);
        fixture.state.closeTab(0);
    }
    for (int count = closed - 1; count >= closed - remembered; --count) {
        fixture.press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(fixture.seen(), QString::number(count));
    }
    QVERIFY(!fixture.command(Command::reopenTab)->isEnabled());
}

void WindowCommandsTest::nothingIsDoneUnderAnOverlay()
{
    Fixture fixture(u"abc"_s);
    for (const auto show : {&AppState::setShowQuickOpen, &AppState::setShowSearch, &AppState::setShowGoToLine}) {
        std::invoke(show, fixture.state, true);
        fixture.turnQueue();
        for (const Command command : {Command::nextRecentTab, Command::nextTab, Command::goToTab1, Command::goToLastTab,
                                      Command::closeTab, Command::nextPane}) {
            QVERIFY(!fixture.command(command)->isEnabled());
        }
        fixture.press(Qt::Key_PageUp, Qt::ControlModifier);
        fixture.press(Qt::Key_1, Qt::AltModifier);
        QCOMPARE(fixture.seen(), u"c"_s);
        // The overlay's own key.
        fixture.press(Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(fixture.tabs(), u"abc"_s);
        QVERIFY(!fixture.state.showQuickOpen());
        std::invoke(show, fixture.state, false);
        fixture.turnQueue();
        QVERIFY(fixture.command(Command::closeTab)->isEnabled());
    }
}

void WindowCommandsTest::helpsTellTheKeys()
{
    Fixture fixture(u"abcdefghij"_s);
    const QList<TabItemView*> tabs = fixture.window.tabBar().tabs();
    QVERIFY(tabs[0]->toolTip().endsWith(u"\nAlt+1"_s));
    QVERIFY(tabs[7]->toolTip().endsWith(u"\nAlt+8"_s));
    QVERIFY(!tabs[8]->toolTip().contains(u"Alt+"_s));
    QVERIFY(tabs[9]->toolTip().endsWith(u"\nAlt+9"_s));
    QCOMPARE(tabs[9]->closeButton().toolTip(), u"Close (Ctrl+W)"_s);
    QCOMPARE(tabs[0]->closeButton().toolTip(), u"Close"_s);
    QCOMPARE(tabs[9]->closeButton().accessibleName(), u"Close"_s);
    fixture.state.closeTab(0);
    QVERIFY(fixture.window.tabBar().tabs().first()->toolTip().endsWith(u"\nAlt+1"_s));
    fixture.state.setCurrentDocumentIndex(0);
    QCOMPARE(fixture.window.tabBar().tabs().first()->closeButton().toolTip(), u"Close (Ctrl+W)"_s);
    QCOMPARE(fixture.window.tabBar().tabs().last()->closeButton().toolTip(), u"Close"_s);
}

const kelm::test::Registered<WindowCommandsTest> registered(kelm::test::Toolkit::widgets);

} // namespace window_commands_test

#include "window_commands_test.moc"
