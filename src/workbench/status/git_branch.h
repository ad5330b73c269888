// The branch of a project, read without git.
#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace kelm {

/// The branch that ".git/HEAD" below `project` names, read from the file itself on each call. Absent when the file
/// cannot be read as UTF-8, is no regular file or longer than a name can be, or names no branch because the head is
/// detached. Any thread.
std::optional<QString> gitBranch(const QUrl& project);

} // namespace kelm
