// Names that are not given to git.
#pragma once

#include <QString>

#include <optional>

namespace kelm {

/// What a name is for.
enum class GitNameKind { none, branch, tag, remote, url, stash, folder, userName, userEmail, commit };

/// One sentence on why git is not started with such a name: it begins with a hyphen, so that git would take it for an
/// option, or it holds a control character, which no name needs and a line of output would hide, or it is a branch's or
/// a tag's and holds a colon, which parts two names in a push. Absent for every other
/// name, which git itself judges, and for the kind `none`, what stands behind `--` or behind an option of its own.
std::optional<QString> refusal(GitNameKind kind, const QString& name);

} // namespace kelm
