// Which key does what: the defaults and a person's own.
#pragma once

#include "app/kept_ready/keyboard_shortcut.h"
#include "app/kept_ready/shortcut_action.h"

#include <QHash>
#include <QObject>

namespace kelm {

using ShortcutTable = QHash<ShortcutAction, KeyboardShortcut>;

/// The shortcuts that menus and the text view have of themselves.
const ShortcutTable& defaultShortcuts();

/// Keeps the table in force: the defaults, with a person's overrides in their places. Kept ready: the program's keys
/// are those of its menus and views, and nothing consults this table when a key is pressed. Main thread only.
class KeyboardShortcutManager : public QObject
{
    Q_OBJECT

public:
    KeyboardShortcutManager();

    /// The table in force.
    const ShortcutTable& shortcuts() const { return shortcuts_; }

    /// The person's overrides.
    const ShortcutTable& customShortcuts() const { return customShortcuts_; }
    void setCustomShortcuts(const ShortcutTable& customShortcuts);

Q_SIGNALS:
    void shortcutsChanged();
    void customShortcutsChanged();

private:
    ShortcutTable shortcuts_;
    ShortcutTable customShortcuts_;
};

} // namespace kelm
