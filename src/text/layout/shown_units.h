// What stands on screen for the units of a text.
#pragma once

#include "text/storage/color_runs.h"

#include <QString>

#include <vector>

namespace kelm {

/// Whether any unit has the colour `ColorRuns::unshown`.
bool hasUnshown(const std::vector<ColorRun>& colors);

/// The text of as many units that is drawn for `text`: in the place of those of the colour `ColorRuns::unshown` stand
/// letters that take no width and between which rows are broken like between any others. Offsets of `colors` count from
/// the start of the text.
QString shownUnits(QString text, const std::vector<ColorRun>& colors);

} // namespace kelm
