// Saving a file so that nothing is ever lost.
#pragma once

#include "platform/files/file_error.h"

#include <QByteArrayView>
#include <QString>

#include <optional>

namespace kelm {

/// Replaces the content of the file at `path`, or makes the file, in one step: at any moment, a kill and a power cut
/// included, the path names the old file or the new one, whole.
///
/// The bytes go to a temporary file in the same folder, which is flushed to the disk and then renamed. A symbolic link
/// stays one: what it leads to is replaced, also when it does not exist yet. Permission bits stay, and so do owner,
/// group and extended attributes as far as the system allows; a new file gets the permissions that new files get. Other
/// hard links keep the old content.
///
/// Returns what went wrong, or nothing. On failure the old file is as it was and no temporary file is left; a file that
/// this user may not write, and whatever is not a regular file, count as failures. Two things can stay behind: after a
/// kill the temporary file, whose name begins with ".kelm-"; and after a failure to flush the folder, which is told as
/// any other, the new file.
std::optional<FileError> writeAtomically(const QString& path, QByteArrayView bytes);

} // namespace kelm
