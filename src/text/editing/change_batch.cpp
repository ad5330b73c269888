#include "text/editing/change_batch.h"

#include <algorithm>

namespace kelm {

namespace {

/// The indexes at which replacements begin that do not stand behind the one before them, and the end.
std::vector<std::size_t> batchStarts(const std::vector<Replacement>& replacements)
{
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < replacements.size(); ++i) {
        if (i == 0 || replacements[i].location < replacements[i - 1].newRange().end()) {
            starts.push_back(i);
        }
    }
    starts.push_back(replacements.size());
    return starts;
}

} // namespace

std::vector<ChangeBatch> batchesAhead(const std::vector<Replacement>& replacements)
{
    const std::vector<std::size_t> starts = batchStarts(replacements);
    std::vector<ChangeBatch> batches;
    for (std::size_t batch = 0; batch + 1 < starts.size(); ++batch) {
        ChangeBatch& changes = batches.emplace_back();
        qsizetype shift = 0;
        for (std::size_t i = starts[batch]; i < starts[batch + 1]; ++i) {
            const Replacement& made = replacements[i];
            changes.push_back({{made.location - shift, made.removed.length()}, made.inserted});
            shift += made.inserted.length() - made.removed.length();
        }
    }
    return batches;
}

std::vector<ChangeBatch> batchesBack(const std::vector<Replacement>& replacements)
{
    const std::vector<std::size_t> starts = batchStarts(replacements);
    std::vector<ChangeBatch> batches;
    for (std::size_t batch = starts.size() - 1; batch > 0; --batch) {
        ChangeBatch& changes = batches.emplace_back();
        for (std::size_t i = starts[batch - 1]; i < starts[batch]; ++i) {
            // What came later in the batch stands behind and has not moved it.
            changes.push_back({replacements[i].newRange(), replacements[i].removed});
        }
    }
    return batches;
}

Change combined(const TextTree& text, const ChangeBatch& batch)
{
    Change whole;
    whole.range = TextRange::between(batch.front().range.location, batch.back().range.end());
    whole.text = text.part(whole.range);
    // From the end on, so that what stands before keeps its place.
    for (auto change = batch.rbegin(); change != batch.rend(); ++change) {
        whole.text.replace({change->range.location - whole.range.location, change->range.length}, change->text);
    }
    return whole;
}

} // namespace kelm
