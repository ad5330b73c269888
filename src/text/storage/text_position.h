// Lines and columns as they are shown to people.
#pragma once

#include "text/storage/text_storage.h"

#include <QtGlobal>

namespace kelm {

/// A line and a column, both from 1. Lines end at line feeds alone, and a column counts UTF-16 units.
struct LineAndColumn
{
    qsizetype line = 1;
    qsizetype column = 1;

    friend bool operator==(LineAndColumn, LineAndColumn) = default;
};

/// The number of line feeds before an offset. Answered from the line index where all lines end in line feeds; else the
/// text before the offset is counted.
qsizetype lineFeedsBefore(const TextStorage& storage, qsizetype offset);

/// Where an offset stands.
LineAndColumn lineAndColumnAt(const TextStorage& storage, qsizetype offset);

} // namespace kelm
