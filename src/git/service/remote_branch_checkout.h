// What to check out for a remote branch.
#pragma once

#include "git/service/git_records.h"

#include <QList>
#include <QString>

namespace kelm {

/// The name to hand to `git checkout` so that git makes a local branch that follows the remote one: the name without
/// its first piece, the remote's, "feature/x" for "origin/feature/x". The whole name when nothing else is in it. Empty
/// pieces between slashes are dropped.
QString localNameOfRemoteBranch(const QString& name);

/// The name of a remote branch, which begins with its remote, from one that git lists: git puts "remotes/" before a
/// name that a branch or a tag here has too. Unless a remote is itself called "remotes".
QString nameOfListedRemoteBranch(const QString& listed, const QList<GitRemote>& remotes);

} // namespace kelm
