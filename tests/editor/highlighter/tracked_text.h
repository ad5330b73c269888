// A text whose colours are kept by tracks, beside what they must be.
#pragma once

#include "editor/highlighter/rule_painting.h"
#include "editor/highlighter/rule_tracks.h"
#include "support/random_text.h"

#include <QString>

#include <vector>

namespace kelm::test {

/// The parts of the runs that lie in a range.
std::vector<ColorRun> cut(const std::vector<ColorRun>& runs, TextRange range);
/// Printable, whatever units it has.
QString shown(QStringView text);

/// A text, its tracks, and what is on the screen of it: the colours of the last settled text, where edits have not
/// replaced it. Each rule has a colour of its own.
class TrackedText
{
public:
    TrackedText(RuleList list, const QString& initial, ScanSizes sizes = {});

    void replace(TextRange range, const QString& replacement);
    void settle(qsizetype mostUnits = RuleTracks::unlimited);

    std::vector<ColorRun> colorsIn(TextRange range) const { return tracks.colorsIn(tree, range, colors_); }
    /// Those of the whole text, painted in one pass.
    std::vector<ColorRun> expected() const;
    /// What is wrong of the settled tracks, or nothing.
    QString fault(RandomText& random);

    QString text;
    TextTree tree;
    RuleTracks tracks;

private:
    std::vector<HighlightRule> rules_;
    std::vector<QRgb> colors_;
    /// One colour a unit, 0 where anything may be.
    std::vector<QRgb> shown_;
    bool areRangesInOrder_ = true;
};

} // namespace kelm::test
