#include "git/diff/diff_search.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kelm {

using Side = SideBySideHunkLines::Side;

DiffSearch::DiffSearch(const DiffLayout& layout, QString text, const DiffTextPlace& from, Side side,
                       Direction direction)
    : layout_(layout), text_(std::move(text)), direction_(direction), startUnit_(from.unit)
{
    const bool isInUnified = layout.mode() == DiffViewMode::unified;
    start_ = {from.file, from.hunk, from.entry, from.hunk < 0 || isInUnified ? Side::oldSide : side};
    const QList<DiffFile>& files = layout.files();
    const bool isThere =
        from.file < files.size() && (from.hunk < 0 || (from.hunk < files[from.file].hunks.size() &&
                                                       from.entry < layout.entryCount(from.file, from.hunk)));
    if (!isThere) {
        const bool isForwards = direction == Direction::forwards;
        start_ = isForwards || files.isEmpty() ? firstSpot() : lastSpot();
        startUnit_ = isForwards ? 0 : std::numeric_limits<qsizetype>::max();
    }
    spot_ = start_;
}

DiffSearch::Spot DiffSearch::firstSpot() const
{
    return {};
}

DiffSearch::Spot DiffSearch::lastSpot() const
{
    Spot spot{.file = layout_.files().size()};
    stepBackwards(spot);
    return spot;
}

std::optional<QStringView> DiffSearch::textAt(const Spot& spot)
{
    if (spot.hunk < 0) {
        path_ = shownPath(layout_.files()[spot.file]);
        return QStringView(path_);
    }
    const DiffLine* const line = lineOn(spot.side, layout_, spot.file, spot.hunk, spot.entry);
    if (line == nullptr) {
        return std::nullopt;
    }
    // A line that both sides show counts once, on the new side, where it is selected.
    if (layout_.mode() == DiffViewMode::sideBySide && spot.side == Side::oldSide &&
        line == lineOn(Side::newSide, layout_, spot.file, spot.hunk, spot.entry)) {
        return std::nullopt;
    }
    return line->text;
}

bool DiffSearch::stepForwards(Spot& spot) const
{
    const QList<DiffFile>& files = layout_.files();
    if (spot.hunk >= 0) {
        if (layout_.mode() == DiffViewMode::sideBySide && spot.side == Side::oldSide) {
            spot.side = Side::newSide;
            return true;
        }
        spot.side = Side::oldSide;
        if (++spot.entry < layout_.entryCount(spot.file, spot.hunk)) {
            return true;
        }
    }
    spot.entry = 0;
    while (++spot.hunk < files[spot.file].hunks.size()) {
        if (layout_.entryCount(spot.file, spot.hunk) > 0) {
            return true;
        }
    }
    spot = {spot.file + 1, -1, 0, Side::oldSide};
    return spot.file < files.size();
}

bool DiffSearch::stepBackwards(Spot& spot) const
{
    const bool isInSides = layout_.mode() == DiffViewMode::sideBySide;
    const Side last = isInSides ? Side::newSide : Side::oldSide;
    if (spot.hunk >= 0) {
        if (isInSides && spot.side == Side::newSide) {
            spot.side = Side::oldSide;
            return true;
        }
        if (--spot.entry >= 0) {
            spot.side = last;
            return true;
        }
    } else {
        if (--spot.file < 0) {
            return false;
        }
        spot.hunk = layout_.files()[spot.file].hunks.size();
    }
    while (--spot.hunk >= 0) {
        if (const qsizetype entries = layout_.entryCount(spot.file, spot.hunk); entries > 0) {
            spot.entry = entries - 1;
            spot.side = last;
            return true;
        }
    }
    spot.entry = 0;
    spot.side = Side::oldSide;
    return true;
}

bool DiffSearch::step(Spot& spot) const
{
    return direction_ == Direction::forwards ? stepForwards(spot) : stepBackwards(spot);
}

bool DiffSearch::take(QStringView text, qsizetype at)
{
    if (at < 0) {
        return false;
    }
    // Texts of a unified diff are selected on the new side, which there stands for both.
    const bool isOnNewSide = layout_.mode() == DiffViewMode::unified || spot_.side == Side::newSide || spot_.hunk < 0;
    const DiffTextPlace place{spot_.file, spot_.hunk, spot_.entry, at};
    DiffTextPlace end = place;
    end.unit = std::min(at + text_.size(), text.size());
    match_ = DiffSelection{place, end, isOnNewSide ? Side::newSide : Side::oldSide};
    return true;
}

DiffSearch::State DiffSearch::look(qsizetype units)
{
    // What a line costs beside its text.
    constexpr qsizetype unitsOfALine = 32;
    if (match_) {
        return State::found;
    }
    if (text_.isEmpty() || layout_.files().isEmpty()) {
        return State::nothing;
    }
    const bool isForwards = direction_ == Direction::forwards;
    for (qsizetype looked = 0; looked <= units || looked == 0;) {
        const std::optional<QStringView> text = textAt(spot_);
        looked += unitsOfALine + (text ? text->size() : 0);
        if (text) {
            qsizetype at = -1;
            if (isForwards) {
                at = text->indexOf(text_, isFirst_ ? startUnit_ : 0, Qt::CaseInsensitive);
            } else if (!isFirst_ || startUnit_ > 0) {
                const qsizetype last = isFirst_ ? std::min(startUnit_ - 1, text->size()) : text->size();
                at = text->lastIndexOf(text_, last, Qt::CaseInsensitive);
            }
            if (take(*text, at)) {
                return State::found;
            }
        }
        if (!isFirst_ && spot_ == start_) {
            return State::nothing;
        }
        isFirst_ = false;
        if (!step(spot_)) {
            hasWrapped_ = true;
            spot_ = isForwards ? firstSpot() : lastSpot();
        }
    }
    return State::looking;
}

} // namespace kelm
