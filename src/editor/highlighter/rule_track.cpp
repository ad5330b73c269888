#include "editor/highlighter/rule_track.h"

#include <iterator>

namespace kelm {

void RuleTrack::reset(qsizetype length)
{
    places_.reset({});
    stretchStarts_.reset({});
    stretches_.clear();
    dirty_.clear();
    unitsInVain = 0;
    if (length > 0) {
        dirty_.add({0, length});
    }
}

void RuleTrack::textReplaced(TextRange range, qsizetype newLength)
{
    constexpr qsizetype margin = ScanWatcher::margin;
    const qsizetype change = newLength - range.length;
    const qsizetype first = places_.upperBound(range.location - margin);
    const qsizetype behind = places_.lowerBound(range.end() + margin);
    if (behind > first) {
        places_.replace(first, behind - first, {});
    }
    places_.shift(first, change);

    qsizetype firstStretch = stretchStarts_.upperBound(range.location - margin);
    if (firstStretch > 0 && stretchEnd(firstStretch - 1) > range.location - margin) {
        --firstStretch;
    }
    const qsizetype stretchBehind = std::max(firstStretch, stretchStarts_.lowerBound(range.end() + margin));
    replaceStretches(firstStretch, stretchBehind, {});
    stretchStarts_.shift(firstStretch, change);

    dirty_.textReplaced(range, newLength);
}

void RuleTrack::rescanned(Rescan rescan)
{
    dirty_.remove(0, rescan.dirtyRanges);
    // What is dirty again has no places, and none that are too near to it.
    std::optional<qsizetype> to = rescan.to;
    if (rescan.stillDirty) {
        dirty_.add(*rescan.stillDirty);
        to = rescan.stillDirty->end() + ScanWatcher::margin;
    }
    const qsizetype first = places_.upperBound(rescan.from);
    const qsizetype last = to ? std::max(first, places_.lowerBound(*to)) : places_.size();
    places_.replace(first, last - first, rescan.places);

    const qsizetype firstStretch = stretchStarts_.lowerBound(rescan.from);
    const qsizetype lastStretch = to ? stretchStarts_.lowerBound(*to) : stretchStarts_.size();
    replaceStretches(firstStretch, std::max(firstStretch, lastStretch), std::move(rescan.stretches));
}

qsizetype RuleTrack::placeBefore(qsizetype offset) const
{
    const qsizetype index = places_.upperBound(offset);
    return index > 0 ? places_.at(index - 1) : 0;
}

std::optional<LongStretchView> RuleTrack::stretchBehind(qsizetype offset) const
{
    qsizetype index = stretchStarts_.upperBound(offset);
    if (index > 0 && stretchEnd(index - 1) > offset) {
        --index;
    }
    if (index == stretchStarts_.size()) {
        return {};
    }
    return LongStretchView{stretchStarts_.at(index), stretchEnd(index),
                           stretches_[static_cast<std::size_t>(index)].matches};
}

qsizetype RuleTrack::keptBytes() const
{
    constexpr auto offset = static_cast<qsizetype>(sizeof(qsizetype));
    qsizetype bytes = (places_.size() + stretchStarts_.size()) * offset;
    for (const Content& stretch : stretches_) {
        bytes += static_cast<qsizetype>(sizeof(Content) + stretch.matches.capacity() * sizeof(RuleMatch));
    }
    return bytes;
}

qsizetype RuleTrack::stretchEnd(qsizetype index) const
{
    return stretchStarts_.at(index) + stretches_[static_cast<std::size_t>(index)].length;
}

void RuleTrack::replaceStretches(qsizetype first, qsizetype last, std::vector<LongStretch> added)
{
    if (first == last && added.empty()) {
        return;
    }
    std::vector<qsizetype> starts;
    std::vector<Content> contents;
    for (LongStretch& stretch : added) {
        for (RuleMatch& match : stretch.matches) {
            match = {match.start - stretch.start, match.end - stretch.start};
        }
        stretch.matches.shrink_to_fit();
        starts.push_back(stretch.start);
        contents.push_back({stretch.end - stretch.start, std::move(stretch.matches)});
    }
    stretchStarts_.replace(first, last - first, starts);
    stretches_.erase(stretches_.begin() + first, stretches_.begin() + last);
    stretches_.insert(stretches_.begin() + first, std::make_move_iterator(contents.begin()),
                      std::make_move_iterator(contents.end()));
}

} // namespace kelm
