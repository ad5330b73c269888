// Standard input as a text that opens in a tab.
#pragma once

#include "platform/files/file_error.h"

#include <QString>

#include <variant>

namespace kelm {

/// Reads a stream to its end, and keeps it as a copy of an unsaved text in the folder of such copies, where nothing of
/// it is lost whatever becomes of the program that is to open it. Gives the name of the copy. What is refused of a file
/// is refused here: what is no UTF-8, and what is too large. Any thread; it waits for whoever writes there.
std::variant<QString, FileError> keepStandardInput(int descriptor, const QString& recoveryFolder);

} // namespace kelm
