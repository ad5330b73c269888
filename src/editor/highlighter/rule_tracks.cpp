#include "editor/highlighter/rule_tracks.h"

#include <algorithm>

namespace kelm {

RuleTracks::RuleTracks(RuleList rules, ScanSizes sizes) : sizes_(sizes), tracks_(rules.size())
{
    auto made = std::make_shared<std::vector<Rule>>(rules.size());
    for (std::size_t i = 0; i < rules.size(); ++i) {
        Rule& rule = (*made)[i];
        rule.pattern = rules[i].patternText();
        rule.scanner = scannerFor(rule.pattern, rules[i].options);
        if (!rule.scanner) {
            rule.expression = RegularExpression::compile(rule.pattern, rules[i].options);
        }
    }
    rules_ = std::move(made);
}

void RuleTracks::reset(qsizetype length)
{
    for (RuleTrack& track : tracks_) {
        track.reset(length);
    }
}

void RuleTracks::textReplaced(TextRange range, qsizetype newLength)
{
    for (RuleTrack& track : tracks_) {
        track.textReplaced(range, newLength);
    }
}

bool RuleTracks::isSettled() const
{
    return std::all_of(tracks_.begin(), tracks_.end(), [](const RuleTrack& track) { return track.isSettled(); });
}

qsizetype RuleTracks::keptBytes() const
{
    qsizetype bytes = 0;
    for (const RuleTrack& track : tracks_) {
        bytes += track.keptBytes();
    }
    return bytes;
}

} // namespace kelm
