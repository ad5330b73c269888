// What a person looks for in a text.
#pragma once

#include "platform/text/regular_expression_search.h"
#include "text/find/literal_search.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QString>
#include <QStringView>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

namespace kelm {

struct FindOptions
{
    bool caseSensitive = false;
    bool wholeWord = false;
    bool regularExpression = false;

    friend bool operator==(FindOptions, FindOptions) = default;
};

/// Why a pattern cannot be looked for.
struct FindError
{
    /// A sentence for the person who typed the pattern.
    QString message;
    /// Where in the pattern, a UTF-16 offset, or -1 if that is not known.
    qsizetype offset = -1;

    friend bool operator==(const FindError&, const FindError&) = default;
};

/// Replaces all matches in a text by one edit.
struct ReplaceAllResult
{
    enum class Outcome {
        replaced,
        nothingFound,
        /// The pattern takes too long on this text; nothing is to be replaced.
        gaveUp,
        /// What goes there would be too long.
        tooLong,
    };
    Outcome outcome = Outcome::nothingFound;
    /// From the first match's start to the last one's end.
    TextRange range;
    /// What goes there. It shares with the text that was searched what stands in long stretches between matches.
    TextTree text;
    qsizetype count = 0;
};

/// A compiled search. Cheap to copy. The empty text finds nothing, as does a query that was made without one.
///
/// A text is looked for as `LiteralSearch` says. A regular expression has ICU's syntax, and "^" and "$" match at every
/// line; an empty match counts, and the search goes on one character further. Its effort is bounded, so that no pattern
/// keeps the program from answering. Whole words: no word goes on over a match's start or end.
///
/// All functions are linear in the text but for what a pattern itself makes of it.
class FindQuery
{
public:
    /// 512 Mi units.
    static constexpr qsizetype longestReplacement = qsizetype(1) << 29;

    enum class Ending {
        complete,
        /// The receiver had enough.
        stopped,
        /// The pattern takes too long on this text; there may be more matches.
        gaveUp,
    };

    FindQuery() = default;

    /// A query, or why there is none. Only regular expressions fail.
    static std::variant<FindQuery, FindError> compile(const QString& text, FindOptions options);

    bool isEmpty() const { return !literal_ && !expression_; }

    /// Whether a pattern is looked for, which may look anywhere in the text for each match.
    bool isPattern() const { return expression_ != nullptr; }

    /// Hands the matches from the offset `from` on to `found`, in order and none overlapping another, for as long as it
    /// returns true. What stands before `from` is seen by what looks behind.
    ///
    /// Matches of a plain text that end behind `end` are not looked for; a pattern looks at the whole text.
    Ending enumerate(const TextTree& text, qsizetype from, qsizetype end,
                     const std::function<bool(TextRange)>& found) const;

    /// A search for the matches of a pattern in a text that stands in one piece and must outlive it.
    std::unique_ptr<RegularExpressionSearch> patternSearch(QStringView text, qsizetype from) const;
    /// The same in a text as it stands, of which the search keeps a snapshot.
    std::unique_ptr<RegularExpressionSearch> patternSearch(const TextTree& text, qsizetype from) const;

    /// The plain text that is looked for; null for a pattern and for a query that finds nothing.
    const LiteralSearch* literal() const { return literal_.get(); }

    /// Where to go on behind a match.
    static qsizetype behind(const TextTree& text, TextRange match);

    /// How many units behind a place a match that begins there must be looked for.
    qsizetype reach() const;

    /// What the match is replaced by: `replacement` itself for a plain text; for a pattern, with "$1" for what its
    /// first group matched, "$0" for the whole match, and a backslash before what stands for itself. Nothing if `match`
    /// is not a match of the text as it is.
    std::optional<QString> replacementFor(const TextTree& text, TextRange match, QStringView replacement) const;

    /// All replacements of a text as one, up to `longest` units in all. For a pattern the whole text is copied while it
    /// is searched. Ends early, with whatever outcome, once `stop` is set. Any thread.
    ReplaceAllResult replaceAll(const TextTree& text, QStringView replacement, qsizetype longest = longestReplacement,
                                const std::atomic<bool>* stop = nullptr) const;

private:
    static std::variant<FindQuery, FindError> compilePattern(const QString& pattern, FindOptions options);

    // One of the two, or none; shared between copies.
    std::shared_ptr<const LiteralSearch> literal_;
    std::shared_ptr<const RegularExpression> expression_;
};

} // namespace kelm
