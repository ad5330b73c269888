// Hunks of a diff with several old files, as a merge has it.
#pragma once

#include "git/diff/diff.h"

namespace kelm {

/// Whether the hunk compares the file with more than one other: it begins with three signs or more, and each of its
/// lines with a sign for each old file.
bool isCombined(const DiffHunk& hunk);

/// A parsed combined hunk as it is read. A line is added when any old file lacks it, and removed when it is not in the
/// new file; its text keeps all its signs, and its number is that in the new file.
DiffHunk readableCombinedHunk(DiffHunk hunk);

/// The pieces of a text, each with no more than one file of a combined diff, whose first lines no parser takes for the
/// start of a file. Joined they are the text. One piece where there is no such file.
QList<QStringView> piecesOfCombinedDiff(QStringView text);

/// The path that the first line of such a piece names; empty for any other piece.
QString pathOfCombinedDiff(QStringView piece);

} // namespace kelm
