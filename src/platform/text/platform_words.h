// The words that a platform has for its keys and programs.
#pragma once

#include <QString>

namespace kelm {

/// One of the program's own texts in the words of the platform that it is shown on. The texts name keys by signs, such
/// as "⇧⌘F", and the program that shows folders by its name on one platform; where no keyboard has such signs and no
/// such program is there, they become "Ctrl+Shift+F" and "Show in File Manager". Not for names and texts that a person
/// wrote, in which such a sign is only itself.
QString inPlatformWords(const QString& text);

} // namespace kelm
