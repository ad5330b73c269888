// All matches of a query in one text, found bit by bit.
#pragma once

#include "text/find/find_query.h"
#include "text/storage/text_range.h"

#include <QStringView>

#include <optional>
#include <vector>

namespace kelm {

/// Goes through a text from its start to its end in steps, so that a window stays alive while a large text is searched,
/// and keeps the matches in order. The text must be the same in all calls; after an edit, begin a new scan.
class FindScan
{
public:
    enum class State {
        searching,
        complete,
        /// `mostMatches` were found; those behind are not counted.
        tooMany,
        /// The pattern takes too long on this text; the matches found so far stand.
        gaveUp,
    };
    static constexpr qsizetype mostMatches = 1'000'000;

    FindScan() : FindScan(FindQuery()) {}
    explicit FindScan(FindQuery query);

    const FindQuery& query() const { return query_; }
    State state() const { return state_; }
    const std::vector<TextRange>& matches() const { return matches_; }
    /// All matches that begin before this offset are known.
    qsizetype searchedTo() const { return searchedTo_; }

    /// Looks at `units` more of the text or somewhat more. A stretch without a match of a regular expression is
    /// searched in one go.
    State advance(QStringView text, qsizetype units);
    /// Looks at the text up to its end.
    State finish(QStringView text);

    /// The number, from 0, of the first match that begins at or behind `offset`, going on at the start of the text if
    /// there is none; nothing without any match. Searches as far as it must.
    std::optional<qsizetype> nextFrom(QStringView text, qsizetype offset);
    /// The number of the last match that ends at or before `offset`, going on at the end of the text if there is none.
    /// An empty match at `offset` itself does not count.
    std::optional<qsizetype> previousFrom(QStringView text, qsizetype offset);
    /// The number of this match, if it is one of those found.
    std::optional<qsizetype> indexOf(TextRange match) const;

private:
    FindQuery query_;
    State state_ = State::searching;
    std::vector<TextRange> matches_;
    qsizetype searchedTo_ = 0;
};

} // namespace kelm
