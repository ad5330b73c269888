// Carets and selections.
#pragma once

#include "text/layout/text_layout.h"
#include "text/storage/text_range.h"

#include <optional>
#include <vector>

namespace kelm {

/// One selection, from where it was begun to where its caret stands. Without length it is a caret alone.
struct Selection
{
    qsizetype anchor = 0;
    CaretPlace head;
    /// The x that a caret keeps while it goes up and down through shorter rows.
    std::optional<qreal> goalX;

    static Selection caret(CaretPlace place) { return {place.offset, place, {}}; }
    static Selection over(TextRange range) { return {range.location, {range.end(), false}, {}}; }

    TextRange range() const { return TextRange::between(anchor, head.offset); }
    bool isCaret() const { return anchor == head.offset; }

    friend bool operator==(const Selection&, const Selection&) = default;
};

/// One or more selections in the order of the text, none touching the next. One of them, the last one that was made, is
/// the primary: it is the one that is shown, reported and kept when only one may stay.
class SelectionSet
{
public:
    SelectionSet() : selections_(1) {}
    explicit SelectionSet(const Selection& selection) : selections_{selection} {}
    /// The last of `selections`, which must not be empty, becomes the primary one.
    explicit SelectionSet(std::vector<Selection> selections);

    const std::vector<Selection>& all() const { return selections_; }
    const Selection& primary() const { return selections_[primary_]; }
    std::size_t primaryIndex() const { return primary_; }
    bool isSingle() const { return selections_.size() == 1; }
    bool hasText() const;

    void add(const Selection& selection);
    void keepPrimary();
    /// Puts new selections in the place of all, one for one, and joins those that meet.
    void replaceAll(std::vector<Selection> selections);
    /// Carries all selections over an edit that another than their owner made.
    void moveThrough(const TextEdit& edit);

    friend bool operator==(const SelectionSet& a, const SelectionSet& b) { return a.selections_ == b.selections_; }

private:
    void normalize();

    std::vector<Selection> selections_;
    std::size_t primary_ = 0;
};

} // namespace kelm
