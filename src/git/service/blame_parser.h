// Lines and where they come from, from `git blame --porcelain`.
#pragma once

#include "git/service/git_records.h"

#include <QList>

namespace kelm {

/// One record a line of the file, in the file's order. The format is that of git-blame(1), "The Porcelain Format": a
/// commit's author is told only where the commit first appears.
QList<GitBlameLine> parseBlame(QStringView output);

} // namespace kelm
