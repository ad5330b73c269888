// Lines and columns as they are shown to people.
#pragma once

#include "text/storage/text_tree.h"

#include <QtGlobal>

namespace kelm {

/// A line and a column, both from 1. Lines end at line feeds alone, and a column counts UTF-16 units.
struct LineAndColumn
{
    qsizetype line = 1;
    qsizetype column = 1;

    friend bool operator==(LineAndColumn, LineAndColumn) = default;
};

/// Where an offset stands, which is clamped to the text. Costs the way to two pieces, however long the line is.
LineAndColumn lineAndColumnAt(const TextTree& text, qsizetype offset);

/// The offset of a place: of a line or a column that the text has not, the nearest, and never between the two units of
/// a character or of a line's end. Costs the same.
qsizetype offsetAt(const TextTree& text, LineAndColumn place);

} // namespace kelm
