#include "workbench/window_panels.h"

#include "workbench/extensions_view.h"

namespace kelm {

QWidget* makeSidebarContent(SidebarTab tab, AppState& appState, ThemeManager& themeManager, QWidget* parent)
{
    Q_UNUSED(appState)
    Q_UNUSED(themeManager)
    switch (tab) {
    case SidebarTab::files:
    case SidebarTab::search:
    case SidebarTab::sourceControl:
    case SidebarTab::extensions:
        break;
    }
    return new ExtensionsView(parent);
}

BottomPanel::Pages bottomPanelPages(AppState& appState, ThemeManager& themeManager)
{
    Q_UNUSED(appState)
    Q_UNUSED(themeManager)
    const auto make = [](QWidget* parent) { return new ExtensionsView(parent); };
    return {BottomPanel::Page{make, true}, BottomPanel::Page{make}, BottomPanel::Page{make}};
}

} // namespace kelm
