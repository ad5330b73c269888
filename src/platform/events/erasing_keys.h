// Keys that erase text without saying so.
#pragma once

#include <QKeyCombination>

namespace kelm {

/// Whether a key is one of those that the toolkit binds to erasing text in the manner of old terminals, such as Ctrl+D,
/// Ctrl+K and Ctrl+U. Nothing on the key, in a menu or on a page of this platform says that it does. Those whose key
/// is called Backspace or Delete are none of them, and on macOS, where they are everywhere the same, there are none.
bool erasesUnnamed(QKeyCombination key);

} // namespace kelm
