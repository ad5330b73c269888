#include "editor/folding/fold_journal.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kelm {

void FoldJournal::folded(qsizetype startLine, TextRange placeholder, const TextTree& body)
{
    replacements_.push_back({placeholder.location, placeholder.length, body, startLine});
}

void FoldJournal::unfolded(qsizetype startLine, TextRange placeholder, const TextTree& replaced, qsizetype bodyLength)
{
    const auto fold = std::find_if(replacements_.begin(), replacements_.end(),
                                   [startLine](const Replacement& r) { return r.startLine == startLine; });
    if (fold == replacements_.end()) {
        // What stood for the body is gone; putting it back is an edit like others.
        textEdited({placeholder, bodyLength});
        return;
    }
    if (placeholder.length == fold->length && currentLocation(fold) == placeholder.location) {
        removeTakenBack(fold);
        return;
    }
    fold->startLine = 0;
    replacements_.push_back({placeholder.location, bodyLength, replaced, 0});
}

std::vector<FoldJournal::OpenFold> FoldJournal::openFolds()
{
    std::vector<OpenFold> folds;
    for (auto fold = replacements_.begin(); fold != replacements_.end(); ++fold) {
        if (fold->startLine == 0) {
            continue;
        }
        if (const auto location = currentLocation(fold)) {
            folds.push_back({fold->startLine, {*location, fold->length}, fold->original});
        }
    }
    return folds;
}

void FoldJournal::takenBack(qsizetype startLine)
{
    const auto fold = std::find_if(replacements_.begin(), replacements_.end(),
                                   [startLine](const Replacement& r) { return r.startLine == startLine; });
    Q_ASSERT(fold != replacements_.end());
    removeTakenBack(fold);
}

std::optional<qsizetype> FoldJournal::currentLocation(Iterator replacement) const
{
    qsizetype location = replacement->location;
    for (auto later = std::next(replacement); later != replacements_.end(); ++later) {
        if (later->location + later->original.length() <= location) {
            location -= later->growth();
        } else if (later->location < location + replacement->length) {
            return {};
        }
    }
    return location;
}

void FoldJournal::removeTakenBack(Iterator replacement)
{
    qsizetype location = replacement->location;
    for (auto later = std::next(replacement); later != replacements_.end(); ++later) {
        if (later->location < location) {
            location -= later->growth();
        } else {
            later->location += replacement->growth();
        }
    }
    replacements_.erase(replacement);
}

void FoldJournal::textEdited(const TextEdit& edit)
{
    // The edit as it would have been before the replacement looked at and all later ones.
    TextRange range = edit.range;
    qsizetype newLength = edit.newLength;
    for (auto i = replacements_.size(); i-- > 0;) {
        Replacement& replacement = replacements_[i];
        const qsizetype start = replacement.location;
        const qsizetype end = replacement.end();
        const qsizetype editEnd = range.end();
        if (editEnd <= start) {
            replacement.location += newLength - range.length;
        } else if (range.location >= end) {
            range.location += replacement.growth();
        } else if (range.location <= start && editEnd >= end) {
            range.length += replacement.growth();
            replacements_.erase(replacements_.begin() + qsizetype(i));
        } else if (range.location > start) {
            // The head stays; a tail is text like what was put in before it.
            replacement.length = range.location - start;
            newLength += std::max<qsizetype>(end - editEnd, 0);
            range = {start + replacement.original.length(), std::max<qsizetype>(editEnd - end, 0)};
        } else {
            replacement.location = range.location + newLength;
            replacement.length = end - editEnd;
            range.length = start - range.location;
        }
    }
}

namespace {

/// Where a range is when `from` becomes `newLength` units: one that meets it without lying beside it takes all of it.
TextRange carriedWhole(TextRange range, TextRange from, qsizetype newLength)
{
    const qsizetype growth = newLength - from.length;
    qsizetype end = range.end();
    if (end > from.location) {
        end = end >= from.end() ? end + growth : from.location + newLength;
    }
    if (range.isEmpty()) {
        return {end, 0};
    }
    qsizetype start = range.location;
    if (start > from.location) {
        start = start >= from.end() ? start + growth : from.location;
    }
    return TextRange::between(start, end);
}

} // namespace

TextRange FoldJournal::wholeRange(TextRange range) const
{
    for (auto replacement = replacements_.rbegin(); replacement != replacements_.rend(); ++replacement) {
        range = carriedWhole(range, {replacement->location, replacement->length}, replacement->original.length());
    }
    return range;
}

TextRange FoldJournal::shownRange(TextRange whole) const
{
    for (const Replacement& replacement : replacements_) {
        whole = carriedWhole(whole, {replacement.location, replacement.original.length()}, replacement.length);
    }
    return whole;
}

TextTree FoldJournal::takenBackIn(TextTree text) const
{
    for (auto replacement = replacements_.rbegin(); replacement != replacements_.rend(); ++replacement) {
        text.replace({replacement->location, replacement->length}, replacement->original);
    }
    return text;
}

std::optional<FoldJournal::Replacement> FoldJournal::takeLast()
{
    if (replacements_.empty()) {
        return {};
    }
    Replacement last = std::move(replacements_.back());
    replacements_.pop_back();
    return last;
}

} // namespace kelm
