#include "app/kept_ready/keyboard_shortcut_manager.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

const ShortcutTable& defaultShortcuts()
{
    using enum ShortcutAction;
    constexpr auto command = Modifier::command;
    constexpr auto option = Modifier::option;
    constexpr auto control = Modifier::control;
    constexpr auto shift = Modifier::shift;
    static const ShortcutTable table{
        {newFile, {u"n"_s, {command}}},
        {newWindow, {u"n"_s, {command, shift}}},
        {openFile, {u"o"_s, {command}}},
        {save, {u"s"_s, {command}}},
        {saveAs, {u"s"_s, {command, shift}}},
        {saveAll, {u"s"_s, {command, option}}},
        {undo, {u"z"_s, {command}}},
        {redo, {u"z"_s, {command, shift}}},
        {duplicateLine, {u"d"_s, {command}}},
        {indentLine, {u"]"_s, {command}}},
        {outdentLine, {u"["_s, {command}}},
        {toggleComment, {u"/"_s, {command}}},
        {selectLine, {u"l"_s, {command}}},
        {addCursorAbove, {u"up"_s, {command, option}}},
        {addCursorBelow, {u"down"_s, {command, option}}},
        {find, {u"f"_s, {command}}},
        {findAndReplace, {u"h"_s, {command}}},
        {findInFiles, {u"f"_s, {command, shift}}},
        {goToFile, {u"p"_s, {command}}},
        {goToLine, {u"g"_s, {command}}},
        {toggleSidebar, {u"b"_s, {command}}},
        {toggleTerminal, {u"`"_s, {control}}},
        {toggleMinimap, {u"m"_s, {command, shift}}},
        {formatJSON, {u"j"_s, {command, shift}}},
        {formatXML, {u"x"_s, {command, shift}}},
        {run, {u"r"_s, {command}}},
        {runInTerminal, {u"r"_s, {command, shift}}},
        {stop, {u"."_s, {command}}},
    };
    return table;
}

KeyboardShortcutManager::KeyboardShortcutManager() : shortcuts_(defaultShortcuts()) {}

void KeyboardShortcutManager::setCustomShortcuts(const ShortcutTable& customShortcuts)
{
    if (customShortcuts == customShortcuts_) {
        return;
    }
    customShortcuts_ = customShortcuts;
    ShortcutTable merged = defaultShortcuts();
    merged.insert(customShortcuts_);
    const bool changesTable = merged != shortcuts_;
    shortcuts_ = merged;
    Q_EMIT customShortcutsChanged();
    if (changesTable) {
        Q_EMIT shortcutsChanged();
    }
}

} // namespace kelm
