#include "workbench/view/window_overlays.h"

#include "git/panel/view/clone_dialog.h"
#include "search/view/go_to_line_view.h"
#include "search/view/quick_open_view.h"
#include "search/view/search_overlay.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/main_window.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/overlay_layer.h"
#include "workbench/view/ways_out.h"

#include <functional>

namespace kelm {

const std::array<WindowOverlays::Overlay, 3>& WindowOverlays::overlays()
{
    static const std::array<Overlay, 3> overlays{
        Overlay{&AppState::showQuickOpen, &AppState::setShowQuickOpen, &AppState::showQuickOpenChanged, 0.35,
                [](AppState& state, WaysOut&) -> QWidget* { return new QuickOpenView(state); }},
        Overlay{&AppState::showSearch, &AppState::setShowSearch, &AppState::showSearchChanged, 0.25,
                [](AppState& state, WaysOut& waysOut) -> QWidget* {
                    auto* panel = new SearchOverlay(state);
                    waysOut.serve(*panel);
                    return panel;
                }},
        Overlay{&AppState::showGoToLine, &AppState::setShowGoToLine, &AppState::showGoToLineChanged, 0.25,
                [](AppState& state, WaysOut& waysOut) -> QWidget* {
                    auto* panel = new GoToLineView(state, state.log());
                    waysOut.serve(*panel);
                    return panel;
                }},
    };
    return overlays;
}

WindowOverlays::WindowOverlays(AppState& appState, WaysOut& waysOut, MainWindow& window)
    : QObject(&window), appState_(appState), waysOut_(waysOut), window_(window)
{
    for (std::size_t index = 0; index < overlays().size(); ++index) {
        connect(&appState_, overlays().at(index).changed, this, [this, index] { refresh(index); });
        refresh(index);
    }
    connect(&appState_, &AppState::showCloneDialogChanged, this, &WindowOverlays::refreshCloneDialog);
    refreshCloneDialog();
}

void WindowOverlays::refreshCloneDialog()
{
    if (appState_.showCloneDialog() == !cloneDialog_.isNull()) {
        return;
    }
    if (cloneDialog_) {
        // The flag may be set again before the closed dialog has gone.
        if (CloneDialog* closed = cloneDialog_; closed->close()) {
            closed->disconnect(this);
            cloneDialog_ = nullptr;
        }
        return;
    }
    cloneDialog_ = new CloneDialog(appState_.git(), appState_.filePanels(), appState_.scheduler(), &window_);
    connect(cloneDialog_, &QObject::destroyed, this, [this] {
        // It is half gone already, and no more to be closed.
        cloneDialog_ = nullptr;
        appState_.setShowCloneDialog(false);
    });
    cloneDialog_->show();
}

void WindowOverlays::refresh(std::size_t index)
{
    const Overlay& overlay = overlays().at(index);
    QPointer<OverlayLayer>& layer = layers_.at(index);
    const bool isShown = std::invoke(overlay.isShown, appState_);
    if (isShown == !layer.isNull()) {
        return;
    }
    if (isShown) {
        const auto dismiss = [this, &overlay] { std::invoke(overlay.setShown, appState_, false); };
        QWidget* content = overlay.make(appState_, waysOut_);
        layer = new OverlayLayer(content, overlay.dimOpacity, dismiss, &window_);
        layer->setLeftFree(&window_.noticeBar());
        layer->show();
    } else {
        OverlayLayer* const dismissed = layer;
        layer = nullptr;
        // Before it hides: the toolkit would have the keyboard step through what is left of it.
        giveKeyboard();
        // The click or the key that dismisses it is still being answered.
        dismissed->hide();
        dismissed->deleteLater();
    }
    for (const QPointer<OverlayLayer>& each : layers_) {
        if (each) {
            each->raise();
        }
    }
    giveKeyboard();
}

OverlayLayer* WindowOverlays::top() const
{
    OverlayLayer* top = nullptr;
    for (const QPointer<OverlayLayer>& layer : layers_) {
        top = layer && !layer->isHidden() ? layer.data() : top;
    }
    return top;
}

void WindowOverlays::giveKeyboard()
{
    OverlayLayer* const layer = top();
    if (layer == nullptr) {
        window_.editorArea().focusCurrentEditor();
    } else if (!layer->isAncestorOf(window_.focusWidget())) {
        layer->setFocus();
    }
}

} // namespace kelm
