#include "text/find/find_query.h"

#include "text/find/replaced_text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kelm {
namespace {

/// A pattern may take as much effort for each stretch of this many units as is a typed pattern's.
constexpr qsizetype unitsOfEffort = 1 << 20;

struct NamedError
{
    const char* name;
    const char* message;
};

/// What ICU's errors say to a person.
constexpr std::array<NamedError, 16> patternErrors{{
    {"U_REGEX_RULE_SYNTAX", "Syntax error in the pattern"},
    {"U_REGEX_BAD_ESCAPE_SEQUENCE", "Unknown escape sequence"},
    {"U_REGEX_PROPERTY_SYNTAX", "Unknown character property"},
    {"U_REGEX_UNIMPLEMENTED", "This kind of pattern is not supported"},
    {"U_REGEX_MISMATCHED_PAREN", "Unbalanced parentheses"},
    {"U_REGEX_NUMBER_TOO_BIG", "A number is too large"},
    {"U_REGEX_BAD_INTERVAL", "Error in a {min,max} interval"},
    {"U_REGEX_MAX_LT_MIN", "In a {min,max} interval, max is less than min"},
    {"U_REGEX_INVALID_BACK_REF", "Reference to a group that does not exist"},
    {"U_REGEX_INVALID_FLAG", "Unknown flag"},
    {"U_REGEX_LOOK_BEHIND_LIMIT", "What is looked behind for must be bounded in length"},
    {"U_REGEX_SET_CONTAINS_STRING", "A set cannot hold whole texts"},
    {"U_REGEX_MISSING_CLOSE_BRACKET", "A bracket is not closed"},
    {"U_REGEX_INVALID_RANGE", "In a range, the last character comes before the first"},
    {"U_REGEX_PATTERN_TOO_BIG", "The pattern is too long"},
    {"U_REGEX_INVALID_CAPTURE_GROUP_NAME", "Invalid group name"},
}};

FindError findError(const RegularExpressionError& error)
{
    const auto known = std::find_if(patternErrors.begin(), patternErrors.end(), [&error](const NamedError& named) {
        return error.name == QLatin1StringView(named.name);
    });
    const char* message = known != patternErrors.end() ? known->message : "The pattern is not valid";
    return {QString::fromLatin1(message), error.offset};
}

/// The pattern for whole words. It asks what `isInsideWord` asks, at both ends, and so lets the pattern look for
/// another way to match where the first one would end within a word. `end` ends what the pattern may have left open.
QString wholeWordPattern(const QString& pattern, const QString& end)
{
    return QStringLiteral("(?:(?<!\\w)|(?!\\w))(?:") + pattern + end + QStringLiteral(")(?:(?!\\w)|(?<!\\w))");
}

/// Compiles a pattern that is one by itself as that for whole words.
std::optional<RegularExpression> compileWholeWords(const QString& pattern, RegularExpression::Options flags,
                                                   RegularExpressionError* error)
{
    std::optional<RegularExpression> expression;
    // It may end in a comment, which a line end ends, or in a quotation that was left open.
    for (const QString& end : {QString(), QStringLiteral("\n"), QStringLiteral("\\E")}) {
        expression = RegularExpression::compile(wholeWordPattern(pattern, end), flags, error);
        if (expression) {
            break;
        }
    }
    return expression;
}

FindQuery::Ending endingOf(RegularExpression::Ending ending)
{
    switch (ending) {
    case RegularExpression::Ending::stopped:
        return FindQuery::Ending::stopped;
    case RegularExpression::Ending::gaveUp:
        return FindQuery::Ending::gaveUp;
    case RegularExpression::Ending::complete:
        break;
    }
    return FindQuery::Ending::complete;
}

TextRange rangeOf(const RegularExpressionMatch& match)
{
    return {match.location(), match.length()};
}

} // namespace

std::variant<FindQuery, FindError> FindQuery::compile(const QString& text, FindOptions options)
{
    if (text.isEmpty()) {
        return FindQuery();
    }
    if (options.regularExpression) {
        return compilePattern(text, options);
    }
    using Case = LiteralSearch::Case;
    using Words = LiteralSearch::Words;
    FindQuery query;
    query.literal_ = std::make_shared<LiteralSearch>(text, options.caseSensitive ? Case::matters : Case::isIgnored,
                                                     options.wholeWord ? Words::wholeOnly : Words::partsToo);
    return query;
}

std::variant<FindQuery, FindError> FindQuery::compilePattern(const QString& pattern, FindOptions options)
{
    RegularExpression::Options flags = RegularExpression::anchorsMatchLines;
    flags.setFlag(RegularExpression::caseInsensitive, !options.caseSensitive);
    RegularExpressionError error;
    // As it was typed, for errors with the right place in them.
    auto expression = RegularExpression::compile(pattern, flags, &error);
    if (expression && options.wholeWord) {
        expression = compileWholeWords(pattern, flags, &error);
    }
    if (!expression) {
        return findError(error);
    }
    expression->setEffort(RegularExpression::typedPatternEffort);
    FindQuery query;
    query.expression_ = std::make_shared<RegularExpression>(*std::move(expression));
    return query;
}

FindQuery::Ending FindQuery::enumerate(const TextTree& text, qsizetype from, qsizetype end,
                                       const std::function<bool(TextRange)>& found) const
{
    if (literal_) {
        const bool isThrough = literal_->enumerate(text, TextRange::between(std::min(from, end), end), found);
        return isThrough ? Ending::complete : Ending::stopped;
    }
    if (!expression_) {
        return Ending::complete;
    }
    const auto search = patternSearch(text, from);
    while (const RegularExpressionMatch* match = search->next()) {
        if (!found(rangeOf(*match))) {
            return Ending::stopped;
        }
    }
    return endingOf(search->ending());
}

std::unique_ptr<RegularExpressionSearch> FindQuery::patternSearch(QStringView text, qsizetype from) const
{
    auto search = std::make_unique<RegularExpressionSearch>(*expression_, text, from);
    search->renewEffortEach(unitsOfEffort);
    return search;
}

std::unique_ptr<RegularExpressionSearch> FindQuery::patternSearch(const TextTree& text, qsizetype from) const
{
    const PiecedText pieces{text.length(), [text](qsizetype start, qsizetype count) {
                                return text.substring({start, count});
                            }};
    auto search = std::make_unique<RegularExpressionSearch>(*expression_, pieces, from);
    search->renewEffortEach(unitsOfEffort);
    return search;
}

qsizetype FindQuery::behind(const TextTree& text, TextRange match)
{
    const qsizetype end = match.end();
    if (!match.isEmpty()) {
        return end;
    }
    return end + (text.at(end).isHighSurrogate() && text.at(end + 1).isLowSurrogate() ? 2 : 1);
}

qsizetype FindQuery::reach() const
{
    return literal_ ? literal_->length() : 0;
}

std::optional<QString> FindQuery::replacementFor(const TextTree& text, TextRange match, QStringView replacement) const
{
    if (match.end() > text.length()) {
        return {};
    }
    if (literal_) {
        bool isMatch = false;
        literal_->enumerate(text, match, [&](TextRange found) {
            isMatch = found == match;
            return false;
        });
        return isMatch ? std::optional(replacement.toString()) : std::nullopt;
    }
    if (expression_) {
        const auto search = patternSearch(text, match.location);
        // A match that begins behind it is another one.
        search->setInterruption([&](int, qsizetype reached) { return reached > match.end() + 1; });
        const RegularExpressionMatch* found = search->next();
        if (found != nullptr && rangeOf(*found) == match) {
            return expression_->expandTemplate(replacement, *found, [&text](RegularExpressionMatch::Range range) {
                return text.substring({range.location, range.length});
            });
        }
    }
    return {};
}

ReplaceAllResult FindQuery::replaceAll(const TextTree& text, QStringView replacement, qsizetype longest,
                                       const std::atomic<bool>* stop) const
{
    ReplacedText replaced(text, longest);
    const auto isStopped = [stop] { return stop != nullptr && *stop; };
    Ending ending = Ending::complete;
    if (expression_) {
        // What a pattern looks at again and again is quicker in one piece.
        const QString whole = text.toString();
        const auto search = patternSearch(whole, 0);
        if (stop != nullptr) {
            search->setInterruption([stop](int, qsizetype) { return stop->load(); });
        }
        const RegularExpressionMatch* match = nullptr;
        bool goesOn = true;
        while (goesOn && (match = search->next()) != nullptr) {
            goesOn =
                !isStopped() && replaced.add(rangeOf(*match), expression_->expandTemplate(replacement, *match, whole));
        }
        ending = goesOn ? endingOf(search->ending()) : Ending::stopped;
    } else {
        ending = enumerate(text, 0, text.length(),
                           [&](TextRange match) { return !isStopped() && replaced.add(match, replacement); });
    }
    ReplaceAllResult result;
    if (ending != Ending::complete) {
        result.outcome =
            ending == Ending::gaveUp ? ReplaceAllResult::Outcome::gaveUp : ReplaceAllResult::Outcome::tooLong;
    } else if (replaced.count() > 0) {
        result = {ReplaceAllResult::Outcome::replaced, replaced.range(), replaced.take(), replaced.count()};
    }
    return result;
}

} // namespace kelm
