// The menu bar, built from the command table.
#pragma once

#include "app/app_state.h"

#include <functional>

class QMenuBar;
class QWidget;

namespace kelm {

/// A menu bar with the standard menus and, at their places in them, the groups of the command table. What a text view
/// is composing is put into its text before a command runs. `openSettings` shows the settings window.
QMenuBar* makeMenuBar(AppState& appState, const std::function<void()>& openSettings, QWidget* parent);

} // namespace kelm
