#include "workbench/view/window_panes.h"

#include "editor/view/editor_container_view.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/focus_order.h"
#include "workbench/view/link_run_bar.h"
#include "workbench/view/link_run_place.h"
#include "workbench/view/main_window.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/pane_walk.h"
#include "workbench/view/sidebar_view.h"

#include <QAbstractItemView>

namespace kelm {

namespace {

/// What a page of a panel is there for: what it names itself, else its list, else its first stop. Null where nothing in
/// it takes the keyboard.
QWidget* chiefStop(QWidget* page)
{
    if (page == nullptr) {
        return nullptr;
    }
    if (QWidget* const named = page->focusProxy()) {
        return chiefStop(named);
    }
    if (page->focusPolicy() != Qt::NoFocus) {
        return page;
    }
    for (auto* list : page->findChildren<QAbstractItemView*>()) {
        const bool hasRows = list->model() != nullptr && list->model()->rowCount() > 0;
        if (list->isVisible() && list->isEnabled() && hasRows && (list->focusPolicy() & Qt::TabFocus) != 0) {
            return list;
        }
    }
    return nextFocusStop({page}, nullptr, true);
}

} // namespace

PaneWalk* makePaneWalk(MainWindow& window)
{
    const auto pageOfSidebar = [&window] { return chiefStop(window.sidebar()->content()); };
    const auto pageOfBottomPanel = [&window] { return chiefStop(window.bottomPanel()->content()); };
    const auto text = [&window] { return chiefStop(window.editorArea().currentEditor()); };
    return new PaneWalk(window, {{.part = [&window] { return window.sidebar(); }, .entrance = pageOfSidebar},
                                 {.part = [&window] { return window.linkRunPlace().bar(); }, .asks = true},
                                 {.part = [&window] { return &window.editorArea(); }, .entrance = text},
                                 {.part = [&window] { return window.lessonPanel(); }},
                                 {.part = [&window] { return window.bottomPanel(); }, .entrance = pageOfBottomPanel},
                                 {.part = [&window] { return &window.noticeBar(); }}});
}

} // namespace kelm
