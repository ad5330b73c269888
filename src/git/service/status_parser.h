// The list of changed files from `git status --porcelain=v1`.
#pragma once

#include "git/service/git_records.h"

#include <QList>

namespace kelm {

/// One entry a line, in git's order. Lines of fewer than four characters are skipped; nothing is sorted or filtered.
QList<GitFileStatus> parseStatus(QStringView output);

} // namespace kelm
