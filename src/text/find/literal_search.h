// Finds a text within a text.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QString>
#include <QStringView>

#include <functional>
#include <optional>
#include <vector>

namespace kelm {

/// Finds the places of one text in others, in a time linear in them whatever the two hold.
///
/// Units are compared as they are, or by their simple case folding, unit for unit: a match is as long as what was
/// looked for, so that "ß" is not found by "SS", and letters beyond the basic plane match in their own case alone.
/// Nothing is normalised.
class LiteralSearch
{
public:
    enum class Case { matters, isIgnored };
    enum class Words { partsToo, wholeOnly };

    LiteralSearch(QStringView wanted, Case letterCase, Words words);

    qsizetype length() const { return qsizetype(wanted_.size()); }

    /// The first match that lies within `range` of the text. Of a match of whole words, no word goes on over its start
    /// or its end; what stands outside the range counts for that.
    std::optional<TextRange> find(QStringView text, TextRange range) const;

    /// Hands the matches that lie within `range` on to `found`, in order and none overlapping another, for as long as
    /// it returns true. The pieces of the text are looked at where they stand. False when `found` ended it.
    bool enumerate(const TextTree& text, TextRange range, const std::function<bool(TextRange)>& found) const;

    /// How many units on each side of a match say whether it is one.
    static constexpr qsizetype context = 2;

    /// A place at or before `offset` that no place where the wanted text stands goes over, so that a search from there
    /// finds what one from the start of the text finds behind it. Looks at `furthest` units before the offset or
    /// somewhat more; absent where one place runs over into the next all that way.
    std::optional<qsizetype> restartBefore(const TextTree& text, qsizetype offset, qsizetype furthest) const;

private:
    enum class Overlapping { no, yes };
    template <typename Use>
    auto withFolding(Use use) const;
    template <typename Fold>
    qsizetype behindNext(QStringView units, qsizetype at, std::size_t& matched, Fold fold) const;
    bool enumerate(const TextTree& text, TextRange range, Overlapping overlapping,
                   const std::function<bool(TextRange)>& found) const;
    template <typename IsInside>
    bool isAccepted(TextRange match, IsInside isInside) const;

    std::vector<char16_t> wanted_;
    /// For each beginning of what is wanted, the length of the longest shorter beginning that it ends with.
    std::vector<size_t> fallbacks_;
    Case case_;
    Words words_;
};

} // namespace kelm
