#include "editor/highlighter/rule_scan.h"

#include <algorithm>
#include <utility>

namespace kelm {

RuleScan::RuleScan(const RuleTrack& track, const PatternScanner& scanner, const ScanSizes& sizes, const TextTree& text)
    : track_(track),
      scanner_(scanner),
      sizes_(sizes),
      text_(text),
      last_(track.placeBefore(track.dirty().at(0).location - margin)),
      dirtyStart_(track.dirty().at(0).location),
      dirtyEnd_(endOfTransparent(text, track.dirty().at(0).end()))
{
    found_.from = last_;
    findOldPlace(last_);
}

void RuleScan::findOldPlace(qsizetype from)
{
    const ShiftedOffsets& places = track_.places();
    const DirtyRanges& dirty = track_.dirty();
    for (;;) {
        const qsizetype index = places.lowerBound(std::max({from, last_ + 1, dirtyEnd_ + margin}));
        oldPlace_ = index < places.size() ? places.at(index) : text_.length() + 1;
        // A dirty range with no place before it to begin at is part of this one.
        const qsizetype next = found_.dirtyRanges;
        if (next >= dirty.size() || dirty.at(next).location - margin >= oldPlace_) {
            return;
        }
        dirtyEnd_ = std::max(dirtyEnd_, endOfTransparent(text_, dirty.at(next).end()));
        ++found_.dirtyRanges;
    }
}

void RuleScan::advance(const ScanWindow& window, qsizetype until)
{
    window_ = &window;
    until_ = until;
    step_ = sizes_.spacing;
    matches.clear();
    awaited = std::min(last_ + step_, oldPlace_);
    const WatchedText::Ending ending = window.scan(scanner_, last_, *this);
    if (ending == WatchedText::Ending::complete && window.endsText()) {
        endZone(text_.length());
        isDone_ = true;
    }
    window_ = nullptr;
}

bool RuleScan::foundGap(qsizetype first, qsizetype last)
{
    if (oldPlace_ < first) {
        findOldPlace(first);
    }
    const bool meets = oldPlace_ <= last;
    keepPlaces(first, meets ? oldPlace_ - 1 : last);
    if (meets) {
        endZone(oldPlace_);
        found_.to = oldPlace_;
        isDone_ = true;
        return false;
    }
    awaited = std::min(last_ + step_, oldPlace_);
    // So near to the text's end, it could not be told as the place from which to go on.
    return last_ < until_ || last_ + margin > text_.length();
}

void RuleScan::keepPlaces(qsizetype first, qsizetype last)
{
    for (;;) {
        const qsizetype wanted = std::max(first, last_ + step_);
        if (wanted > last) {
            return;
        }
        const qsizetype place = window_->lookBack(scanner_, wanted);
        if (place >= first && place > last_) {
            endZone(place);
            found_.places.push_back(place);
            last_ = place;
            step_ = sizes_.spacing;
        } else {
            // Each try looks back over what the one before has looked at.
            step_ = 2 * (wanted - last_);
        }
    }
}

void RuleScan::endZone(qsizetype place)
{
    if (place - last_ > sizes_.longestZone) {
        found_.stretches.push_back({last_, place, matches});
    }
    matches.clear();
}

Rescan RuleScan::result()
{
    if (!isDone_) {
        const qsizetype start = std::min(std::max(dirtyStart_, last_ + margin), text_.length());
        found_.stillDirty = TextRange::between(start, std::max(start, dirtyEnd_));
    }
    return std::move(found_);
}

} // namespace kelm
