// Commits from `git log`.
#pragma once

#include "git/service/git_records.h"

#include <QList>

namespace kelm {

/// Lines of hash, author, date and summary, separated by the character 0x1F, in git's order. Lines of another number of
/// pieces are skipped.
QList<GitCommit> parseLog(QStringView output);

} // namespace kelm
