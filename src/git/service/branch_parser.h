// Branches from `git for-each-ref`.
#pragma once

#include "git/service/git_records.h"

#include <QList>

namespace kelm {

/// Local branches from lines of short name, current mark and upstream, separated by null characters. Lines of fewer
/// than three pieces are skipped.
QList<GitBranch> parseLocalBranches(QStringView output);

/// Remote branches from lines of short names. A name that ends in "/HEAD" is no branch and left out; so is one that is
/// the folder of another, as git names the same since 2.40: "origin" beside "origin/main".
QList<GitBranch> parseRemoteBranches(QStringView output);

} // namespace kelm
