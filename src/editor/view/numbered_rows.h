// The rows of a text view that bear a line number.
#pragma once

#include <QtGlobal>

#include <optional>
#include <vector>

namespace kelm {

class TextView;

/// The first row of a line: the line, from 1, and the row's top in points from the top of the view.
struct NumberedRow
{
    qsizetype line = 0;
    qreal top = 0;
};

/// The lines whose first rows are on screen. The first number counts the line feeds before it; from there each line
/// counts, whatever it ends with.
std::vector<NumberedRow> numberedRows(TextView& view);

/// The line, from 1, whose first row is at a y in points from the top of the view.
std::optional<qsizetype> lineAtRow(TextView& view, qreal y);

} // namespace kelm
