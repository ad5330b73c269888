// Why a file could not be read or written.
#pragma once

#include <QString>

namespace kelm {

/// The failure of a file operation.
struct FileError
{
    /// In words for a log: the path and the system's reason.
    QString message;
    /// The reason alone in a person's words, to follow a colon: "the disk is full". Empty where nobody gave one.
    QString reason = {};

    friend bool operator==(const FileError&, const FileError&) = default;
};

/// The error of the system's number `systemError` at `path`.
FileError systemError(const QString& path, int systemError);

/// The error of a path that holds a NUL, at which the system would cut it.
FileError nullInPath(const QString& path);

} // namespace kelm
