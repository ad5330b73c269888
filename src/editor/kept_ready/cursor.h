// An insertion point beside the text view's own.
#pragma once

#include "text/storage/text_range.h"

#include <optional>

namespace kelm {

struct Cursor
{
    /// UTF-16 units from the start of the text.
    qsizetype position = 0;
    /// The text that belongs to the cursor and goes when something is typed there.
    std::optional<TextRange> selection;

    friend bool operator==(const Cursor&, const Cursor&) = default;
};

} // namespace kelm
