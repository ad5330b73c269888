// Finds a text within a text.
#pragma once

#include "text/storage/text_range.h"

#include <QString>
#include <QStringView>

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

private:
    template <typename Fold>
    std::optional<TextRange> find(QStringView text, TextRange range, Fold fold) const;
    bool isAccepted(QStringView text, TextRange match) const;

    std::vector<char16_t> wanted_;
    /// For each beginning of what is wanted, the length of the longest shorter beginning that it ends with.
    std::vector<size_t> fallbacks_;
    Case case_;
    Words words_;
};

} // namespace kelm
