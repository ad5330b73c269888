// Regular expressions in ICU's syntax and with ICU's meaning.
#pragma once

#include <QFlags>
#include <QString>
#include <QStringView>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

struct URegularExpression;

namespace kelm {

/// Why a pattern does not compile.
struct RegularExpressionError
{
    /// ICU's name of the error, such as "U_REGEX_MISMATCHED_PAREN".
    QString name;
    /// Where in the pattern: a UTF-16 offset, or -1 where ICU does not say.
    qsizetype offset = -1;

    friend bool operator==(const RegularExpressionError&, const RegularExpressionError&) = default;
};

/// One match: where it and its capture groups stand in the text, in UTF-16 units.
class RegularExpressionMatch
{
public:
    struct Range
    {
        qsizetype location = -1;
        qsizetype length = 0;

        qsizetype end() const { return location + length; }
        friend bool operator==(Range, Range) = default;
    };

    qsizetype location() const { return ranges_.front().location; }
    qsizetype length() const { return ranges_.front().length; }
    qsizetype end() const { return ranges_.front().end(); }

    /// How many groups the pattern has, the whole match not counted.
    qsizetype groupCount() const { return static_cast<qsizetype>(ranges_.size()) - 1; }
    /// Where a group stands; 0 is the whole match. Absent for a group that took no part and for one that does not
    /// exist.
    std::optional<Range> group(qsizetype number) const;
    /// The text of a group within the text that was searched; null where `group` is absent.
    QStringView groupText(qsizetype number, QStringView text) const;

private:
    friend class RegularExpressionSearch;

    std::vector<Range> ranges_{{}};
};

/// A compiled pattern. Cheap to copy, and safe to use from several threads at once: each search has its own state.
///
/// Texts are read where they stand and never copied; a text of more than 2^31 - 1 units is more than ICU can search and
/// has no match. An unpaired surrogate is a character of its own.
class RegularExpression
{
public:
    /// The numbers are those of the platform's own options.
    enum Option {
        none = 0,
        caseInsensitive = 1,
        /// "." matches line ends as well.
        dotMatchesLineSeparators = 8,
        /// "^" and "$" match at every line.
        anchorsMatchLines = 16,
    };
    Q_DECLARE_FLAGS(Options, Option)

    /// How much work a search may be; 0 is without a bound.
    struct Effort
    {
        /// ICU's steps, 10,000 ways to go back each, for all matches of one search together: some 50 microseconds a
        /// step. What needs no going back costs none.
        int steps = 0;
        /// The memory for going back in one match, in bytes.
        int stackBytes = 0;
    };
    /// For patterns that a person types: a search in which the pattern explodes ends within a quarter of a second or
    /// so.
    static constexpr Effort typedPatternEffort{2500, 64'000'000};

    /// How a search ended.
    enum class Ending {
        complete,
        /// The receiver of the matches had enough.
        stopped,
        /// The bound of the effort was reached, or the text is too long: there may be more matches.
        gaveUp,
    };

    /// Absent where `pattern` does not compile; `error` then says why.
    static std::optional<RegularExpression> compile(QStringView pattern, Options options = none,
                                                    RegularExpressionError* error = nullptr);

    qsizetype groupCount() const { return groupCount_; }

    /// Bounds all later searches.
    void setEffort(Effort effort) { effort_ = effort; }

    /// Hands each match to `found`, in order and none overlapping another, from the offset `from` on. What stands
    /// before `from` is seen by "^", "\b" and what looks behind. `found` returns whether to go on.
    Ending enumerateMatches(QStringView text, qsizetype from,
                            const std::function<bool(const RegularExpressionMatch&)>& found) const;

    std::vector<RegularExpressionMatch> matches(QStringView text, qsizetype from = 0) const;
    std::optional<RegularExpressionMatch> firstMatch(QStringView text, qsizetype from = 0) const;
    /// Whether some place in the text matches.
    bool matchesIn(QStringView text) const { return firstMatch(text).has_value(); }

    /// What `replacement` stands for at `match`: "$n" is the text of group n ("$0" of the whole match, nothing for a
    /// group that took no part or does not exist), and a backslash makes the next character stand for itself. As many
    /// digits count as the highest group has; "$" before no digit is itself.
    QString expandTemplate(QStringView replacement, const RegularExpressionMatch& match, QStringView text) const;
    /// The same for a text that does not stand in one piece: `textOf` gives the text of a range.
    QString expandTemplate(QStringView replacement, const RegularExpressionMatch& match,
                           const std::function<QString(RegularExpressionMatch::Range)>& textOf) const;
    /// The text with each match replaced; `text` itself where the search gave up.
    QString replaceMatches(QStringView text, QStringView replacement) const;

    /// The text as a pattern, or a piece of one, that matches just it.
    static QString escapedPattern(QStringView text);
    /// The text as a template that stands for just it.
    static QString escapedTemplate(QStringView text);

private:
    friend class RegularExpressionSearch;

    explicit RegularExpression(std::shared_ptr<const URegularExpression> compiled);

    std::shared_ptr<const URegularExpression> compiled_;
    qsizetype groupCount_ = 0;
    Effort effort_;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(RegularExpression::Options)

} // namespace kelm
