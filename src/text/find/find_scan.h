// All matches of a query in one text, found bit by bit and carried over its edits.
#pragma once

#include "text/find/find_query.h"
#include "text/find/find_run.h"
#include "text/find/match_list.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <optional>
#include <vector>

namespace kelm {

/// Goes through a text from its start to its end in steps, so that a window stays alive while a large text is searched,
/// and keeps the matches in order. What the steps find may come from another thread. The text must be the same in all
/// calls but for the edits that the scan is told of.
///
/// An edit moves the matches behind it. Of a plain text those that it can have changed are searched anew, and no
/// others. A pattern may look anywhere: its matches are presumed to stand as they stood, and are searched anew from the
/// start of the text.
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
    /// Those that begin before `searchedTo`, and behind them those that are presumed.
    const MatchList& matches() const { return matches_; }
    /// All matches that begin before this offset are known.
    qsizetype searchedTo() const { return searchedTo_; }

    /// Looks at `units` more of the text or somewhat more. A stretch without a match of a regular expression is
    /// searched in one go.
    State advance(const TextTree& text, qsizetype units);
    /// Looks at the text up to its end.
    State finish(const TextTree& text);
    /// Looks for a pattern up to the text's end, but at no more than so many places in it; a place at which the pattern
    /// takes long counts for several.
    State tryPattern(const TextTree& text, qsizetype mostPlaces);
    /// Takes in what a run from `searchedTo` on has found.
    void take(const FindRun::Portion& portion);
    /// Presumes that these are the matches that begin within a range, as far as they are not known.
    void presume(TextRange range, const std::vector<TextRange>& matches);
    /// Carries the scan over an edit; `text` is that behind it. Searches a plain text for a few 100,000 units at most:
    /// where more has changed what stands behind is not known any more.
    void edited(const TextTree& text, const TextEdit& edit);

    /// The matches that meet `range`. Those of a plain text are looked for at the place where they are not known.
    std::vector<TextRange> matchesIn(const TextTree& text, TextRange range) const;

    /// The number, from 0, of the first match that begins at or behind `offset`, going on at the start of the text if
    /// there is none; nothing without any match. Searches as far as it must.
    std::optional<qsizetype> nextFrom(const TextTree& text, qsizetype offset);
    /// The number of the last match that ends at or before `offset`, going on at the end of the text if there is none.
    /// An empty match at `offset` itself does not count.
    std::optional<qsizetype> previousFrom(const TextTree& text, qsizetype offset);
    /// Whether these two find without any search.
    bool knowsNextFrom(qsizetype offset) const;
    bool knowsPreviousFrom(qsizetype offset) const;
    /// The number of this match, if it is one of those found or presumed.
    std::optional<qsizetype> indexOf(TextRange match) const;

private:
    /// The number of the last known match before an offset, as `previousFrom` takes it.
    std::optional<qsizetype> lastBefore(qsizetype offset) const;
    void add(const std::vector<TextRange>& found, qsizetype searchedTo);
    void endAs(State state);
    void editedPlainText(const TextTree& text, const TextEdit& edit);
    void forgetFrom(qsizetype index, qsizetype searchedTo);

    FindQuery query_;
    State state_ = State::searching;
    MatchList matches_;
    /// How many matches begin before `searchedTo_`.
    qsizetype known_ = 0;
    qsizetype searchedTo_ = 0;
};

} // namespace kelm
