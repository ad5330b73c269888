// The counts of a text that the status bar shows.
#pragma once

#include "text/storage/text_tree.h"

#include <atomic>
#include <optional>

namespace kelm {

/// The pieces that `text` has between newlines, each of the two units of a CR LF pair being one; 1 for an empty text.
/// The tree knows it.
inline qsizetype newlineSeparatedCount(const TextTree& text)
{
    return text.newlines() + 1;
}

struct TextCounts
{
    /// User-perceived characters.
    qsizetype characters = 0;
    /// The pieces between white space and newlines that are not empty.
    qsizetype words = 0;

    friend bool operator==(const TextCounts&, const TextCounts&) = default;
};

/// Counts a text; absent when `stop` was set before the end. Linear in the text; any thread.
std::optional<TextCounts> countText(const TextTree& text, const std::atomic<bool>& stop);

} // namespace kelm
