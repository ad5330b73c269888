#include "text/find/find_query.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kelm {
namespace {

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
/// another way to match where the first one would end within a word.
QString wholeWordPattern(const QString& pattern, const QString& end)
{
    return QStringLiteral("(?:(?<!\\w)|(?!\\w))(?:") + pattern + end + QStringLiteral(")(?:(?!\\w)|(?<!\\w))");
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
        expression = RegularExpression::compile(wholeWordPattern(pattern, QString()), flags, &error);
        if (!expression) {
            // It ends in a comment, which a line end ends.
            expression = RegularExpression::compile(wholeWordPattern(pattern, QStringLiteral("\n")), flags, &error);
        }
    }
    if (!expression) {
        return findError(error);
    }
    expression->setEffort(RegularExpression::typedPatternEffort);
    FindQuery query;
    query.expression_ = std::make_shared<RegularExpression>(*std::move(expression));
    return query;
}

FindQuery::Ending FindQuery::enumerate(QStringView text, qsizetype from, qsizetype end,
                                       const std::function<bool(TextRange)>& found) const
{
    if (literal_) {
        while (const auto match = literal_->find(text, TextRange::between(std::min(from, end), end))) {
            if (!found(*match)) {
                return Ending::stopped;
            }
            from = match->end();
        }
        return Ending::complete;
    }
    if (expression_) {
        return endingOf(expression_->enumerateMatches(
            text, from, [&found](const RegularExpressionMatch& match) { return found(rangeOf(match)); }));
    }
    return Ending::complete;
}

qsizetype FindQuery::behind(QStringView text, TextRange match)
{
    const qsizetype end = match.end();
    if (!match.isEmpty()) {
        return end;
    }
    const bool isPair = end + 1 < text.size() && text[end].isHighSurrogate() && text[end + 1].isLowSurrogate();
    return end + (isPair ? 2 : 1);
}

qsizetype FindQuery::behind(const TextTree& text, TextRange match)
{
    const qsizetype end = match.end();
    return match.isEmpty() ? end + behind(text.substring({end, 2}), {}) : end;
}

qsizetype FindQuery::reach() const
{
    return literal_ ? literal_->length() : 0;
}

std::optional<QString> FindQuery::replacementFor(QStringView text, TextRange match, QStringView replacement) const
{
    if (match.end() > text.size()) {
        return {};
    }
    if (literal_) {
        return literal_->find(text, match) == match ? std::optional(replacement.toString()) : std::nullopt;
    }
    if (expression_) {
        const auto found = expression_->firstMatch(text, match.location);
        if (found && rangeOf(*found) == match) {
            return expression_->expandTemplate(replacement, *found, text);
        }
    }
    return {};
}

ReplaceAllResult FindQuery::replaceAll(QStringView text, QStringView replacement, qsizetype longest) const
{
    ReplaceAllResult result;
    const auto add = [&](TextRange match, QStringView with) {
        if (result.count++ == 0) {
            result.range = match;
        }
        const qsizetype kept = std::max<qsizetype>(match.location - result.range.end(), 0);
        if (kept + with.size() > longest - result.text.size()) {
            return false;
        }
        result.text += text.sliced(result.range.end(), kept);
        result.text += with;
        result.range.length = match.end() - result.range.location;
        return true;
    };
    Ending ending = Ending::complete;
    if (expression_) {
        ending = endingOf(expression_->enumerateMatches(text, 0, [&](const RegularExpressionMatch& match) {
            return add(rangeOf(match), expression_->expandTemplate(replacement, match, text));
        }));
    } else {
        ending = enumerate(text, 0, text.size(), [&](TextRange match) { return add(match, replacement); });
    }
    if (ending != Ending::complete) {
        const auto outcome =
            ending == Ending::gaveUp ? ReplaceAllResult::Outcome::gaveUp : ReplaceAllResult::Outcome::tooLong;
        return {outcome, {}, {}, 0};
    }
    result.outcome = result.count > 0 ? ReplaceAllResult::Outcome::replaced : ReplaceAllResult::Outcome::nothingFound;
    return result;
}

} // namespace kelm
