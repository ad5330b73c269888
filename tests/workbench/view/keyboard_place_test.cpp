#include "git/panel/view/clone_dialog.h"
#include "support/test_program.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/controls.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/overlay_layer.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

namespace keyboard_place_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : WindowFixture
{
    Fixture()
    {
        state.createNewTab();
        state.createNewTab();
        settle();
    }

    void settle()
    {
        turnQueue();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        turnQueue();
    }

    /// Puts the keyboard on the first control in a part of the window that takes it.
    bool focusIn(QWidget& part)
    {
        for (auto* widget : part.findChildren<QWidget*>()) {
            if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0) {
                widget->setFocus(Qt::TabFocusReason);
                return part.isAncestorOf(QApplication::focusWidget());
            }
        }
        return false;
    }

    OverlayLayer* layer() const
    {
        OverlayLayer* top = nullptr;
        for (QObject* child : window.children()) {
            auto* each = qobject_cast<OverlayLayer*>(child);
            top = each != nullptr && each->isVisible() ? each : top;
        }
        return top;
    }

    /// Whether the keyboard is on something of the window that a person sees and that nothing lies over.
    bool isSeen() const
    {
        const QWidget* focused = QApplication::focusWidget();
        return focused != nullptr && focused->isVisible() && focused->isEnabled() && focused->window() == &window &&
               (layer() == nullptr || layer()->isAncestorOf(focused));
    }
};

const std::array<std::pair<const char*, void (AppState::*)(bool)>, 3> overlays{
    {{"quick open", &AppState::setShowQuickOpen},
     {"search", &AppState::setShowSearch},
     {"go to line", &AppState::setShowGoToLine}}};

} // namespace

class KeyboardPlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void aSidebarThatGoesGivesItToTheText_data();
    void aSidebarThatGoesGivesItToTheText();
    void anotherTabOfTheSidebarKeepsItInSight_data() { aSidebarThatGoesGivesItToTheText_data(); }
    void anotherTabOfTheSidebarKeepsItInSight();
    void aBottomPanelThatGoesGivesItToTheText_data();
    void aBottomPanelThatGoesGivesItToTheText();
    void anotherTabOfTheBottomPanelKeepsItInSight_data() { aBottomPanelThatGoesGivesItToTheText_data(); }
    void anotherTabOfTheBottomPanelKeepsItInSight();
    void clicksOnAnOverlayLeaveItThere_data();
    void clicksOnAnOverlayLeaveItThere();
    void nothingBehindAnOverlayTakesIt_data();
    void nothingBehindAnOverlayTakesIt();
    void anOverlayThatGoesGivesItToTheText_data() { clicksOnAnOverlayLeaveItThere_data(); }
    void anOverlayThatGoesGivesItToTheText();
    void aSheetThatClosesGivesItToWhatIsSeen_data();
    void aSheetThatClosesGivesItToWhatIsSeen();
    void aTabSwitchGivesItToTheText_data();
    void aTabSwitchGivesItToTheText();
    void aNoticesButtonThatGoesGivesItToTheText_data();
    void aNoticesButtonThatGoesGivesItToTheText();
    void aLessonPanelThatGoesGivesItToTheText();
};

void KeyboardPlaceTest::aSidebarThatGoesGivesItToTheText_data()
{
    QTest::addColumn<int>("tab");
    for (const SidebarTab tab : SidebarTab::allCases()) {
        QTest::newRow(qPrintable(tab.helpLabel())) << int(tab);
    }
}

void KeyboardPlaceTest::aSidebarThatGoesGivesItToTheText()
{
    QFETCH(int, tab);
    Fixture fixture;
    fixture.window.sidebar()->select(SidebarTab::allCases()[std::size_t(tab)]);
    fixture.settle();
    QVERIFY(fixture.focusIn(*fixture.window.sidebar()));
    fixture.state.setShowSidebar(false);
    fixture.settle();
    QVERIFY(fixture.text().hasFocus());
    QTest::keyClicks(QApplication::focusWidget(), u"a b"_s);
    QCOMPARE(fixture.state.currentDocument()->content(), u"a b"_s);
    QCOMPARE(fixture.state.documents().size(), 2);
}

void KeyboardPlaceTest::anotherTabOfTheSidebarKeepsItInSight()
{
    QFETCH(int, tab);
    for (const SidebarTab other : SidebarTab::allCases()) {
        Fixture fixture;
        SidebarView& sidebar = *fixture.window.sidebar();
        sidebar.select(SidebarTab::allCases()[std::size_t(tab)]);
        fixture.settle();
        for (auto* widget : sidebar.findChildren<QWidget*>()) {
            if (widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus) != 0) {
                widget->setFocus();
            }
        }
        QVERIFY(sidebar.isAncestorOf(QApplication::focusWidget()));
        sidebar.select(other);
        fixture.settle();
        QVERIFY2(fixture.isSeen(), qPrintable(other.helpLabel()));
        // And on something that takes it.
        QVERIFY2(QApplication::focusWidget()->focusPolicy() != Qt::NoFocus, qPrintable(other.helpLabel()));
    }
}

void KeyboardPlaceTest::aBottomPanelThatGoesGivesItToTheText_data()
{
    QTest::addColumn<int>("tab");
    for (const BottomPanelTab tab : BottomPanelTab::allCases()) {
        QTest::newRow(qPrintable(tab.label())) << int(tab);
    }
}

void KeyboardPlaceTest::aBottomPanelThatGoesGivesItToTheText()
{
    QFETCH(int, tab);
    Fixture fixture;
    fixture.state.setShowBottomPanel(true);
    fixture.state.setBottomPanelTab(BottomPanelTab::allCases()[std::size_t(tab)]);
    fixture.settle();
    QVERIFY(fixture.focusIn(*fixture.window.bottomPanel()));
    fixture.state.setShowBottomPanel(false);
    fixture.settle();
    QVERIFY(fixture.text().hasFocus());
}

void KeyboardPlaceTest::anotherTabOfTheBottomPanelKeepsItInSight()
{
    QFETCH(int, tab);
    for (const BottomPanelTab other : BottomPanelTab::allCases()) {
        Fixture fixture;
        fixture.state.setShowBottomPanel(true);
        fixture.state.setBottomPanelTab(BottomPanelTab::allCases()[std::size_t(tab)]);
        fixture.settle();
        for (auto* widget : fixture.window.bottomPanel()->findChildren<QWidget*>()) {
            if (widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus) != 0) {
                widget->setFocus();
            }
        }
        QVERIFY(fixture.window.bottomPanel()->isAncestorOf(QApplication::focusWidget()));
        fixture.state.setBottomPanelTab(other);
        fixture.settle();
        QVERIFY2(fixture.isSeen(), qPrintable(other.label()));
    }
}

void KeyboardPlaceTest::clicksOnAnOverlayLeaveItThere_data()
{
    QTest::addColumn<int>("overlay");
    for (std::size_t index = 0; index < overlays.size(); ++index) {
        QTest::newRow(overlays.at(index).first) << int(index);
    }
}

void KeyboardPlaceTest::clicksOnAnOverlayLeaveItThere()
{
    QFETCH(int, overlay);
    const auto show = overlays.at(std::size_t(overlay)).second;
    Fixture fixture;
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        std::invoke(show, fixture.state, true);
        fixture.settle();
        const QRect area(QPoint(), fixture.window.size());
        for (int y = 5; y < area.height(); y += 31) {
            for (int x = 5; x < area.width(); x += 67) {
                if (fixture.layer() == nullptr) {
                    std::invoke(show, fixture.state, true);
                    fixture.settle();
                }
                QWidget* under = fixture.window.childAt(x, y);
                QVERIFY(under != nullptr && (under == fixture.layer() || fixture.layer()->isAncestorOf(under)));
                QTest::mouseClick(under, button, {}, under->mapFrom(&fixture.window, QPoint(x, y)));
                fixture.settle();
                for (QWidget* popup = QApplication::activePopupWidget(); popup != nullptr;
                     popup = QApplication::activePopupWidget()) {
                    popup->close();
                }
                QVERIFY2(fixture.isSeen(), qPrintable(u"%1 %2"_s.arg(x).arg(y)));
            }
        }
    }
}

void KeyboardPlaceTest::nothingBehindAnOverlayTakesIt_data()
{
    QTest::addColumn<int>("overlay");
    QTest::addColumn<QString>("what");
    for (std::size_t index = 0; index < overlays.size(); ++index) {
        for (const QString& what : {u"a new tab"_s, u"another tab"_s, u"a closed tab"_s, u"the terminal"_s,
                                    u"the sidebar going"_s, u"a call"_s, u"the window's activation"_s}) {
            QTest::addRow("%s, %s", overlays.at(index).first, qPrintable(what)) << int(index) << what;
        }
    }
}

void KeyboardPlaceTest::nothingBehindAnOverlayTakesIt()
{
    QFETCH(int, overlay);
    QFETCH(QString, what);
    Fixture fixture;
    fixture.focusIn(*fixture.window.sidebar());
    std::invoke(overlays.at(std::size_t(overlay)).second, fixture.state, true);
    fixture.settle();
    QVERIFY(fixture.isSeen());
    if (what == u"a new tab") {
        fixture.state.createNewTab();
    } else if (what == u"another tab") {
        fixture.state.setCurrentDocumentIndex(0);
    } else if (what == u"a closed tab") {
        fixture.state.closeTab(fixture.state.currentDocumentIndex());
    } else if (what == u"the terminal") {
        fixture.state.setBottomPanelTab(BottomPanelTab::terminal);
        fixture.state.setShowBottomPanel(true);
    } else if (what == u"the sidebar going") {
        fixture.state.setShowSidebar(false);
    } else if (what == u"a call") {
        fixture.window.editorArea().focusCurrentEditor();
    } else {
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        fixture.window.editorArea().focusCurrentEditor();
        fixture.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&fixture.window));
    }
    fixture.settle();
    QVERIFY(fixture.layer() != nullptr);
    QVERIFY(fixture.isSeen());
    const QString before = fixture.state.currentDocument()->content();
    QTest::keyClicks(QApplication::focusWidget(), u" 1"_s);
    fixture.settle();
    QCOMPARE(fixture.state.currentDocument()->content(), before);
}

void KeyboardPlaceTest::anOverlayThatGoesGivesItToTheText()
{
    QFETCH(int, overlay);
    const auto show = overlays.at(std::size_t(overlay)).second;
    Fixture fixture;
    fixture.focusIn(*fixture.window.sidebar());
    std::invoke(show, fixture.state, true);
    fixture.settle();
    std::invoke(show, fixture.state, false);
    fixture.settle();
    QVERIFY(fixture.text().hasFocus());
}

void KeyboardPlaceTest::aSheetThatClosesGivesItToWhatIsSeen_data()
{
    QTest::addColumn<QString>("meanwhile");
    QTest::newRow("nothing") << QString();
    QTest::newRow("the sidebar goes") << u"sidebar"_s;
    QTest::newRow("the bottom panel goes") << u"panel"_s;
    QTest::newRow("the tab goes") << u"tab"_s;
    QTest::newRow("another tab is shown") << u"other"_s;
    QTest::newRow("an overlay is shown") << u"overlay"_s;
}

void KeyboardPlaceTest::aSheetThatClosesGivesItToWhatIsSeen()
{
    QFETCH(QString, meanwhile);
    Fixture fixture;
    fixture.state.setShowBottomPanel(true);
    fixture.settle();
    QVERIFY(fixture.focusIn(meanwhile == u"panel" ? *static_cast<QWidget*>(fixture.window.bottomPanel())
                                                  : *static_cast<QWidget*>(fixture.window.sidebar())));
    if (meanwhile == u"tab" || meanwhile == u"other") {
        fixture.text().setFocus();
    }
    fixture.state.setShowCloneDialog(true);
    auto* sheet = fixture.window.findChild<CloneDialog*>();
    QVERIFY(QTest::qWaitForWindowActive(sheet));
    if (meanwhile == u"sidebar") {
        fixture.state.setShowSidebar(false);
    } else if (meanwhile == u"panel") {
        fixture.state.setShowBottomPanel(false);
    } else if (meanwhile == u"tab") {
        fixture.state.closeTab(fixture.state.currentDocumentIndex());
    } else if (meanwhile == u"other") {
        fixture.state.setCurrentDocumentIndex(0);
    } else if (meanwhile == u"overlay") {
        fixture.state.setShowGoToLine(true);
    }
    fixture.settle();
    sheet->reject();
    fixture.settle();
    fixture.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&fixture.window));
    fixture.settle();
    QVERIFY(fixture.isSeen());
    if (!meanwhile.isEmpty() && meanwhile != u"overlay") {
        QVERIFY(fixture.text().hasFocus());
    }
}

void KeyboardPlaceTest::aTabSwitchGivesItToTheText_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("how");
    for (const QString& from : {u"the text"_s, u"the find bar"_s, u"the tabs"_s, u"the toolbar"_s}) {
        for (const QString& how : {u"switched"_s, u"new"_s, u"closed"_s, u"last closed"_s}) {
            QTest::addRow("%s, %s", qPrintable(from), qPrintable(how)) << from << how;
        }
    }
}

void KeyboardPlaceTest::aTabSwitchGivesItToTheText()
{
    QFETCH(QString, from);
    QFETCH(QString, how);
    Fixture fixture;
    if (from == u"the text") {
        fixture.text().setFocus();
    } else if (from == u"the find bar") {
        fixture.text().showFindBar();
    } else if (from == u"the tabs") {
        QVERIFY(fixture.focusIn(fixture.window.tabBar()));
    } else {
        QVERIFY(fixture.focusIn(fixture.window.toolbar()));
    }
    if (how == u"switched") {
        fixture.state.setCurrentDocumentIndex(0);
    } else if (how == u"new") {
        fixture.state.createNewTab();
    } else {
        fixture.state.closeTab(fixture.state.currentDocumentIndex());
        if (how == u"last closed") {
            fixture.settle();
            fixture.state.closeTab(fixture.state.currentDocumentIndex());
        }
    }
    fixture.settle();
    QVERIFY(fixture.isSeen());
    QVERIFY(fixture.window.editorArea().isAncestorOf(QApplication::focusWidget()));
}

void KeyboardPlaceTest::aNoticesButtonThatGoesGivesItToTheText_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("an offer") << u"Take"_s;
    QTest::newRow("dismissal") << u"Dismiss"_s;
}

void KeyboardPlaceTest::aNoticesButtonThatGoesGivesItToTheText()
{
    QFETCH(QString, button);
    Fixture fixture;
    fixture.state.notices().report(u"News"_s, {{u"Take"_s, [] {}}});
    QTRY_VERIFY(fixture.window.noticeBar().isVisible());
    QAbstractButton* pressed = visibleButton(fixture.window.noticeBar(), button);
    QVERIFY(pressed != nullptr);
    pressed->setFocus(Qt::TabFocusReason);
    QVERIFY(pressed->hasFocus());
    QTest::keyClick(pressed, Qt::Key_Space);
    fixture.settle();
    QVERIFY(fixture.window.noticeBar().isHidden());
    QVERIFY(fixture.text().hasFocus());
}

void KeyboardPlaceTest::aLessonPanelThatGoesGivesItToTheText()
{
    Fixture fixture;
    const std::shared_ptr<Document> document = fixture.state.currentDocument();
    document->setLessonInfo(LessonInfo{});
    fixture.state.setCurrentDocumentIndex(0);
    fixture.state.setCurrentDocumentIndex(1);
    fixture.settle();
    QVERIFY(fixture.window.lessonPanel() != nullptr);
    QVERIFY(fixture.focusIn(*fixture.window.lessonPanel()));
    fixture.state.setCurrentDocumentIndex(0);
    fixture.settle();
    QVERIFY(fixture.text().hasFocus());
}

const kelm::test::Registered<KeyboardPlaceTest> registered(kelm::test::Toolkit::widgets);

} // namespace keyboard_place_test

#include "keyboard_place_test.moc"
