// Many changes of a text at once, as several carets make them.
#pragma once

#include "text/editing/undo_history.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QStringView>

#include <utility>
#include <vector>

namespace kelm {

/// A range of the text and what is put in its place.
struct Change
{
    TextRange range;
    TextTree text;

    Change() = default;
    Change(TextRange replaced, TextTree by) : range(replaced), text(std::move(by)) {}
    Change(TextRange replaced, QStringView by) : range(replaced), text(by) {}

    friend bool operator==(const Change&, const Change&) = default;
};

/// Changes in the order of the text that do not overlap, all told in the text before the first of them.
using ChangeBatch = std::vector<Change>;

/// The batches that make replacements again, one batch after the other. What one edit did at several places is one.
std::vector<ChangeBatch> batchesAhead(const std::vector<Replacement>& replacements);
/// The batches that take replacements back.
std::vector<ChangeBatch> batchesBack(const std::vector<Replacement>& replacements);

/// One change that does what a batch, which must not be empty, does to `text`. It shares what the batch leaves.
Change combined(const TextTree& text, const ChangeBatch& batch);

} // namespace kelm
