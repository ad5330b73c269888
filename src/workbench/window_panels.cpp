#include "workbench/window_panels.h"

#include "app/app_state.h"
#include "git/view/commit_sheet.h"
#include "git/view/diff_sheet.h"
#include "git/view/source_control_view.h"
#include "run/view/output_view.h"
#include "run/view/problems_view.h"
#include "run/view/terminal_view.h"
#include "workbench/extensions_view.h"

namespace kelm {

namespace {

SourceControlSheets sourceControlSheets()
{
    using OnClose = SourceControlSheets::OnClose;
    return {
        [](const DiffSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent) -> QWidget* {
            auto* view = new DiffSheetView(git, sheet.path, parent);
            view->onClose = onClose;
            return view;
        },
        [](const CommitSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent) -> QWidget* {
            auto* view = new CommitDetailView(git, sheet.sha, parent);
            view->onClose = onClose;
            return view;
        },
    };
}

} // namespace

QWidget* makeSidebarContent(SidebarTab tab, AppState& appState, ThemeManager& themeManager, QWidget* parent)
{
    Q_UNUSED(themeManager)
    switch (tab) {
    case SidebarTab::sourceControl:
        return new SourceControlView(appState, {.sheets = sourceControlSheets()}, parent);
    case SidebarTab::files:
    case SidebarTab::search:
    case SidebarTab::extensions:
        break;
    }
    return new ExtensionsView(parent);
}

BottomPanel::Pages bottomPanelPages(AppState& appState, ThemeManager& themeManager)
{
    const auto terminal = [&](QWidget* parent) {
        return new TerminalView(appState, {.notifications = appState.notificationCenter()}, parent);
    };
    const auto output = [&](QWidget* parent) {
        return new OutputView(appState.notificationCenter(), themeManager, parent);
    };
    const auto problems = [&](QWidget* parent) { return new ProblemsView(themeManager, parent); };
    return {BottomPanel::Page{terminal, true}, BottomPanel::Page{output}, BottomPanel::Page{problems}};
}

} // namespace kelm
