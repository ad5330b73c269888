// What a scan of a part of a text tells.
#pragma once

#include <QtGlobal>

#include <vector>

namespace kelm {

/// Where one match of a rule stands, in UTF-16 units of the whole text.
struct RuleMatch
{
    qsizetype start = 0;
    qsizetype end = 0;

    friend bool operator==(RuleMatch, RuleMatch) = default;
};

/// Hears of the matches of one rule and of the safe places between its attempts. A place is safe when no attempt lies
/// on both sides of it: a scan that begins there finds the same as one that comes there, and what was found before it
/// depends on nothing that stands more than `margin` units behind it.
class ScanWatcher
{
public:
    /// More than any opener has units, and than a boundary of words looks at. Safe places allow for that much on both
    /// sides, so that attempts need not note it.
    static constexpr qsizetype margin = 16;

    virtual ~ScanWatcher() = default;

    /// All places from `first` to `last` are safe, and `matches` ends before them. Is called for gaps that end at
    /// `awaited` or behind it only. Returns whether the scan is to go on.
    virtual bool foundGap(qsizetype first, qsizetype last) = 0;

    std::vector<RuleMatch> matches;
    qsizetype awaited = 0;
};

} // namespace kelm
