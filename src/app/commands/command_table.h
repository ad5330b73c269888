// All menu commands, as data.
#pragma once

#include "app/commands/command.h"

#include <QKeyCombination>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace kelm {

class AppState;
class AutoUpdateService;

/// What commands act on; all of it outlives the menus.
struct CommandTargets
{
    AppState& appState;
    AutoUpdateService& updateService;
    /// Asks whether the program shall be removed, and removes it.
    std::function<void()> uninstall;
};

/// One line of a menu: a command, a separator, or a submenu.
struct MenuItem
{
    enum class Kind { command, separator, submenu };

    Kind kind = Kind::command;
    /// Which command it is; absent for a line that is made for the moment, such as a recent file's.
    std::optional<Command> command = std::nullopt;
    QString label = {};
    /// The key, with `Qt::CTRL` for Command, which the toolkit itself maps on macOS.
    std::optional<QKeyCombination> key = std::nullopt;
    /// What a command does.
    std::function<void(const CommandTargets&)> action = {};
    /// Whether a command can be given now; asked each time its menu opens. Absent for one that always can.
    std::function<bool(const CommandTargets&)> isEnabled = {};
    /// The lines of a submenu that are always the same.
    std::vector<MenuItem> items = {};
    /// The lines of a submenu that follow the state; they are made anew each time it opens, and stand in place of
    /// `items`.
    std::function<std::vector<MenuItem>(const AppState&)> makeItems = {};
};

/// Where a group of lines stands among the standard ones of its menu.
enum class MenuPlacement {
    afterAbout,
    replacingNewItems,
    replacingSaveItems,
    afterTextEditing,
    afterToolbar,
    /// The group is a menu of its own, before the standard "Window" menu.
    ownMenu,
};

/// A group of lines of one menu.
struct MenuGroup
{
    QString menu;
    MenuPlacement placement;
    std::vector<MenuItem> items;
};

/// The program's commands in the order of their groups and lines. The keys are fixed.
const std::vector<MenuGroup>& commandTable();

/// The line of a command in a table that has it, whatever its labels are and wherever it stands.
const MenuItem& commandItem(Command command, const std::vector<MenuGroup>& table = commandTable());

/// The lines of "Open Recent": one for each recent file, and then, if there are any, a separator and "Clear Menu".
std::vector<MenuItem> makeOpenRecentItems(const AppState& appState);

} // namespace kelm
