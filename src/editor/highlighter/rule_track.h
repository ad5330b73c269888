// Where the scan of one rule may begin again.
#pragma once

#include "editor/highlighter/dirty_ranges.h"
#include "editor/highlighter/scan_watcher.h"
#include "text/storage/shifted_offsets.h"
#include "text/storage/text_range.h"

#include <optional>
#include <span>
#include <vector>

namespace kelm {

/// How finely the scans of rules are kept, in UTF-16 units. Tests make all of it small, to meet many borders.
struct ScanSizes
{
    /// One safe place about every so many units is kept.
    qsizetype spacing = 2048;
    /// Neighbouring safe places are no farther apart than this; otherwise what is found between them is kept.
    qsizetype longestZone = 4096;
    /// How much of a text is gathered at a time. More than `spacing` by far.
    qsizetype window = 65536;
};

/// What stands between two safe places that are far from each other.
struct LongStretch
{
    qsizetype start = 0;
    qsizetype end = 0;
    std::vector<RuleMatch> matches;
};

/// The same where it is kept. The matches count from the stretch's start.
struct LongStretchView
{
    qsizetype start = 0;
    qsizetype end = 0;
    std::span<const RuleMatch> matches;
};

/// What a scan of a part of a text came to.
struct Rescan
{
    /// The safe places at which it began and at which it met the old ones again; without the latter the text's end.
    qsizetype from = 0;
    std::optional<qsizetype> to;
    /// The safe places between, in order.
    std::vector<qsizetype> places;
    /// The long stretches between, in order, each from one place to the next.
    std::vector<LongStretch> stretches;
    /// How many dirty ranges it has made good, from the first on.
    qsizetype dirtyRanges = 1;
    /// What is left to do of the last of them.
    std::optional<TextRange> stillDirty;
};

/// What is known of one rule in one text: safe places, of which the text's start and end are two that nobody keeps, the
/// matches of long stretches, and what edits have made uncertain. Wherever nothing is dirty, the distance of two
/// neighbouring places is that of the sizes at most, or a long stretch lies between them.
class RuleTrack
{
public:
    /// Nothing is known of a text of that length.
    void reset(qsizetype length);
    /// Keeps what is known on both sides of an edit. Cheap: what stands behind it is shifted by one number.
    void textReplaced(TextRange range, qsizetype newLength);
    void rescanned(Rescan rescan);

    bool isSettled() const { return dirty_.isEmpty(); }
    const DirtyRanges& dirty() const { return dirty_; }
    const ShiftedOffsets& places() const { return places_; }
    /// The last safe place at `offset` or before it.
    qsizetype placeBefore(qsizetype offset) const;
    /// The first long stretch that ends behind `offset`, which may lie in it or before it.
    std::optional<LongStretchView> stretchBehind(qsizetype offset) const;

    /// What is kept beside the object itself, in bytes.
    qsizetype keptBytes() const;

    /// How many units the last scan looked at in vain, as the attempt at its beginning goes on behind them.
    qsizetype unitsInVain = 0;

private:
    struct Content
    {
        qsizetype length = 0;
        std::vector<RuleMatch> matches;
    };

    qsizetype stretchEnd(qsizetype index) const;
    void replaceStretches(qsizetype first, qsizetype last, std::vector<LongStretch> added);

    ShiftedOffsets places_;
    ShiftedOffsets stretchStarts_;
    std::vector<Content> stretches_;
    DirtyRanges dirty_;
};

} // namespace kelm
