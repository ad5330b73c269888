#include "git/viewer/view/diff_columns.h"

namespace kelm {

using namespace diffSizes;

std::vector<DiffColumn> diffColumns(DiffViewMode mode, qreal left, qreal right)
{
    using Side = SideBySideHunkLines::Side;
    if (mode == DiffViewMode::unified) {
        const qreal signLeft = left + 2 * lineNumber;
        return {{Side::newSide, left, right, signLeft, unifiedSign, signLeft + unifiedSign, right - bodyTrailing}};
    }
    const qreal width = (right - left - divider) / 2;
    const auto column = [&](Side side, qreal columnLeft) -> DiffColumn {
        const qreal signLeft = columnLeft + lineNumber;
        return {side,
                columnLeft,
                columnLeft + width,
                signLeft + sideSignPadding,
                sideSign - 2 * sideSignPadding,
                signLeft + sideSign,
                columnLeft + width - bodyTrailing};
    };
    return {column(Side::oldSide, left), column(Side::newSide, left + width + divider)};
}

} // namespace kelm
