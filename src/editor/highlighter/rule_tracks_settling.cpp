#include "editor/highlighter/rule_scan.h"
#include "editor/highlighter/rule_tracks.h"
#include "editor/highlighter/scan_window.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// The ranges in order, those that meet as one.
std::vector<TextRange> merged(std::vector<TextRange> ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](TextRange a, TextRange b) { return a.location < b.location; });
    std::vector<TextRange> result;
    for (const TextRange range : ranges) {
        if (result.empty() || result.back().end() < range.location) {
            result.push_back(range);
        } else {
            result.back() = TextRange::between(result.back().location, std::max(result.back().end(), range.end()));
        }
    }
    return result;
}

} // namespace

/// One call of `settle`. All rules go through the text side by side, so that a window and the words in it serve all of
/// them. A rule in which one attempt goes on for long goes ahead alone, with windows that grow twofold.
class RuleTracks::Settling
{
public:
    Settling(RuleTracks& tracks, const TextTree& text, qsizetype mostUnits, const std::atomic<bool>* stop)
        : tracks_(tracks), text_(text), mostUnits_(mostUnits), stop_(stop), scans_(tracks.tracks_.size())
    {}

    std::vector<TextRange> run()
    {
        for (std::size_t rule = 0; rule < scans_.size(); ++rule) {
            begin(rule);
        }
        while (!isOver()) {
            const std::optional<qsizetype> from = firstPlace();
            if (!from) {
                break;
            }
            const ScanWindow window(text_, *from, windowEnd(*from));
            for (std::size_t rule = 0; rule < scans_.size() && !isOver(); ++rule) {
                goThrough(rule, window, *from);
            }
        }
        for (std::size_t rule = 0; rule < scans_.size(); ++rule) {
            if (scans_[rule]) {
                finish(rule);
            }
        }
        return merged(std::move(changed_));
    }

private:
    /// Something is done in each call, so that calls with few units get to an end as well.
    bool isOver() const
    {
        return (stop_ && stop_->load(std::memory_order_relaxed)) || (looked_ >= mostUnits_ && looked_ > 0);
    }

    /// Takes up the first dirty range of a rule.
    void begin(std::size_t rule)
    {
        RuleTrack& track = tracks_.tracks_[rule];
        const Rule& pattern = (*tracks_.rules_)[rule];
        if (track.isSettled()) {
            return;
        }
        if (pattern.scanner) {
            scans_[rule] = std::make_unique<RuleScan>(track, *pattern.scanner, tracks_.sizes_, text_);
        } else if (!isOver()) {
            matchAll(track, pattern);
        }
    }
    void matchAll(RuleTrack& track, const Rule& pattern)
    {
        LongStretch whole{0, text_.length(), {}};
        if (pattern.expression) {
            pattern.expression->enumerateMatches(text_.toString(), 0, [&whole](const RegularExpressionMatch& match) {
                whole.matches.push_back({match.location(), match.end()});
                return true;
            });
            looked_ += text_.length();
        }
        Rescan rescan;
        rescan.stretches.push_back(std::move(whole));
        rescan.dirtyRanges = track.dirty().size();
        track.rescanned(std::move(rescan));
        changed_.push_back({0, text_.length()});
    }
    /// Hands over what a scan has found so far.
    void finish(std::size_t rule)
    {
        const std::unique_ptr<RuleScan> scan = std::exchange(scans_[rule], nullptr);
        const qsizetype reached = scan->place();
        const bool isDone = scan->isDone();
        Rescan result = scan->result();
        if (isDone || reached > result.from) {
            const qsizetype end = isDone ? result.to.value_or(text_.length()) : reached;
            changed_.push_back(TextRange::between(result.from, end));
            tracks_.tracks_[rule].rescanned(std::move(result));
        }
    }

    /// The first place at which a rule has to go on.
    std::optional<qsizetype> firstPlace() const
    {
        std::optional<qsizetype> first;
        for (const auto& scan : scans_) {
            if (scan) {
                first = std::min(scan->place(), first.value_or(scan->place()));
            }
        }
        return first;
    }
    /// The end of a window that begins at `from`: far enough for what is dirty near it, and some units more, within
    /// which most rules meet their old places.
    qsizetype windowEnd(qsizetype from) const
    {
        const ScanSizes& sizes = tracks_.sizes_;
        qsizetype dirtyEnd = from;
        for (const auto& scan : scans_) {
            if (scan && scan->place() - from < sizes.window) {
                dirtyEnd = std::max(dirtyEnd, scan->dirtyEnd());
            }
        }
        return std::min({from + sizes.window, dirtyEnd + 2 * sizes.spacing, text_.length()});
    }

    /// Takes a rule through a window, or past it.
    void goThrough(std::size_t rule, const ScanWindow& window, qsizetype from)
    {
        const qsizetype length = window.end() - from;
        // An attempt that begins here mostly runs out of the window, and is as well made in the next.
        const qsizetype enough = window.endsText() ? window.end() + 1 : window.end() - length / 4;
        qsizetype& inVain = tracks_.tracks_[rule].unitsInVain;
        while (scans_[rule] && scans_[rule]->place() < enough && !isOver()) {
            RuleScan& scan = *scans_[rule];
            const qsizetype before = scan.place();
            if (inVain == 0) {
                scan.advance(window, enough);
                looked_ += window.end() - before;
            } else {
                const qsizetype size = 2 * inVain;
                scan.advance(ScanWindow(text_, before, std::min(before + size, text_.length())), enough);
                looked_ += size;
            }
            if (scan.isDone()) {
                inVain = 0;
                finish(rule);
                begin(rule);
            } else if (scan.place() < enough) {
                inVain = std::max(2 * inVain, length);
            } else {
                inVain = 0;
            }
        }
    }

    RuleTracks& tracks_;
    const TextTree& text_;
    const qsizetype mostUnits_;
    const std::atomic<bool>* const stop_;
    std::vector<std::unique_ptr<RuleScan>> scans_;
    qsizetype looked_ = 0;
    std::vector<TextRange> changed_;
};

std::vector<TextRange> RuleTracks::settle(const TextTree& text, qsizetype mostUnits, const std::atomic<bool>* stop)
{
    return Settling(*this, text, mostUnits, stop).run();
}

} // namespace kelm
