#include "editor/highlighter/painted_text.h"
#include "editor/highlighter/rule_tracks.h"
#include "editor/highlighter/scan_window.h"

#include <algorithm>

namespace kelm {

namespace {

/// Ends a scan at the first safe place at `until` or behind it.
class UntilPlace final : public ScanWatcher
{
public:
    explicit UntilPlace(qsizetype until) { awaited = until; }

private:
    bool foundGap(qsizetype, qsizetype) override { return false; }
};

} // namespace

/// One call of `colorsIn`.
class RuleTracks::Painting
{
public:
    Painting(const RuleTracks& tracks, const TextTree& text, TextRange range)
        : tracks_(tracks),
          range_(range),
          painted_(range.length),
          guessedFrom_(lineStartBefore(text)),
          window_(text, firstPlace(), lastPlace(text))
    {}

    std::vector<ColorRun> runs(std::span<const QRgb> colors)
    {
        for (std::size_t rule = 0; rule < tracks_.tracks_.size(); ++rule) {
            paintRule(rule);
        }
        std::vector<ColorRun> runs = painted_.runs(colors);
        for (ColorRun& run : runs) {
            run.range.location += range_.location;
        }
        return runs;
    }

private:
    /// Where a rule begins of which no place is known nearby.
    qsizetype lineStartBefore(const TextTree& text) const
    {
        const qsizetype nearby = range_.location - tracks_.sizes_.longestZone / 2;
        return nearby <= 0 ? 0 : ScanWindow(text, nearby, range_.location).lineStart(nearby, range_.location);
    }
    qsizetype placeToBegin(const RuleTrack& track) const
    {
        const qsizetype known = track.placeBefore(range_.location);
        return range_.location - known <= 2 * tracks_.sizes_.longestZone ? known : guessedFrom_;
    }
    qsizetype firstPlace() const
    {
        qsizetype first = range_.location;
        for (const RuleTrack& track : tracks_.tracks_) {
            const std::optional<LongStretchView> stretch = track.stretchBehind(range_.location);
            if (!stretch || stretch->start > range_.location) {
                first = std::min(first, placeToBegin(track));
            }
        }
        return first;
    }
    /// What begins in the range ends before it, unless it is kept as a long stretch.
    qsizetype lastPlace(const TextTree& text) const
    {
        return std::min(range_.end() + tracks_.sizes_.longestZone + 2 * ScanWatcher::margin, text.length());
    }

    void paintRule(std::size_t rule)
    {
        const RuleTrack& track = tracks_.tracks_[rule];
        const auto& scanner = (*tracks_.rules_)[rule].scanner;
        const auto coat = static_cast<quint8>(rule + 1);
        bool isFirst = true;
        for (qsizetype place = range_.location; place < range_.end(); isFirst = false) {
            const std::optional<LongStretchView> stretch = track.stretchBehind(place);
            const qsizetype stop = stretch ? std::min(stretch->start, range_.end()) : range_.end();
            if (place < stop && scanner) {
                UntilPlace scan(stop);
                window_.scan(*scanner, isFirst ? placeToBegin(track) : place, scan);
                paint(scan.matches, 0, coat);
            }
            if (!stretch || stop == range_.end()) {
                return;
            }
            paint(stretch->matches, stretch->start, coat);
            place = stretch->end;
        }
    }
    /// Paints what of the matches lies in the range; they are in order and count from `start`.
    void paint(std::span<const RuleMatch> matches, qsizetype start, quint8 coat)
    {
        const qsizetype from = range_.location - start;
        const qsizetype to = range_.end() - start;
        auto match = std::partition_point(matches.begin(), matches.end(),
                                          [from](const RuleMatch& before) { return before.end <= from; });
        for (; match != matches.end() && match->start < to; ++match) {
            painted_.paint(std::max(match->start, from) - from, std::min(match->end, to) - from, coat);
        }
    }

    const RuleTracks& tracks_;
    const TextRange range_;
    PaintedText painted_;
    const qsizetype guessedFrom_;
    const ScanWindow window_;
};

std::vector<ColorRun> RuleTracks::colorsIn(const TextTree& text, TextRange range, std::span<const QRgb> colors) const
{
    range = range.clampedTo(text.length());
    return range.isEmpty() ? std::vector<ColorRun>() : Painting(*this, text, range).runs(colors);
}

} // namespace kelm
