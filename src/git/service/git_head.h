// What HEAD names, read without git.
#pragma once

#include <QString>

namespace kelm {

/// Where a repository stands: on a branch, which may have no commit yet, or at a commit. Both are empty where nobody
/// can tell.
struct GitHead
{
    /// Its short name, such as "main".
    QString branch = {};
    /// The full hash.
    QString commit = {};

    bool operator==(const GitHead&) const = default;
};

/// That of the working tree in `folder`. Reads a few hundred bytes of regular files and nothing else. Any thread.
GitHead readHead(const QString& folder);

} // namespace kelm
