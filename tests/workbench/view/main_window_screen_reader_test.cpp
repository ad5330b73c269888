#include "app/state/link_runs.h"
#include "app/state/notices.h"
#include "git/panel/view/source_control_view.h"
#include "git/service/git_service.h"
#include "learning/lesson_info.h"
#include "platform/style/view/style.h"
#include "run/code_runner.h"
#include "settings/view/settings_view.h"
#include "support/accessible_events.h"
#include "support/accessible_tree.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"
#include "text/view/text_view.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/window_fixture.h"

#include <QLineEdit>

namespace main_window_screen_reader_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A window over a project with something of everything.
struct Fixture : WindowFixture
{
    TemporaryRepository repository;

    Fixture()
    {
        repository.write(u"one.py"_s, "def one():\n    return 1\n");
        repository.commitAll(u"first"_s);
        repository.git({u"tag"_s, u"v1"_s});
        repository.git({u"branch"_s, u"other"_s});
        repository.git({u"remote"_s, u"add"_s, u"origin"_s, repository.path()});
        repository.write(u"one.py"_s, "def one():\n    return 3\n");
        repository.git({u"stash"_s});
        repository.write(u"one.py"_s, "def one():\n    return 2\n");
        repository.write(u"two.txt"_s, "two\n");
    }

    void openProject()
    {
        state.setCurrentProject(repository.url());
        state.openFile(QUrl::fromLocalFile(repository.filePath(u"one.py"_s)));
        turnQueue();
    }
    void showPage(SidebarTab tab)
    {
        window.sidebar()->select(tab);
        turnQueue();
    }
    SourceControlView& showSourceControl(SourceControlTab tab)
    {
        openProject();
        showPage(SidebarTab::sourceControl);
        auto& view = *window.findChild<SourceControlView*>();
        view.setTab(tab);
        [&] { QTRY_VERIFY(!state.git().isBusy()); }();
        turnQueue();
        return view;
    }
    void showPanel(BottomPanelTab tab)
    {
        state.setShowBottomPanel(true);
        state.setBottomPanelTab(tab);
        turnQueue();
    }
    void showSettings(SettingsView::Tab tab)
    {
        window.openSettings();
        window.settings()->select(tab);
        turnQueue();
    }
};

struct Place
{
    const char* name;
    std::function<void(Fixture&)> show;
};

void searchProject(Fixture& f)
{
    f.openProject();
    f.showPage(SidebarTab::search);
    auto* field = f.window.sidebar()->findChild<QLineEdit*>();
    field->setText(u"return"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QTRY_VERIFY(findAccessible(*accessible(f.window), u"one.py, return 2"_s) != nullptr ||
                findAccessible(*accessible(f.window), u"one.py,     return 2"_s) != nullptr);
}

void openLesson(Fixture& f)
{
    f.state.openSnippet(u"echo 'HTTP 401' >&2\n"_s, Language::shell,
                        LessonInfo{.slug = u"one"_s,
                                   .title = u"A title"_s,
                                   .regionStart = 1,
                                   .regionEnd = 2,
                                   .requires_ = {u"OPENAI_API_KEY"_s}});
    f.state.runCurrentFile();
    QTRY_VERIFY(!f.state.codeRunner().isRunning());
}

void askToRun(Fixture& f)
{
    f.state.openSnippet(u"true\n"_s, Language::shell, LessonInfo{.slug = u"one"_s});
    f.state.linkRuns().request(f.state.currentDocument());
    f.turnQueue();
}

void findInText(Fixture& f)
{
    f.openProject();
    f.text().showReplaceBar();
    f.turnQueue();
}

void showUnsaved(Fixture& f)
{
    f.state.openFile(f.write(u"a.txt"_s, "a"));
    f.turnQueue();
    QTest::keyClicks(&f.text(), u"unsaved "_s);
    f.state.setDocuments({});
    f.turnQueue();
}

const std::vector<Place>& places()
{
    using Tab = SourceControlTab;
    static const std::vector<Place> all{
        {"welcome", [](Fixture&) {}},
        {"welcome after work", showUnsaved},
        {"editor", [](Fixture& f) { f.openProject(); }},
        {"find bar", findInText},
        {"files", [](Fixture& f) { f.openProject(), f.showPage(SidebarTab::files); }},
        {"search in files", searchProject},
        {"extensions", [](Fixture& f) { f.showPage(SidebarTab::extensions); }},
        {"changes", [](Fixture& f) { f.showSourceControl(Tab::changes); }},
        {"history", [](Fixture& f) { f.showSourceControl(Tab::history); }},
        {"branches", [](Fixture& f) { f.showSourceControl(Tab::branches); }},
        {"stashes", [](Fixture& f) { f.showSourceControl(Tab::stashes); }},
        {"tags", [](Fixture& f) { f.showSourceControl(Tab::tags); }},
        {"remotes", [](Fixture& f) { f.showSourceControl(Tab::remotes); }},
        {"diff", [](Fixture& f) { f.showSourceControl(Tab::changes).setDiffPath(u"one.py"_s); }},
        {"commit", [](Fixture& f) { f.showSourceControl(Tab::history).setHistorySha(u"HEAD"_s); }},
        {"terminal", [](Fixture& f) { f.showPanel(BottomPanelTab::terminal); }},
        {"output", [](Fixture& f) { f.showPanel(BottomPanelTab::output); }},
        {"problems", [](Fixture& f) { f.showPanel(BottomPanelTab::problems); }},
        {"quick open", [](Fixture& f) { f.openProject(), f.state.setShowQuickOpen(true); }},
        {"search overlay", [](Fixture& f) { f.state.setShowSearch(true); }},
        {"replace overlay",
         [](Fixture& f) { f.state.setSearchMode(SearchMode::replace), f.state.setShowSearch(true); }},
        {"go to line", [](Fixture& f) { f.state.setShowGoToLine(true); }},
        {"clone", [](Fixture& f) { f.state.setShowCloneDialog(true); }},
        {"notice",
         [](Fixture& f) {
             f.state.notices().report(u"Something happened"_s, {{u"Undo"_s, [] {}}});
         }},
        {"lesson", openLesson},
        {"link", askToRun},
        {"settings, general", [](Fixture& f) { f.showSettings(SettingsView::general); }},
        {"settings, editor", [](Fixture& f) { f.showSettings(SettingsView::editor); }},
        {"settings, themes", [](Fixture& f) { f.showSettings(SettingsView::themes); }},
        {"settings, keys", [](Fixture& f) { f.showSettings(SettingsView::keybindings); }},
        {"settings, extensions", [](Fixture& f) { f.showSettings(SettingsView::extensions); }},
    };
    return all;
}

/// The windows that are to be seen, as a screen reader comes to them.
QStringList faultsOfAllWindows()
{
    QStringList faults;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible()) {
            faults += accessibleFaults(*accessible(*window));
        }
    }
    return faults;
}

} // namespace

class MainWindowScreenReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        useFixedGitEnvironment();
        style::installOn(*qApp);
    }

    void allThatIsShownIsTold_data();
    void allThatIsShownIsTold();
    void aTabTellsWhetherItIsSelectedAndModified();
    void overlaysAreDialogs_data();
    void overlaysAreDialogs();
    void aNoticeIsAnAlertWhileItLasts();
    void quickOpenTellsWhichFileReturnWouldOpen();
    void theFindBarSaysTheNumberOfMatches();
    void foldersAreExpandedByAction();
    void theTerminalIsOne();
    void theDiagnosisOfAFailedRunIsSaid();
};

void MainWindowScreenReaderTest::allThatIsShownIsTold_data()
{
    QTest::addColumn<int>("place");
    for (int place = 0; place < int(places().size()); ++place) {
        QTest::newRow(places()[std::size_t(place)].name) << place;
    }
}

void MainWindowScreenReaderTest::allThatIsShownIsTold()
{
    QFETCH(int, place);
    Fixture fixture;
    places()[std::size_t(place)].show(fixture);
    fixture.turnQueue();
    const QStringList faults = faultsOfAllWindows();
    QVERIFY2(faults.isEmpty(), qPrintable(u'\n' + faults.join(u'\n')));
}

void MainWindowScreenReaderTest::aTabTellsWhetherItIsSelectedAndModified()
{
    Fixture fixture;
    const QUrl url = fixture.write(u"a.txt"_s, "a");
    fixture.state.openFile(url);
    fixture.state.openFile(fixture.write(u"b.txt"_s, "b"));
    fixture.turnQueue();
    QAccessibleInterface& root = *accessible(fixture.window);
    const auto tab = [&](const QString& name) { return findAccessible(root, name, QAccessible::PageTab); };
    QVERIFY(tab(u"a.txt"_s)->state().selectable && !tab(u"a.txt"_s)->state().selected);
    QVERIFY(tab(u"b.txt"_s)->state().selected);
    tab(u"a.txt"_s)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    fixture.turnQueue();
    QVERIFY(tab(u"a.txt"_s)->state().selected);
    QVERIFY(!tab(u"b.txt"_s)->state().selected);
    QCOMPARE(tab(u"a.txt"_s)->text(QAccessible::Description), url.toLocalFile());
    QTest::keyClicks(&fixture.text(), u"x"_s);
    QCOMPARE(tab(u"a.txt *"_s)->text(QAccessible::Description), u"modified, "_s + url.toLocalFile());
}

void MainWindowScreenReaderTest::overlaysAreDialogs_data()
{
    QTest::addColumn<QByteArray>("flag");
    QTest::addColumn<QString>("name");
    QTest::newRow("quick open") << QByteArray("showQuickOpen") << u"Go to file"_s;
    QTest::newRow("search") << QByteArray("showSearch") << u"Find"_s;
    QTest::newRow("go to line") << QByteArray("showGoToLine") << u"Go to line"_s;
}

void MainWindowScreenReaderTest::overlaysAreDialogs()
{
    QFETCH(QByteArray, flag);
    QFETCH(QString, name);
    Fixture fixture;
    QVERIFY(findAccessible(*accessible(fixture.window), name, QAccessible::Dialog) == nullptr);
    fixture.state.setProperty(flag, true);
    fixture.turnQueue();
    QAccessibleInterface* dialog = findAccessible(*accessible(fixture.window), name, QAccessible::Dialog);
    QVERIFY(dialog != nullptr && dialog->state().modal);
}

void MainWindowScreenReaderTest::aNoticeIsAnAlertWhileItLasts()
{
    Fixture fixture;
    const auto alert = [&] {
        return findAccessible(*accessible(fixture.window), u"Lost"_s, QAccessible::AlertMessage);
    };
    QVERIFY(alert() == nullptr);
    fixture.state.notices().report(u"Lost"_s, {{u"Find"_s, [] {}}});
    fixture.turnQueue();
    QTRY_VERIFY(fixture.window.noticeBar().isVisible());
    QVERIFY(alert() != nullptr);
    Q_EMIT fixture.window.noticeBar().accepted(0);
    fixture.turnQueue();
    QVERIFY(alert() == nullptr);
}

void MainWindowScreenReaderTest::quickOpenTellsWhichFileReturnWouldOpen()
{
    Fixture fixture;
    for (const char* name : {"a.txt", "b.txt"}) {
        fixture.state.openFile(fixture.write(QString::fromLatin1(name), name));
    }
    fixture.state.setShowQuickOpen(true);
    fixture.turnQueue();
    QAccessibleInterface& root = *accessible(fixture.window);
    QAccessibleInterface& field = *findAccessible(root, u"Go to file"_s, QAccessible::EditableText);
    const auto description = [&] { return field.text(QAccessible::Description); };
    const auto isSelected = [&](const QString& name) {
        return bool(findAccessible(root, name, QAccessible::ListItem)->state().selected);
    };
    QCOMPARE(description(), u"b.txt, 1 of 2"_s);
    AccessibleListener listener;
    QTest::keyClick(fixture.window.focusWidget(), Qt::Key_Down);
    QCOMPARE(description(), u"a.txt, 2 of 2"_s);
    QVERIFY(isSelected(u"a.txt"_s) && !isSelected(u"b.txt"_s));
    QCOMPARE(listener.take(QAccessible::ActiveDescendantChanged), QStringList{u"a.txt"_s});
    QTest::keyClicks(fixture.window.focusWidget(), u"zzz"_s);
    QCOMPARE(description(), u"No file"_s);
}

void MainWindowScreenReaderTest::theFindBarSaysTheNumberOfMatches()
{
    Fixture fixture;
    fixture.openProject();
    fixture.text().showFindBar();
    AccessibleListener listener;
    QTest::keyClicks(QApplication::focusWidget(), u"one"_s);
    QStringList said;
    QTRY_VERIFY(!(said += listener.take(QAccessible::Alert)).isEmpty());
    QCOMPARE(said.last(), u"1 of 1"_s);
    QTest::keyClicks(QApplication::focusWidget(), u"zzz"_s);
    QTRY_VERIFY((said += listener.take(QAccessible::Alert)).last() != u"1 of 1"_s);
}

void MainWindowScreenReaderTest::foldersAreExpandedByAction()
{
    Fixture fixture;
    QDir(fixture.repository.path()).mkpath(u"folder"_s);
    fixture.repository.write(u"folder/inner.txt"_s, "inner");
    fixture.openProject();
    fixture.showPage(SidebarTab::files);
    QAccessibleInterface& root = *accessible(fixture.window);
    const auto item = [&](const QString& name) { return findAccessible(root, name, QAccessible::ListItem); };
    QTRY_VERIFY(item(u"folder, folder, untracked"_s) != nullptr);
    QVERIFY(item(u"folder, folder, untracked"_s)->state().collapsed);
    item(u"folder, folder, untracked"_s)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(item(u"folder, folder, untracked"_s)->state().expanded);
    QVERIFY(item(u"inner.txt, file"_s) != nullptr);
    QCOMPARE(item(u"inner.txt, file"_s)->text(QAccessible::Description), u"level 2"_s);
}

void MainWindowScreenReaderTest::theDiagnosisOfAFailedRunIsSaid()
{
    Fixture fixture;
    AccessibleListener listener;
    openLesson(fixture);
    const auto isSaid = [&] {
        QStringList told;
        walkAccessible(*accessible(fixture.window), [&](QAccessibleInterface& node, const QString&) {
            if (node.role() == QAccessible::Notification) {
                told.append(node.text(QAccessible::Name));
            }
        });
        return !told.filter(u"API key auth failed. "_s).isEmpty();
    };
    QTRY_VERIFY(isSaid());
}

void MainWindowScreenReaderTest::theTerminalIsOne()
{
    Fixture fixture;
    fixture.showPanel(BottomPanelTab::terminal);
    QAccessibleInterface* terminal = findAccessible(*accessible(fixture.window), u"Terminal"_s, QAccessible::Terminal);
    QVERIFY(terminal != nullptr && terminal->textInterface() != nullptr);
    QVERIFY(!terminal->state().busy);
}

const test::Registered<MainWindowScreenReaderTest> registered(test::Toolkit::widgets);

} // namespace main_window_screen_reader_test

#include "main_window_screen_reader_test.moc"
