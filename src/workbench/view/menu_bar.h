// The menu bar, built from the command table.
#pragma once

#include "app/commands/command.h"
#include "app/commands/command_table.h"

#include <functional>

class QAction;
class QMenuBar;
class QWidget;

namespace kelm {

/// A menu bar with the standard menus and, at their places in them, the groups of the command table. What a text view
/// is composing is put into its text before a command runs. `openSettings` shows the settings window.
QMenuBar* makeMenuBar(const CommandTargets& targets, const std::function<void()>& openSettings, QWidget* parent);

/// The action of a command in a bar that was made so.
QAction* menuAction(const QMenuBar& bar, Command command);

} // namespace kelm
