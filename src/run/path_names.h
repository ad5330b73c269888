// Paths as a person types them, and what they mean in a folder.
#pragma once

#include <QString>
#include <QStringView>

namespace kelm {

/// `path` with the "~" or "~name" at its start replaced by the home folder of the user or of the user called `name`;
/// unchanged when there is no such user.
QString expandingTilde(const QString& path);

/// `component` behind `path`, with one slash between them.
QString appendingPathComponent(const QString& path, QStringView component);

/// `path` without its last component and the slashes around it: "/a" for "/a/b/", "/" for "/a", and empty for "a".
QString deletingLastPathComponent(QStringView path);

/// The last component of `path`, without slashes: "b" for "/a/b/". "/" for the root, empty for an empty path.
QString lastPathComponent(QStringView path);

/// An absolute `path` with "." and ".." taken out by their names alone, symbolic links or not. There is nothing above
/// the root.
QString standardizedPath(const QString& path);

} // namespace kelm
