// The files by which code that is in no file is run.
#pragma once

#include "app/language/language.h"
#include "platform/files/file_error.h"

#include <QString>

#include <variant>

namespace kelm {

/// Writes code into a new file in the folder for temporary files, readable by its owner alone, since that folder may be
/// everybody's and code often holds keys. Its path is noted among the program's saved state until it is removed, so
/// that it does not stay when the program is killed. Main thread only, as all of this.
std::variant<QString, FileError> makeSnippetCopy(const QString& code, Language language);

void removeSnippetCopy(const QString& path);

/// Removes those that this program still has; to be called at its end.
void removeSnippetCopies();

/// Removes those of programs that have ended without doing so; to be called at the start.
void removeAbandonedSnippetCopies();

} // namespace kelm
