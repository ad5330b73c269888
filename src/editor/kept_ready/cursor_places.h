// Where further cursors and selections go. All offsets are UTF-16 units.
#pragma once

#include "text/storage/text_storage.h"

#include <optional>
#include <vector>

namespace kelm {

/// The place in the line above or below that is as far from the line's start as `position` is from that of its own. In
/// a shorter line it is before the line's last unit, be that a line end or a letter. Absent in the first or last line.
std::optional<qsizetype> placeAbove(const TextStorage& storage, qsizetype position);
std::optional<qsizetype> placeBelow(const TextStorage& storage, qsizetype position);

/// Where `needle` stands in the text, letter by letter; what is found does not overlap. Half of a character, as a
/// letter without the accent that follows it, is not found. Nothing for an empty needle.
std::vector<TextRange> occurrences(QStringView text, QStringView needle);

/// The end of each line that `range` touches, before its terminator.
std::vector<qsizetype> lineEnds(const TextStorage& storage, TextRange range);

/// The next larger unit around a selection: the word, the text of its lines, its lines whole, all of the text.
TextRange expanded(const TextStorage& storage, TextRange selection);

} // namespace kelm
