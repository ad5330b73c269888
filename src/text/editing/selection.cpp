#include "text/editing/selection.h"

#include <algorithm>
#include <numeric>

namespace kelm {

namespace {

/// Two selections are one when they share text, or when a caret stands in or at the other.
bool meet(const Selection& before, const Selection& after)
{
    const TextRange a = before.range();
    const TextRange b = after.range();
    return b.location < a.end() || (b.location == a.end() && (a.isEmpty() || b.isEmpty()));
}

/// The selection over both, with its caret on the side where that of `direction` is.
Selection joined(const Selection& a, const Selection& b, const Selection& direction)
{
    const qsizetype start = std::min(a.range().location, b.range().location);
    const qsizetype end = std::max(a.range().end(), b.range().end());
    const bool backward = direction.head.offset < direction.anchor;
    Selection result = direction;
    result.anchor = backward ? end : start;
    const qsizetype head = backward ? start : end;
    if (head != direction.head.offset) {
        result.head = {head, false};
    }
    return result;
}

} // namespace

SelectionSet::SelectionSet(std::vector<Selection> selections)
    : selections_(std::move(selections)), primary_(selections_.size() - 1)
{
    normalize();
}

bool SelectionSet::hasText() const
{
    return std::any_of(selections_.begin(), selections_.end(),
                       [](const Selection& selection) { return !selection.isCaret(); });
}

void SelectionSet::add(const Selection& selection)
{
    selections_.push_back(selection);
    primary_ = selections_.size() - 1;
    normalize();
}

void SelectionSet::keepPrimary()
{
    selections_ = {primary()};
    primary_ = 0;
}

void SelectionSet::replaceAll(std::vector<Selection> selections)
{
    selections_ = std::move(selections);
    primary_ = std::min(primary_, selections_.size() - 1);
    normalize();
}

void SelectionSet::moveThrough(const TextEdit& edit)
{
    // What stands right before a text that is replaced stays before it; only an insertion pushes it along.
    const bool isInsertion = edit.range.isEmpty();
    for (Selection& selection : selections_) {
        selection.anchor = edit.moved(selection.anchor, isInsertion);
        const qsizetype head = edit.moved(selection.head.offset, isInsertion);
        if (head != selection.head.offset) {
            selection.head = {head, false};
        }
        selection.goalX.reset();
    }
    normalize();
}

void SelectionSet::normalize()
{
    const Selection chosen = primary();
    const auto before = [](const Selection& a, const Selection& b) {
        return std::pair(a.range().location, a.range().end()) < std::pair(b.range().location, b.range().end());
    };
    std::stable_sort(selections_.begin(), selections_.end(), before);
    std::vector<Selection> merged;
    for (const Selection& selection : selections_) {
        if (!merged.empty() && meet(merged.back(), selection)) {
            merged.back() = joined(merged.back(), selection, selection == chosen ? selection : merged.back());
        } else {
            merged.push_back(selection);
        }
    }
    selections_ = std::move(merged);
    const auto holder = std::find_if(selections_.begin(), selections_.end(), [&chosen](const Selection& selection) {
        return selection.range().location <= chosen.range().location && chosen.range().end() <= selection.range().end();
    });
    primary_ = static_cast<std::size_t>(holder - selections_.begin());
}

} // namespace kelm
