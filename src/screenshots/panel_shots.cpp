#include "screenshots/panel_shots.h"

#include "app/state/app_state.h"
#include "app/state/link_runs.h"
#include "app/state/unsaved_texts.h"
#include "files/view/file_tree_view.h"
#include "git/panel/view/source_control_view.h"
#include "git/service/git_service.h"
#include "git/viewer/view/diff_sheet.h"
#include "git/viewer/view/diff_viewer.h"
#include "run/code_runner.h"
#include "search/view/project_search_view.h"
#include "settings/view/settings_view.h"
#include "settings/view/theme_settings_view.h"
#include "workbench/view/main_window.h"
#include "workbench/view/sidebar_view.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>

using namespace Qt::Literals::StringLiterals;

namespace kelm::screenshots {

namespace {

const QStringList sources{u"Sources/orchard.swift"_s, u"Sources/basket.py"_s};

/// Where another thing than the text is to be seen: text takes most of a picture's room on the disk.
const QStringList shortSources{u"Sources/Weather/forecast.ts"_s, u"Sources/basket.py"_s};

/// The page of a tab of the sidebar.
template <typename Page>
Page& showPage(Stage& stage, SidebarTab tab)
{
    stage.window.sidebar()->select(tab);
    settle();
    return *stage.window.findChild<Page*>();
}

void type(QWidget& widget, const QString& text, Qt::Key key = Qt::Key_unknown)
{
    QKeyEvent typed(QEvent::KeyPress, 0, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&widget, &typed);
    if (key != Qt::Key_unknown) {
        QKeyEvent pressed(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &pressed);
    }
    settle();
}

void expandTree(Stage& stage)
{
    auto& tree = showPage<FileTreeView>(stage, SidebarTab::files);
    stage.state.git().open(QUrl::fromLocalFile(stage.project));
    for (const QString& name : {u"Sources"_s, u"Weather"_s}) {
        for (int row = 0; row < tree.model().rowCount(); ++row) {
            if (tree.model().item(row).name() == name) {
                tree.model().toggleExpand(row);
                break;
            }
        }
    }
    settle();
}

void searchProject(Stage& stage)
{
    auto& page = showPage<ProjectSearchView>(stage, SidebarTab::search);
    type(*page.findChild<QLineEdit*>(), u"apples"_s, Qt::Key_Return);
    settleUntil([&page] { return !page.isSearching(); });
}

void addRecentFiles(Stage& stage)
{
    for (const char* file :
         {"README.md", "Makefile", "Site/index.html", "문서/안내.md", "Sources/Weather/stations.json",
          "Sources/Weather/forecast.ts", "Sources/basket.py", "Sources/orchard.swift"}) {
        stage.state.addToRecentFiles(QUrl::fromLocalFile(stage.project + u'/' + QString::fromUtf8(file)));
    }
}

void closeUnsaved(Stage& stage)
{
    addRecentFiles(stage);
    // One behind the other, so that their times tell them apart.
    const auto close = [&stage](const QString& content) {
        const qsizetype before = stage.state.unsavedTexts().store().texts().size();
        stage.state.currentDocument()->setContent(content);
        stage.state.setDocuments({});
        settleUntil([&stage, before] { return stage.state.unsavedTexts().store().texts().size() > before; });
        settleUntil([deadline = QDeadlineTimer(2)] { return deadline.hasExpired(); });
    };
    for (const char* file : {"README.md", "Sources/orchard.swift"}) {
        stage.state.openFile(QUrl::fromLocalFile(stage.project + u'/' + QString::fromUtf8(file)));
        close(u"Unsaved: "_s + stage.state.currentDocument()->content());
    }
    stage.state.createNewTab();
    close(u"Milk, bread, apples\nand a new keyboard"_s);
}

SourceControlView& showSourceControl(Stage& stage, SourceControlTab tab)
{
    auto& page = showPage<SourceControlView>(stage, SidebarTab::sourceControl);
    page.setTab(tab);
    settleUntil([&stage] { return !stage.state.git().isBusy(); });
    return page;
}

void showDiff(Stage& stage, bool isSideBySide)
{
    SourceControlView& page = showSourceControl(stage, SourceControlTab::changes);
    page.setDiffPath(u"Sources/orchard.swift"_s);
    settle();
    if (isSideBySide) {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* viewer = window->isVisible() ? window->findChild<DiffViewer*>() : nullptr; viewer != nullptr) {
                viewer->setMode(DiffViewMode::sideBySide);
            }
        }
        settle();
    }
}

void showCommit(Stage& stage)
{
    SourceControlView& page = showSourceControl(stage, SourceControlTab::history);
    page.setHistorySha(u"HEAD"_s);
    settle();
}

void showSettings(Stage& stage, SettingsView::Tab tab)
{
    stage.window.openSettings();
    stage.window.settings()->select(tab);
    if (tab == SettingsView::themes) {
        stage.window.settings()->findChild<QListWidget*>()->setCurrentRow(1);
    }
    settle();
}

void openLesson(Stage& stage, bool isKo)
{
    const QString code = u"import os\nimport imaginary_model\n\n"
                         "def ask(question):\n    model = imaginary_model.connect(os.environ[\"OPENAI_API_KEY\"])\n"
                         "    return model.answer(question)\n\nprint(ask(\"How many apples?\"))\n"_s;
    const LessonInfo lesson{.slug = u"first-question"_s,
                            .title = isKo ? u"첫 번째 질문 보내기"_s : u"Sending a first question"_s,
                            .regionStart = 4,
                            .regionEnd = 6,
                            .requires_ = {u"OPENAI_API_KEY"_s},
                            .lang = isKo ? u"ko"_s : u"en"_s};
    stage.state.openSnippet(code, Language::python, lesson);
    settle();
    stage.state.runCurrentFile();
    settleUntil([&stage] { return !stage.state.codeRunner().isRunning(); });
    settleUntil([deadline = QDeadlineTimer(200)] { return deadline.hasExpired(); });
    evenTimes(stage);
}

/// A link has brought code that it asks to run, which waits for a word.
void askToRun(Stage& stage)
{
    const LessonInfo lesson{
        .slug = u"loops"_s, .title = u"A first loop"_s, .regionStart = 3, .regionEnd = 4, .lang = u"en"_s};
    stage.state.openSnippet(u"names = [\"Ada\", \"Grace\", \"Katherine\"]\n\n"
                            "for name in names:\n    print(f\"Hello, {name}!\")\n"_s,
                            Language::python, lesson);
    stage.state.linkRuns().request(stage.state.currentDocument());
    settle();
    settleUntil([deadline = QDeadlineTimer(700)] { return deadline.hasExpired(); });
}

} // namespace

std::vector<Shot> panelShots()
{
    using Tab = SourceControlTab;
    std::vector<Shot> shots{
        {"explorer", sources, expandTree},
        {"project-search", shortSources, searchProject},
        {"welcome-recent", {}, addRecentFiles},
        {"welcome-unsaved", {}, closeUnsaved},
        {"quick-open", shortSources,
         [](Stage& stage) {
             addRecentFiles(stage);
             stage.state.setShowQuickOpen(true);
         }},
        {"search-overlay", shortSources, [](Stage& stage) { stage.state.setShowSearch(true); }},
        {"replace-overlay", shortSources,
         [](Stage& stage) {
             stage.state.setSearchMode(SearchMode::replace);
             stage.state.setShowSearch(true);
         }},
        {"go-to-line", shortSources, [](Stage& stage) { stage.state.setShowGoToLine(true); }},
        {"source-control-changes", shortSources, [](Stage& stage) { showSourceControl(stage, Tab::changes); }},
        {"source-control-history", shortSources, [](Stage& stage) { showSourceControl(stage, Tab::history); }},
        {"source-control-branches", shortSources, [](Stage& stage) { showSourceControl(stage, Tab::branches); }},
        {"source-control-stash", shortSources, [](Stage& stage) { showSourceControl(stage, Tab::stashes); }},
        {"source-control-tags", shortSources, [](Stage& stage) { showSourceControl(stage, Tab::tags); }},
        {"source-control-remotes", shortSources, [](Stage& stage) { showSourceControl(stage, Tab::remotes); }},
        {"diff-unified", shortSources, [](Stage& stage) { showDiff(stage, false); }},
        {"diff-side-by-side", shortSources, [](Stage& stage) { showDiff(stage, true); }},
        {"commit", shortSources, showCommit},
        {"clone", shortSources, [](Stage& stage) { stage.state.setShowCloneDialog(true); }},
        {"settings-general", shortSources, [](Stage& stage) { showSettings(stage, SettingsView::general); }},
        {"settings-editor", shortSources, [](Stage& stage) { showSettings(stage, SettingsView::editor); }},
        {"settings-themes", shortSources, [](Stage& stage) { showSettings(stage, SettingsView::themes); }},
        {"settings-keys", shortSources, [](Stage& stage) { showSettings(stage, SettingsView::keybindings); }},
        {"settings-extensions", shortSources, [](Stage& stage) { showSettings(stage, SettingsView::extensions); }},
        {"lesson-korean", {}, [](Stage& stage) { openLesson(stage, true); }},
        {"lesson-link", {}, askToRun},
        {.name = "lesson-english",
         .files = {},
         .prepare = [](Stage& stage) { openLesson(stage, false); },
         .themes = {{u"GitHub Light"_s, u"light"_s}}},
    };
    return shots;
}

} // namespace kelm::screenshots
