// What tells whether a file is still the one that was read.
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

namespace kelm {

/// A regular file as it stands on the disk. Two that are equal have, as far as the system can tell without reading,
/// the same content.
struct FileIdentity
{
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    /// When it was last written to, in nanoseconds since 1970.
    qint64 written = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// That of the regular file behind all links at a path in the system's bytes; absent, with `errno` set, where there is
/// none. From any thread.
std::optional<FileIdentity> identityOf(const QByteArray& nativePath);

} // namespace kelm
