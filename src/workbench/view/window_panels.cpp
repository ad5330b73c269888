#include "workbench/view/window_panels.h"

#include "app/state/app_state.h"
#include "files/view/file_tree_view.h"
#include "git/panel/view/source_control_view.h"
#include "run/view/output_page.h"
#include "run/view/problems_view.h"
#include "run/view/terminal_view.h"
#include "search/view/project_search_view.h"
#include "workbench/view/extensions_view.h"

namespace kelm {

QWidget* makeSidebarContent(SidebarTab tab, AppState& appState, ThemeManager& themeManager, Workspace& workspace,
                            QWidget* parent)
{
    Q_UNUSED(themeManager)
    switch (tab) {
    case SidebarTab::sourceControl:
        return new SourceControlView(
            appState, {.filePanels = appState.filePanels(), .scheduler = appState.scheduler(), .workspace = &workspace},
            parent);
    case SidebarTab::search:
        return new ProjectSearchView(appState, parent);
    case SidebarTab::files:
        return new FileTreeView(appState, appState.filePanels(), parent);
    case SidebarTab::extensions:
        break;
    }
    return new ExtensionsView(parent);
}

BottomPanel::Pages bottomPanelPages(AppState& appState, ThemeManager& themeManager)
{
    const auto terminal = [&](QWidget* parent) {
        return new TerminalView({.scheduler = appState.scheduler(),
                                 .notifications = appState.notificationCenter(),
                                 .hideBottomPanel = [&appState] { appState.setShowBottomPanel(false); }},
                                parent);
    };
    const auto output = [&](QWidget* parent) {
        return new OutputPage(appState.codeRunner(), appState.notificationCenter(), themeManager, parent);
    };
    const auto problems = [&](QWidget* parent) { return new ProblemsView(themeManager, parent); };
    return {BottomPanel::Page{terminal, true}, BottomPanel::Page{output}, BottomPanel::Page{problems}};
}

} // namespace kelm
