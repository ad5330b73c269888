// What stands in the window's panels and overlays.
#pragma once

#include "workbench/view/bottom_panel.h"
#include "workbench/view/sidebar_view.h"

namespace kelm {

class AppState;
class ThemeManager;
class Workspace;

/// Makes the content of a tab of the sidebar.
QWidget* makeSidebarContent(SidebarTab tab, AppState& appState, ThemeManager& themeManager, Workspace& workspace,
                            QWidget* parent);

/// What the tabs of the bottom panel show. The terminal lives on while others are shown, with what runs in it.
BottomPanel::Pages bottomPanelPages(AppState& appState, ThemeManager& themeManager);

} // namespace kelm
