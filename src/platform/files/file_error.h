// Why a file could not be read or written.
#pragma once

#include <QString>

namespace kelm {

/// The failure of a file operation, in words for a log or a message: the path and the system's reason.
struct FileError
{
    QString message;

    friend bool operator==(const FileError&, const FileError&) = default;
};

} // namespace kelm
