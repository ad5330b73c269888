// What of the window is shown.
#include "app/state/app_state.h"

#include <utility>

namespace kelm {

void AppState::setShowSidebar(bool show)
{
    if (std::exchange(showSidebar_, show) != show) {
        Q_EMIT showSidebarChanged();
    }
}

void AppState::setShowBottomPanel(bool show)
{
    if (std::exchange(showBottomPanel_, show) != show) {
        Q_EMIT showBottomPanelChanged();
    }
}

void AppState::setShowMinimap(bool show)
{
    if (std::exchange(showMinimap_, show) != show) {
        Q_EMIT showMinimapChanged();
    }
}

void AppState::setShowSearch(bool show)
{
    if (std::exchange(showSearch_, show) != show) {
        Q_EMIT showSearchChanged();
    }
}

void AppState::setShowQuickOpen(bool show)
{
    if (std::exchange(showQuickOpen_, show) != show) {
        Q_EMIT showQuickOpenChanged();
    }
}

void AppState::setShowGoToLine(bool show)
{
    if (std::exchange(showGoToLine_, show) != show) {
        Q_EMIT showGoToLineChanged();
    }
}

void AppState::setShowCloneDialog(bool show)
{
    if (std::exchange(showCloneDialog_, show) != show) {
        Q_EMIT showCloneDialogChanged();
    }
}

void AppState::setSearchMode(SearchMode mode)
{
    if (std::exchange(searchMode_, mode) != mode) {
        Q_EMIT searchModeChanged();
    }
}

void AppState::setBottomPanelTab(BottomPanelTab tab)
{
    if (std::exchange(bottomPanelTab_, tab) != tab) {
        Q_EMIT bottomPanelTabChanged();
    }
}

} // namespace kelm
