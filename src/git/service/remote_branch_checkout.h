// What to check out for a remote branch.
#pragma once

#include <QString>

namespace kelm {

/// The name to hand to `git checkout` so that git makes a local branch that follows the remote one: the name without
/// its first piece, the remote's, "feature/x" for "origin/feature/x". The whole name when nothing else is in it. Empty
/// pieces between slashes are dropped.
QString localNameOfRemoteBranch(const QString& name);

} // namespace kelm
