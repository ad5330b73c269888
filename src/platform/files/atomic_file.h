// Saving a file so that nothing is ever lost.
#pragma once

#include "platform/files/file_error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>
#include <optional>
#include <variant>

namespace kelm {

/// Replaces the content of the file at `path`, or makes the file, in one step: at any moment, a kill and a power cut
/// included, the path names the old file or the new one, whole.
///
/// The bytes go to a temporary file in the same folder, which is flushed to the disk and then renamed. A symbolic link
/// stays one: what it leads to is replaced, also when it does not exist yet. Permission bits stay, and so do owner,
/// group and extended attributes as far as the system allows; where owner or group cannot stay, the bits go that have a
/// program run with their rights. A new file gets the permissions that new files get. Other hard links keep the old
/// content.
///
/// Returns what went wrong, or nothing. On failure the old file is as it was and no temporary file is left; a file that
/// this user may not write, whatever is not a regular file, and a path with a NUL count as failures. Two things can
/// stay behind: after a kill the temporary file, whose name begins with ".kelm-" (see `removeLeftFiles`); and after a
/// failure to flush the folder, which is told as any other, the new file.
std::optional<FileError> writeAtomically(const QString& path, QByteArrayView bytes);

/// How a file came to its new content: in one step, or byte by byte, since it has other names that are to stay the same
/// file, or since nothing may be replaced in its folder.
enum class Saved { byReplacing, inPlaceForItsNames, inPlaceForItsFolder };

/// Puts a file's old content where it is safe, and tells whether it is.
using KeepOldContent = std::function<bool(const QByteArray& content)>;

/// As `writeAtomically`, but for a file that cannot be replaced without harm: one with several hard links, or one that
/// this user may write in a folder where nothing may be replaced. Such a file is written in place, once `keep` has its
/// old content safe; a kill can then leave it half written. What fails in the middle is taken back as far as the disk
/// allows.
std::variant<Saved, FileError> saveFile(const QString& path, QByteArrayView bytes, const KeepOldContent& keep);

} // namespace kelm
