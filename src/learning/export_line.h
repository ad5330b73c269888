// The shell line that sets an environment variable.
#pragma once

#include <QString>

namespace kelm {

/// The line `export KEY=...` for a shell, in which the dots stand for the value. A key that is no name of a variable is
/// quoted, so that whatever a link calls a key is one word: no part of it is run, and no control character of it
/// reaches the terminal as one.
QString exportLine(const QString& key);

} // namespace kelm
