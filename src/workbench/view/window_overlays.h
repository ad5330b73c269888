// The overlays above the window's panels, and its sheet.
#pragma once

#include "app/state/app_state.h"

#include <QObject>
#include <QPointer>

#include <array>

namespace kelm {

class CloneDialog;
class MainWindow;
class OverlayLayer;
class WaysOut;

/// Shows each overlay while its flag of the state is set, on a layer that dims the window. Several show at once, those
/// of the later flags on top. When the last of them closes the keyboard goes back to the text. The window's notices
/// stay in reach meanwhile.
class WindowOverlays final : public QObject
{
    Q_OBJECT

public:
    /// All of it outlives the object, which is the window's child.
    WindowOverlays(AppState& appState, WaysOut& waysOut, MainWindow& window);

    /// The layer over all others, or null.
    OverlayLayer* top() const;

private:
    /// One overlay: its flag and its view.
    struct Overlay
    {
        bool (AppState::*isShown)() const;
        void (AppState::*setShown)(bool);
        void (AppState::*changed)();
        double dimOpacity;
        QWidget* (*make)(AppState&, WaysOut&);
    };
    static const std::array<Overlay, 3>& overlays();

    void refresh(std::size_t index);
    void giveKeyboard();
    void refreshCloneDialog();

    AppState& appState_;
    WaysOut& waysOut_;
    MainWindow& window_;
    std::array<QPointer<OverlayLayer>, 3> layers_;
    QPointer<CloneDialog> cloneDialog_;
};

} // namespace kelm
