#include "app/state/notices.h"
#include "git/panel/view/clone_dialog.h"
#include "platform/style/view/style.h"
#include "platform/view/plain_button.h"
#include "settings/view/settings_view.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"
#include "workbench/view/focus_in_sight.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"
#include "workbench/view/window_fixture.h"

#include <QCheckBox>
#include <QListView>
#include <QScrollArea>
#include <QScrollBar>

namespace focus_in_sight_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Whether all of what has the keyboard is within everything around it.
bool isWhollySeen(const QWidget* focused)
{
    if (focused == nullptr || !focused->isVisible()) {
        return false;
    }
    for (const QWidget* around = focused->parentWidget(); around != nullptr; around = around->parentWidget()) {
        const QRect place(focused->mapTo(around, QPoint()), focused->size());
        if (!around->rect().contains(place)) {
            return false;
        }
        if (around->isWindow()) {
            break;
        }
    }
    return true;
}

/// What a window shows where a widget stands, and a little around it.
QImage shownAt(const QWidget& widget)
{
    constexpr int around = 4;
    const QRect place(widget.mapTo(widget.window(), QPoint()), widget.size());
    return widget.window()->grab(place.adjusted(-around, -around, around, around)).toImage();
}

/// The stops of a part that look alike with the keyboard and without it.
QStringList stopsThatHideIt(const QWidget& part)
{
    QStringList hidden;
    QWidget rest(part.window());
    rest.setFocusPolicy(Qt::StrongFocus);
    rest.show();
    rest.setFocus();
    // From the first Tab on, a window shows where the keyboard is.
    QTest::keyClick(&rest, Qt::Key_Tab);
    for (auto* stop : part.findChildren<QWidget*>()) {
        if (stop->isVisible() && stop->isEnabled() && (stop->focusPolicy() & Qt::TabFocus) != 0 && stop != &rest) {
            stop->setFocus(Qt::TabFocusReason);
            if (!stop->hasFocus()) {
                continue;
            }
            const QImage with = shownAt(*stop);
            rest.setFocus();
            if (shownAt(*stop) == with) {
                hidden.append(QString::fromLatin1(stop->metaObject()->className()) + u' ' + stop->accessibleName());
            }
        }
    }
    return hidden;
}

/// The tree of a project with 200 files; nothing where it does not come.
QListView* longTree(WindowFixture& fixture)
{
    for (int count = 0; count < 200; ++count) {
        fixture.write(u"file %1.txt"_s.arg(count), "x");
    }
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.path()));
    QListView* list = nullptr;
    const bool isFilled = QTest::qWaitFor(
        [&] {
            list = fixture.window.sidebar()->findChild<QListView*>();
            return list != nullptr && list->isVisible() && list->model()->rowCount() >= 200;
        },
        kelm::test::patience);
    return isFilled ? list : nullptr;
}

} // namespace

class FocusInSightTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        style::installOn(*qApp);
        useFixedGitEnvironment();
    }

    void aStripThatWasScrolledAwayComesBack_data();
    void aStripThatWasScrolledAwayComesBack();
    void theRowOfAListComesBack();
    void whatThePointerIsOnStays();
    void eachStopOfTheWindowIsSeen_data();
    void eachStopOfTheWindowIsSeen();
    void eachStopOfTheSettingsIsSeen();
    void eachStopOfASheetIsSeen();
    void eachStopOfTheWindowShowsIt_data() { eachStopOfTheWindowIsSeen_data(); }
    void eachStopOfTheWindowShowsIt();
    void eachStopOfTheSettingsShowsIt();
    void aWindowThatOpensShowsIt();
    void eachStopOfASheetShowsIt();
};

void FocusInSightTest::aStripThatWasScrolledAwayComesBack_data()
{
    QTest::addColumn<qsizetype>("selected");
    QTest::addColumn<bool>("toButton");
    QTest::newRow("the first tab") << qsizetype(0) << false;
    QTest::newRow("the last tab") << qsizetype(29) << false;
    QTest::newRow("the button for a new one") << qsizetype(0) << true;
}

void FocusInSightTest::aStripThatWasScrolledAwayComesBack()
{
    QFETCH(qsizetype, selected);
    QFETCH(bool, toButton);
    WindowFixture fixture;
    for (int count = 0; count < 30; ++count) {
        fixture.state.createNewTab();
    }
    fixture.state.setCurrentDocumentIndex(selected);
    TabBarView& strip = fixture.window.tabBar();
    QScrollBar* const bar = strip.findChild<QScrollArea*>()->horizontalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    QTRY_COMPARE(bar->value(), selected == 0 ? 0 : bar->maximum());
    bar->setValue(selected == 0 && !toButton ? bar->maximum() : 0);
    QWidget* const target = toButton ? static_cast<QWidget*>(&strip.newTabButton()) : strip.tabs().at(selected);
    QVERIFY(!isWhollySeen(target));
    target->setFocus(Qt::TabFocusReason);
    QVERIFY(isWhollySeen(target));
}

void FocusInSightTest::theRowOfAListComesBack()
{
    WindowFixture fixture;
    QListView* const list = longTree(fixture);
    QVERIFY(list != nullptr);
    list->setFocus(Qt::TabFocusReason);
    list->setCurrentIndex(list->model()->index(3, 0));
    fixture.window.tabBar().newTabButton().setFocus(Qt::TabFocusReason);
    list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum());
    QVERIFY(!list->viewport()->rect().contains(list->visualRect(list->currentIndex())));
    list->setFocus(Qt::BacktabFocusReason);
    QVERIFY(list->viewport()->rect().contains(list->visualRect(list->currentIndex())));
}

void FocusInSightTest::whatThePointerIsOnStays()
{
    WindowFixture fixture;
    QListView* const list = longTree(fixture);
    QVERIFY(list != nullptr);
    list->setCurrentIndex(list->model()->index(3, 0));
    QScrollBar& bar = *list->verticalScrollBar();
    bar.setValue(bar.maximum());
    const QPoint place = list->viewport()->mapTo(&fixture.window, list->viewport()->rect().center());
    QTest::mousePress(fixture.window.windowHandle(), Qt::LeftButton, {}, place);
    QVERIFY(list->hasFocus());
    QCOMPARE(bar.value(), bar.maximum());
    QTest::mouseRelease(fixture.window.windowHandle(), Qt::LeftButton, {}, place);
}

void FocusInSightTest::eachStopOfTheWindowIsSeen_data()
{
    QTest::addColumn<int>("tab");
    for (const SidebarTab tab : SidebarTab::allCases()) {
        QTest::newRow(qPrintable(tab.helpLabel())) << int(tab);
    }
}

void FocusInSightTest::eachStopOfTheWindowIsSeen()
{
    QFETCH(int, tab);
    WindowFixture fixture;
    fixture.window.resize(fixture.window.minimumSizeHint());
    fixture.window.sidebar()->select(SidebarTab::allCases()[std::size_t(tab)]);
    fixture.state.setShowBottomPanel(true);
    fixture.state.setBottomPanelTab(BottomPanelTab::problems);
    int given = 0;
    fixture.notifications.addObserver(&fixture.window, notifications::focusEditor,
                                      [&given](const Notification&) { ++given; });
    for (int count = 0; count < 20; ++count) {
        fixture.state.openSnippet(u"code"_s, Language::swift, LessonInfo{});
    }
    fixture.turnQueue();
    QTRY_VERIFY(fixture.window.lessonPanel() != nullptr);
    // Code that was opened is given the keyboard a little later.
    QTRY_COMPARE(given, 20);
    fixture.window.sidebar()->tabButton(SidebarTab::files).setFocus(Qt::TabFocusReason);
    QSet<QWidget*> reached;
    while (!reached.contains(QApplication::focusWidget())) {
        QWidget* const focused = QApplication::focusWidget();
        reached.insert(focused);
        QVERIFY2(isWhollySeen(focused), qPrintable(focused->accessibleName()));
        if (fixture.window.editorArea().isAncestorOf(focused)) {
            // There Tab is typed; the panes are the way on.
            QTest::keyClick(fixture.window.windowHandle(), Qt::Key_F6);
        } else {
            QTest::keyClick(focused, Qt::Key_Tab);
        }
        fixture.turnQueue();
    }
    QVERIFY(reached.size() > 10);
}

void FocusInSightTest::eachStopOfTheSettingsIsSeen()
{
    WindowFixture fixture;
    fixture.window.openSettings();
    SettingsView& settings = *fixture.window.settings();
    settings.resize(settings.minimumSizeHint());
    QVERIFY(QTest::qWaitForWindowActive(&settings));
    for (auto* button : settings.findChildren<QAbstractButton*>()) {
        if (!button->isCheckable() || !button->autoExclusive() || !button->isVisible()) {
            continue;
        }
        button->click();
        button->setFocus(Qt::TabFocusReason);
        QSet<QWidget*> reached;
        while (!reached.contains(QApplication::focusWidget())) {
            QWidget* const focused = QApplication::focusWidget();
            reached.insert(focused);
            QVERIFY2(isWhollySeen(focused), focused->metaObject()->className());
            QTest::keyClick(focused, Qt::Key_Tab);
        }
    }
}

void FocusInSightTest::eachStopOfASheetIsSeen()
{
    WindowFixture fixture;
    fixture.state.setShowCloneDialog(true);
    auto* const sheet = fixture.window.findChild<CloneDialog*>();
    QVERIFY(QTest::qWaitForWindowActive(sheet));
    QSet<QWidget*> reached;
    while (!reached.contains(QApplication::focusWidget())) {
        QWidget* const focused = QApplication::focusWidget();
        reached.insert(focused);
        QVERIFY2(isWhollySeen(focused), qPrintable(focused->accessibleName()));
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    QVERIFY(reached.size() > 2);
}

void FocusInSightTest::eachStopOfTheWindowShowsIt()
{
    QFETCH(int, tab);
    WindowFixture fixture;
    const TemporaryRepository repository;
    repository.write(u"a.txt"_s, "x");
    fixture.state.setCurrentProject(repository.url());
    fixture.window.sidebar()->select(SidebarTab::allCases()[std::size_t(tab)]);
    if (tab == SidebarTab::sourceControl) {
        // All its controls are there.
        const auto isThere = [&fixture] {
            const auto boxes = fixture.window.sidebar()->findChildren<QCheckBox*>();
            return std::any_of(boxes.begin(), boxes.end(), [](const QCheckBox* box) { return box->isVisible(); });
        };
        QTRY_VERIFY(isThere());
    }
    fixture.state.setShowBottomPanel(true);
    fixture.state.setBottomPanelTab(tab == SidebarTab::files ? BottomPanelTab::problems : BottomPanelTab::output);
    fixture.state.openSnippet(u"code"_s, Language::swift, LessonInfo{});
    fixture.state.notices().report(u"News"_s, {{u"Take"_s, [] {}}});
    QTRY_VERIFY(fixture.window.lessonPanel() != nullptr && fixture.window.noticeBar().isVisible());
    fixture.turnQueue();
    QCOMPARE(stopsThatHideIt(fixture.window).join(u"; "_s), QString());
}

void FocusInSightTest::eachStopOfTheSettingsShowsIt()
{
    WindowFixture fixture;
    fixture.window.openSettings();
    SettingsView& settings = *fixture.window.settings();
    QVERIFY(QTest::qWaitForWindowActive(&settings));
    for (const auto tab : {SettingsView::general, SettingsView::editor, SettingsView::themes, SettingsView::keybindings,
                           SettingsView::extensions}) {
        settings.select(tab);
        QCOMPARE(stopsThatHideIt(settings).join(u"; "_s), QString());
    }
}

void FocusInSightTest::aWindowThatOpensShowsIt()
{
    WindowFixture fixture;
    fixture.window.openSettings();
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.settings()));
    QWidget* const focused = QApplication::focusWidget();
    QVERIFY(focused != nullptr && focused->window() == fixture.window.settings());
    const QImage with = shownAt(*focused);
    focused->clearFocus();
    QVERIFY(shownAt(*focused) != with);
}

void FocusInSightTest::eachStopOfASheetShowsIt()
{
    WindowFixture fixture;
    fixture.state.setShowCloneDialog(true);
    auto* const sheet = fixture.window.findChild<CloneDialog*>();
    QVERIFY(QTest::qWaitForWindowActive(sheet));
    QCOMPARE(stopsThatHideIt(*sheet).join(u"; "_s), QString());
}

const kelm::test::Registered<FocusInSightTest> registered(kelm::test::Toolkit::widgets);

} // namespace focus_in_sight_test

#include "focus_in_sight_test.moc"
