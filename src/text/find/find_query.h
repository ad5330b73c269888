// What a person looks for in a text.
#pragma once

#include "platform/text/regular_expression.h"
#include "text/find/literal_search.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QString>
#include <QStringView>

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
    /// What goes there.
    QString text;
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

    /// Hands the matches from the offset `from` on to `found`, in order and none overlapping another, for as long as it
    /// returns true. What stands before `from` is seen by what looks behind.
    ///
    /// Matches of a plain text that end behind `end` are not looked for; a pattern looks at the whole text.
    Ending enumerate(QStringView text, qsizetype from, qsizetype end,
                     const std::function<bool(TextRange)>& found) const;

    /// Where to go on behind a match.
    static qsizetype behind(QStringView text, TextRange match);
    static qsizetype behind(const TextTree& text, TextRange match);

    /// How many units behind a place a match that begins there must be looked for.
    qsizetype reach() const;

    /// What the match is replaced by: `replacement` itself for a plain text; for a pattern, with "$1" for what its
    /// first group matched, "$0" for the whole match, and a backslash before what stands for itself. Nothing if `match`
    /// is not a match of the text as it is.
    std::optional<QString> replacementFor(QStringView text, TextRange match, QStringView replacement) const;

    /// All replacements of a text as one, up to `longest` units in all.
    ReplaceAllResult replaceAll(QStringView text, QStringView replacement,
                                qsizetype longest = longestReplacement) const;

private:
    static std::variant<FindQuery, FindError> compilePattern(const QString& pattern, FindOptions options);

    // One of the two, or none; shared between copies.
    std::shared_ptr<const LiteralSearch> literal_;
    std::shared_ptr<const RegularExpression> expression_;
};

} // namespace kelm
