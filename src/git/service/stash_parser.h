// Stashes from `git stash list`.
#pragma once

#include "git/service/git_records.h"

#include <QList>

namespace kelm {

/// Lines of label and message, separated by the character 0x1F. Lines of another number of pieces are skipped and still
/// count for the places of those behind them.
QList<GitStash> parseStashes(QStringView output);

} // namespace kelm
