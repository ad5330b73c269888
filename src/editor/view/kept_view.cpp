#include "editor/view/kept_view.h"

#include <algorithm>

namespace kelm {

KeptView::KeptView(TextView& view, CodeFoldingManager& folds)
    : view_(view), folds_(folds), selections_(view.editor().selections().all())
{
    for (const TextRange placeholder : folds.placeholders()) {
        foldPlaces_.push_back(placeholder.location);
    }
    const auto primary = selections_.begin() + std::ptrdiff_t(view.editor().selections().primaryIndex());
    std::rotate(primary, primary + 1, selections_.end());
    const std::vector<TextRow> rows = view.visibleRows();
    const auto top = std::find_if(rows.begin(), rows.end(), [](const TextRow& row) { return row.top >= 0; });
    if (top != rows.end()) {
        topPlace_ = top->range.location;
        topDistance_ = view.caretRect({*topPlace_}).top();
    }
    QObject::connect(&view.storage(), &TextStorage::willReplace, &context_,
                     [this](TextRange range, const TextTree& replacement) { carry(range, replacement.length()); });
}

void KeptView::carry(TextRange range, qsizetype newLength)
{
    const auto carried = [&](qsizetype place) {
        if (place <= range.location) {
            return place;
        }
        return place >= range.end() ? place + newLength - range.length : std::min(place, range.location + newLength);
    };
    for (Selection& selection : selections_) {
        selection = {carried(selection.anchor), {carried(selection.head.offset), selection.head.atRowEnd}, {}};
    }
    // A fold whose first line is written anew is the fold of another text.
    std::erase_if(foldPlaces_, [&](qsizetype place) { return place > range.location && place < range.end(); });
    std::transform(foldPlaces_.begin(), foldPlaces_.end(), foldPlaces_.begin(), carried);
    if (topPlace_) {
        topPlace_ = carried(*topPlace_);
    }
}

void KeptView::restore()
{
    view_.editor().setSelections(SelectionSet(selections_));
    // The regions of the text before would fold something else.
    if (folds_.isSettled()) {
        restoreFolds();
    }
    if (topPlace_) {
        const qreal now = view_.caretRect({*topPlace_}).top();
        view_.scrollToY(view_.visibleRect().top() + now - topDistance_);
    }
}

void KeptView::restoreFolds()
{
    // From the last to the first: a fold changes the numbers of the lines below it.
    std::vector<qsizetype> places = foldPlaces_;
    std::reverse(places.begin(), places.end());
    for (const qsizetype place : places) {
        const qsizetype line = view_.storage().lines().lineAt(place);
        if (const auto region = folds_.firstRegionStartingAt(line)) {
            folds_.fold(*region);
        }
    }
}

} // namespace kelm
