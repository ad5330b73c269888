// Where symbolic links lead.
#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace kelm {

/// The folder that a path names something in, with a slash at its end; "./" for a name alone. Bytes of the system's.
QByteArray folderOf(const QByteArray& nativePath);

/// The path itself, and what each symbolic link in the last place of the one before leads to. Absent, with `errno` set,
/// when they run in a circle.
std::optional<QList<QByteArray>> linksFrom(const QByteArray& nativePath);

/// The last of these: the path behind all links, whether or not anything is there.
std::optional<QByteArray> followLinks(const QByteArray& nativePath);

} // namespace kelm
