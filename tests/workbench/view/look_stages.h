// What the program shows: each view with something in it.
#pragma once

#include "app/state/link_runs.h"
#include "app/state/notices.h"
#include "app/state/unsaved_texts.h"
#include "git/panel/view/source_control_view.h"
#include "git/service/git_service.h"
#include "git/viewer/view/diff_viewer.h"
#include "platform/view/confirmation_dialog.h"
#include "platform/view/details_sheet.h"
#include "run/code_runner.h"
#include "search/view/project_search_view.h"
#include "settings/view/settings_view.h"
#include "support/temporary_repository.h"
#include "text/view/find_bar.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/welcome_view.h"
#include "workbench/view/window_fixture.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>
#include <QToolTip>

namespace kelm::test {

/// A project in a repository, with something to show on each tab of the panel. Its making takes longer than all else.
struct LookProject
{
    TemporaryRepository repository;

    LookProject()
    {
        repository.write(QStringLiteral("orchard.swift"), source);
        repository.write(QStringLiteral("basket.py"), "import os\n\n# How many apples?\nprint(\"apples\", 3)\n");
        for (const char* name : {"a.js", "b.ts", "c.json", "d.md", "e.html", "f.txt", "old.txt"}) {
            repository.write(QString::fromLatin1(name), "apples\n");
        }
        git({"add", "."});
        git({"commit", "-qm", "Plant an orchard"});
        git({"branch", "harvest"});
        git({"tag", "-am", "The first", "v1.0"});
        git({"remote", "add", "origin", "https://example.org/orchard.git"});
        repository.write(QStringLiteral("a.js"), "pears\n");
        git({"stash"});
        repository.write(QStringLiteral("orchard.swift"), QByteArray(source).replace("apples", "pears"));
        repository.write(QStringLiteral("basket.py"), "print(\"pears\")\n");
        repository.write(QStringLiteral("new.swift"), "let new = 1\n");
        git({"add", "basket.py"});
        git({"rm", "-q", "old.txt"});
    }

    void git(const std::vector<const char*>& words)
    {
        QStringList arguments;
        for (const char* word : words) {
            arguments.append(QString::fromLatin1(word));
        }
        repository.git(arguments);
    }

    static inline const QByteArray source = "// An orchard\nstruct Orchard {\n    var apples = [\"red\", \"green\"]\n"
                                            "    func count() -> Int {\n        return apples.count + 42\n    }\n}\n";
};

/// A window with that project and two of its files.
struct LookFixture : WindowFixture
{
    const TemporaryRepository& repository;

    explicit LookFixture(const LookProject& project) : repository(project.repository)
    {
        window.resize(1200, 760);
        state.setCurrentProject(repository.url());
        open(QStringLiteral("orchard.swift"));
        open(QStringLiteral("basket.py"));
        state.setCurrentDocumentIndex(0);
        settle();
    }

    void open(const QString& name) { state.openFile(QUrl::fromLocalFile(repository.filePath(name))); }
    void settle()
    {
        for (int turn = 0; turn < 4; ++turn) {
            turnQueue();
        }
    }
    template <typename Page>
    Page& show(SidebarTab tab)
    {
        window.sidebar()->select(tab);
        settle();
        return *window.findChild<Page*>();
    }
    SourceControlView& showSourceControl(SourceControlTab tab)
    {
        auto& page = show<SourceControlView>(SidebarTab::sourceControl);
        page.setTab(tab);
        settle();
        return page;
    }
    void showLesson(const QString& code)
    {
        state.openSnippet(code, Language::python,
                          LessonInfo{.slug = QStringLiteral("first"),
                                     .title = QStringLiteral("A first question"),
                                     .regionStart = 1,
                                     .regionEnd = 2,
                                     .requires_ = {QStringLiteral("ORCHARD_KEY")},
                                     .lang = QStringLiteral("en")});
        settle();
    }
    void run(const QString& code)
    {
        showLesson(code);
        state.runCurrentFile();
        QTRY_VERIFY(!state.codeRunner().isRunning());
        settle();
    }
    void showMenu(const QString& title)
    {
        for (QAction* action : window.menuBar()->actions()) {
            if (QString(action->text()).remove(u'&') == title) {
                action->menu()->popup(window.mapToGlobal(QPoint(20, 20)));
            }
        }
        settle();
    }
};

struct LookStage
{
    const char* name;
    std::function<void(LookFixture&)> show;
};

inline void showSettings(LookFixture& fixture, SettingsView::Tab tab)
{
    fixture.window.openSettings();
    fixture.window.settings()->select(tab);
    fixture.settle();
}

inline void showDiff(LookFixture& fixture, DiffViewMode mode)
{
    fixture.showSourceControl(SourceControlTab::changes).setDiffPath(QStringLiteral("orchard.swift"));
    fixture.settle();
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* viewer = window->isVisible() ? window->findChild<DiffViewer*>() : nullptr) {
            viewer->setMode(mode);
        }
    }
    fixture.settle();
}

/// The page of a window without documents, over a state that keeps unsaved texts.
struct WelcomeWindow : QWidget
{
    AppState state;
    WelcomeView view;

    explicit WelcomeWindow(LookFixture& fixture)
        : state({fixture.panels, fixture.defaults, Scheduler::system(), fixture.notifications, fixture.log,
                 ProcessRunner::sharedSystem(), ExecutableSearch(ProcessRunner::system()),
                 fixture.home.filePath(QStringLiteral("unsaved"))}),
          view(state, fixture.themes, this)
    {
        setAttribute(Qt::WA_DeleteOnClose);
        resize(800, 700);
        view.resize(size());
        state.addToRecentFiles(QUrl::fromLocalFile(fixture.repository.filePath(QStringLiteral("f.txt"))));
        RecoveryStore& store = state.unsavedTexts().store();
        store.keepReplaced(QUrl::fromLocalFile(QStringLiteral("/one/folder/list.txt")),
                           TextTree(QStringLiteral("Milk, bread, apples")));
        store.refresh();
        if (!store.finish(std::chrono::seconds(30))) {
            qFatal("the store does not end");
        }
        show();
        fixture.settle();
    }
};

inline void showWelcome(LookFixture& fixture)
{
    fixture.state.setDocuments({});
    new WelcomeWindow(fixture);
}

/// What the toolkit's own dialogs are made of.
inline void showDialog(LookFixture& fixture)
{
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Title"), QStringLiteral("Remove the program?"),
                                QMessageBox::Ok | QMessageBox::Cancel, &fixture.window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setInformativeText(QStringLiteral("What you typed stays."));
    box->button(QMessageBox::Cancel)->setEnabled(false);
    box->open();
    fixture.settle();
}

inline std::vector<LookStage> panelStages()
{
    const auto sourceControl = [](SourceControlTab tab) {
        return [tab](LookFixture& fixture) { fixture.showSourceControl(tab); };
    };
    return {
        {"editor", [](LookFixture&) {}},
        {"find bar",
         [](LookFixture& fixture) {
             fixture.text().showReplaceBar();
             fixture.text().findBar().findChild<QLineEdit*>()->setText(QStringLiteral("apples"));
         }},
        {"narrow find bar",
         [](LookFixture& fixture) {
             fixture.window.resize(900, 600);
             fixture.showLesson(QStringLiteral("print(1)\nprint(2)\n"));
             fixture.text().showReplaceBar();
             fixture.text().findBar().findChild<QLineEdit*>()->setText(QStringLiteral("print"));
             fixture.text().findBar().findChildren<QToolButton*>().at(0)->setChecked(true);
         }},
        {"new tab",
         [](LookFixture& fixture) {
             fixture.state.createNewTab();
             fixture.settle();
             QTest::keyClicks(&fixture.text(), QStringLiteral("typed"));
         }},
        {"welcome", showWelcome},
        {"project search",
         [](LookFixture& fixture) {
             auto& page = fixture.show<ProjectSearchView>(SidebarTab::search);
             QTest::keyClicks(page.findChild<QLineEdit*>(), QStringLiteral("apples"));
             QTest::keyClick(page.findChild<QLineEdit*>(), Qt::Key_Return);
             QTRY_VERIFY(!page.isSearching());
         }},
        {"extensions",
         [](LookFixture& fixture) {
             fixture.window.sidebar()->select(SidebarTab::extensions);
             fixture.settle();
         }},
        {"changes", sourceControl(SourceControlTab::changes)},
        {"history", sourceControl(SourceControlTab::history)},
        {"branches", sourceControl(SourceControlTab::branches)},
        {"stashes", sourceControl(SourceControlTab::stashes)},
        {"tags", sourceControl(SourceControlTab::tags)},
        {"remotes", sourceControl(SourceControlTab::remotes)},
        {"failure of git",
         [](LookFixture& fixture) {
             fixture.showSourceControl(SourceControlTab::changes);
             fixture.state.git().deleteTag(QStringLiteral("missing"));
         }},
        {"no repository",
         [](LookFixture& fixture) {
             fixture.state.setDocuments({});
             fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.path()));
             fixture.show<SourceControlView>(SidebarTab::sourceControl);
         }},
        {"no project",
         [](LookFixture& fixture) {
             fixture.state.setDocuments({});
             fixture.window.sidebar()->select(SidebarTab::files);
             fixture.state.setCurrentProject(std::nullopt);
             fixture.state.setShowSidebar(false);
             fixture.settle();
             fixture.state.setShowSidebar(true);
         }},
        {"terminal",
         [](LookFixture& fixture) {
             fixture.state.setBottomPanelTab(BottomPanelTab::terminal);
             fixture.state.setShowBottomPanel(true);
         }},
        {"output and lesson",
         [](LookFixture& fixture) { fixture.run(QStringLiteral("print('apples')\nimport imaginary_model\n")); }},
        {"problems",
         [](LookFixture& fixture) {
             fixture.state.setBottomPanelTab(BottomPanelTab::problems);
             fixture.state.setShowBottomPanel(true);
         }},
        {"link",
         [](LookFixture& fixture) {
             fixture.state.openSnippet(
                 QStringLiteral("print(1)\n"), Language::python,
                 LessonInfo{.slug = QStringLiteral("s"), .title = QStringLiteral("T"), .lang = QStringLiteral("en")});
             fixture.state.linkRuns().request(fixture.state.currentDocument());
             fixture.settle();
         }},
        {"notice",
         [](LookFixture& fixture) {
             fixture.state.notices().report(QStringLiteral("Closed with unsaved changes"),
                                            {{QStringLiteral("Reopen"), [] {}}});
         }},
        {"progress",
         [](LookFixture& fixture) {
             fixture.state.notices().add({QStringLiteral("Opening harvest.log…"), 0.4, [] {}});
             QTRY_VERIFY(fixture.window.noticeBar().isVisible());
         }},
    };
}

inline std::vector<LookStage> overlayStages()
{
    const auto settings = [](SettingsView::Tab tab) {
        return [tab](LookFixture& fixture) { showSettings(fixture, tab); };
    };
    std::vector<LookStage> stages{
        {"quick open", [](LookFixture& fixture) { fixture.state.setShowQuickOpen(true); }},
        {"replace overlay",
         [](LookFixture& fixture) {
             fixture.state.setSearchMode(SearchMode::replace);
             fixture.state.setShowSearch(true);
         }},
        {"go to line", [](LookFixture& fixture) { fixture.state.setShowGoToLine(true); }},
        {"clone", [](LookFixture& fixture) { fixture.state.setShowCloneDialog(true); }},
        {"diff", [](LookFixture& fixture) { showDiff(fixture, DiffViewMode::unified); }},
        {"diff side by side", [](LookFixture& fixture) { showDiff(fixture, DiffViewMode::sideBySide); }},
        {"commit",
         [](LookFixture& fixture) {
             fixture.showSourceControl(SourceControlTab::history).setHistorySha(QStringLiteral("HEAD"));
         }},
        {"settings, general", settings(SettingsView::general)},
        {"settings, editor", settings(SettingsView::editor)},
        {"settings, themes", settings(SettingsView::themes)},
        {"settings, keys", settings(SettingsView::keybindings)},
        {"settings, extensions", settings(SettingsView::extensions)},
        {"choices",
         [](LookFixture& fixture) {
             showSettings(fixture, SettingsView::editor);
             fixture.window.settings()->page(SettingsView::editor)->findChild<QComboBox*>()->showPopup();
         }},
        {"files",
         [](LookFixture& fixture) {
             auto* dialog = new QFileDialog(&fixture.window, QStringLiteral("Open"), fixture.repository.path());
             dialog->setOption(QFileDialog::DontUseNativeDialog);
             // Not the folders of earlier dialogs, which may have gone.
             dialog->setSidebarUrls({QUrl::fromLocalFile(QDir::rootPath())});
             dialog->setAttribute(Qt::WA_DeleteOnClose);
             dialog->show();
         }},
        {"alert", showDialog},
        {"confirmation",
         [](LookFixture& fixture) {
             (new ConfirmationDialog(
                  QStringLiteral("Delete branch harvest?"),
                  {{QStringLiteral("Delete (safe)"), [] {}}, {QStringLiteral("Force delete (-D)"), [] {}, true}},
                  &fixture.window))
                 ->open();
         }},
        {"details",
         [](LookFixture& fixture) {
             (new DetailsSheet(QStringLiteral("git said no"), QStringLiteral("fatal: no"), &fixture.window))->open();
         }},
        {"tool tip",
         [](LookFixture& fixture) {
             QToolTip::showText(fixture.window.mapToGlobal(QPoint(300, 300)), QStringLiteral("Toggle Sidebar"));
         }},
    };
    for (const char* menu : {"File", "Edit", "View", "Run"}) {
        stages.push_back({menu, [menu](LookFixture& fixture) { fixture.showMenu(QString::fromLatin1(menu)); }});
    }
    return stages;
}

} // namespace kelm::test
