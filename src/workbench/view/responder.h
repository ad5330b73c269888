// Commands that go to whatever has the keyboard.
#pragma once

namespace kelm {

/// Calls a slot without arguments, such as "undo", on what has the keyboard, or on the nearest widget around it that
/// has such a slot. Does nothing when there is none.
void sendActionToFirstResponder(const char* slot);

/// Puts what a text view with the keyboard is composing into its text.
void commitCompositionInFocus();

} // namespace kelm
