// The columns of a shown diff, from left to right.
#pragma once

#include "git/diff/diff_view_mode.h"
#include "git/diff/side_by_side_hunk_lines.h"

#include <vector>

namespace kelm {

/// One column of lines: numbers, sign, text. In device-independent pixels.
struct DiffColumn
{
    SideBySideHunkLines::Side side = SideBySideHunkLines::Side::newSide;
    qreal left = 0;
    qreal right = 0;
    qreal signLeft = 0;
    qreal signWidth = 0;
    qreal bodyLeft = 0;
    qreal bodyRight = 0;

    qreal bodyWidth() const { return bodyRight - bodyLeft; }
};

namespace diffSizes {
inline constexpr int lineNumber = 36;
inline constexpr int unifiedSign = 16;
inline constexpr int sideSign = 18;
inline constexpr int sideSignPadding = 4;
inline constexpr int bodyTrailing = 10;
inline constexpr int divider = 1;
} // namespace diffSizes

/// One column for both sides in the unified form, an old and a new one of equal width otherwise.
std::vector<DiffColumn> diffColumns(DiffViewMode mode, qreal left, qreal right);

} // namespace kelm
