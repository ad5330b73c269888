// What a key event tells beyond the toolkit's own names.
#pragma once

#include <QString>

class QKeyEvent;

namespace kelm {

/// The virtual key codes that the editor asks for by name. They number the keys of an ANSI keyboard by their place.
namespace virtualKey {
inline constexpr int returnKey = 36;
inline constexpr int tab = 48;
inline constexpr int space = 49;
inline constexpr int escape = 53;
inline constexpr int downArrow = 125;
inline constexpr int upArrow = 126;
/// A key that has no place on that keyboard.
inline constexpr int none = 0xFFFF;
} // namespace virtualKey

/// The virtual code of the event's key, the one that bears the character on an ANSI keyboard; `virtualKey::none` where
/// no key does.
int virtualKeyCode(const QKeyEvent& event);

/// What the key types. A letter that is pressed together with Command counts as itself.
QString charactersOf(const QKeyEvent& event);

/// What the key would type with no modifier but Shift.
QString charactersIgnoringModifiers(const QKeyEvent& event);

/// Whether the platform's Control key is held. Where one key is both Command and Control, it counts as either.
bool isControlHeld(const QKeyEvent& event);

} // namespace kelm
