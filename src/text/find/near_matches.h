// The matches of a plain text at one place of a long text, without those before it.
#pragma once

#include "text/find/literal_search.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <optional>
#include <vector>

namespace kelm {

/// What a search from the start of the text would find there. All of these look at some 100,000 units at most.

/// The matches that meet a range, of a very long range those at its start. Where the places at which the wanted text
/// stands run over into each other for a long way before it, other ones of these places may be given.
std::vector<TextRange> matchesNear(const LiteralSearch& wanted, const TextTree& text, TextRange range);
/// The first match that begins at or behind an offset; absent where it is not near.
std::optional<TextRange> nextNear(const LiteralSearch& wanted, const TextTree& text, qsizetype offset);
/// The last match that ends at or before an offset; absent where it is not near.
std::optional<TextRange> previousNear(const LiteralSearch& wanted, const TextTree& text, qsizetype offset);

} // namespace kelm
