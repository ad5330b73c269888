// The colours of a text, kept right by work in proportion to its edits.
#pragma once

#include "editor/highlighter/pattern_scanner.h"
#include "editor/highlighter/rule_lists.h"
#include "editor/highlighter/rule_track.h"
#include "platform/text/regular_expression.h"
#include "text/storage/color_runs.h"
#include "text/storage/text_tree.h"

#include <QRgb>

#include <atomic>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace kelm {

/// Where each rule of a list may begin again in one text. Neither matches nor colours of the whole text are kept: those
/// of a range are found when they are asked for, by scans that begin at the last safe place before it. An edit makes
/// what is around it dirty, and settling scans just that again, as far as the edit reaches.
///
/// A value: a copy may settle on another thread, with a snapshot of the text. The rules are looked at when it is made,
/// and shared by its copies. A few bytes in a thousand of the text are kept for each rule.
class RuleTracks
{
public:
    static constexpr qsizetype unlimited = std::numeric_limits<qsizetype>::max();

    /// Of an empty text. A rule whose pattern does not compile is left out without a word.
    explicit RuleTracks(RuleList rules, ScanSizes sizes = {});

    /// Another text: everything is dirty.
    void reset(qsizetype length);
    /// One replacement in the text. Each has to be told, in their order.
    void textReplaced(TextRange range, qsizetype newLength);

    bool isSettled() const;
    /// Makes the dirty stretches of `text`, the text after all replacements told, good. Ends early, with what has been
    /// reached kept, when all rules together have looked at `mostUnits` units or somewhat more, or when `stop` becomes
    /// true. A stretch of one rule that has no safe place in it is made good as a whole: while it is longer than the
    /// rest of the units, each call tries twice as much of it, so that calling again gets to an end.
    ///
    /// Returns the ranges, in order, outside of which no match has changed.
    std::vector<TextRange> settle(const TextTree& text, qsizetype mostUnits = unlimited,
                                  const std::atomic<bool>* stop = nullptr);

    /// The runs of a range, of which neighbours differ in colour; `colors` is that of the text and then that of each
    /// rule. They are those that painting the whole text would give, when the tracks are settled. Otherwise they are a
    /// guess, for which each rule begins at a known place near before the range, or at a line there. A guess or not,
    /// nothing is looked at but the range and some tens of thousands of units around it.
    std::vector<ColorRun> colorsIn(const TextTree& text, TextRange range, std::span<const QRgb> colors) const;

    /// What is kept beside the object itself, in bytes; for tests and benchmarks.
    qsizetype keptBytes() const;

private:
    struct Rule
    {
        /// The scanner has views into it.
        QString pattern;
        std::optional<PatternScanner> scanner;
        /// For a pattern without a scanner, which is matched over the whole text.
        std::optional<RegularExpression> expression;
    };

    class Settling;
    class Painting;

    ScanSizes sizes_;
    std::shared_ptr<const std::vector<Rule>> rules_;
    std::vector<RuleTrack> tracks_;
};

} // namespace kelm
