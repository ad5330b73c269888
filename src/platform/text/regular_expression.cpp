#include "platform/text/regular_expression.h"

#include "platform/text/regular_expression_search.h"

#include <unicode/uregex.h>

#include <algorithm>
#include <limits>

namespace kelm {

namespace {

constexpr qsizetype longestText = std::numeric_limits<int32_t>::max();

struct Close
{
    void operator()(const URegularExpression* expression) const
    {
        uregex_close(const_cast<URegularExpression*>(expression));
    }
};

uint32_t icuFlags(RegularExpression::Options options)
{
    uint32_t flags = 0;
    if (options & RegularExpression::caseInsensitive) {
        flags |= UREGEX_CASE_INSENSITIVE;
    }
    if (options & RegularExpression::dotMatchesLineSeparators) {
        flags |= UREGEX_DOTALL;
    }
    if (options & RegularExpression::anchorsMatchLines) {
        flags |= UREGEX_MULTILINE;
    }
    return flags;
}

bool isAsciiDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// How many digits the number of the highest group has.
int digitsOfHighestGroup(qsizetype groupCount)
{
    int digits = 1;
    while (groupCount >= 10) {
        groupCount /= 10;
        ++digits;
    }
    return digits;
}

QString withBackslashes(QStringView text, QStringView special)
{
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar character : text) {
        if (special.contains(character)) {
            escaped += u'\\';
        }
        escaped += character;
    }
    return escaped;
}

} // namespace

std::optional<RegularExpressionMatch::Range> RegularExpressionMatch::group(qsizetype number) const
{
    if (number < 0 || number > groupCount() || ranges_[static_cast<std::size_t>(number)].location < 0) {
        return {};
    }
    return ranges_[static_cast<std::size_t>(number)];
}

QStringView RegularExpressionMatch::groupText(qsizetype number, QStringView text) const
{
    const std::optional<Range> range = group(number);
    return range ? text.sliced(range->location, range->length) : QStringView();
}

RegularExpression::RegularExpression(std::shared_ptr<const URegularExpression> compiled)
    : compiled_(std::move(compiled))
{}

std::optional<RegularExpression> RegularExpression::compile(QStringView pattern, Options options,
                                                            RegularExpressionError* error)
{
    // ICU takes an empty pattern for an error; "(?:)" is a pattern that matches the empty text everywhere, as it
    // should.
    const QStringView source = pattern.isEmpty() ? QStringView(u"(?:)") : pattern;
    UErrorCode status = source.size() > longestText ? U_REGEX_PATTERN_TOO_BIG : U_ZERO_ERROR;
    UParseError place{};
    place.offset = -1;
    place.line = 0;
    std::shared_ptr<const URegularExpression> compiled(
        uregex_open(source.utf16(), static_cast<int32_t>(source.size()), icuFlags(options), &place, &status), Close());
    if (U_FAILURE(status)) {
        if (error) {
            // ICU counts lines of the pattern from 1 and gives the offset within the line; that of the pattern's end
            // may be one more.
            const qsizetype offset = std::min(qsizetype(place.offset), pattern.size());
            *error = {QString::fromLatin1(u_errorName(status)), place.line <= 1 ? offset : -1};
        }
        return {};
    }
    RegularExpression expression(std::move(compiled));
    UErrorCode countStatus = U_ZERO_ERROR;
    expression.groupCount_ =
        uregex_groupCount(const_cast<URegularExpression*>(expression.compiled_.get()), &countStatus);
    return expression;
}

RegularExpression::Ending
RegularExpression::enumerateMatches(QStringView text, qsizetype from,
                                    const std::function<bool(const RegularExpressionMatch&)>& found) const
{
    RegularExpressionSearch search(*this, text, from);
    while (const RegularExpressionMatch* match = search.next()) {
        if (!found(*match)) {
            return Ending::stopped;
        }
    }
    return search.ending();
}

std::vector<RegularExpressionMatch> RegularExpression::matches(QStringView text, qsizetype from) const
{
    std::vector<RegularExpressionMatch> all;
    enumerateMatches(text, from, [&](const RegularExpressionMatch& match) {
        all.push_back(match);
        return true;
    });
    return all;
}

std::optional<RegularExpressionMatch> RegularExpression::firstMatch(QStringView text, qsizetype from) const
{
    std::optional<RegularExpressionMatch> first;
    enumerateMatches(text, from, [&](const RegularExpressionMatch& match) {
        first = match;
        return false;
    });
    return first;
}

QString RegularExpression::expandTemplate(QStringView replacement, const RegularExpressionMatch& match,
                                          QStringView text) const
{
    return expandTemplate(replacement, match, [text](RegularExpressionMatch::Range range) {
        return text.sliced(range.location, range.length).toString();
    });
}

QString RegularExpression::expandTemplate(QStringView replacement, const RegularExpressionMatch& match,
                                          const std::function<QString(RegularExpressionMatch::Range)>& textOf) const
{
    const int mostDigits = digitsOfHighestGroup(groupCount_);
    QString expanded;
    for (qsizetype i = 0; i < replacement.size();) {
        const QChar character = replacement[i++];
        if (character == u'\\' && i < replacement.size()) {
            expanded += replacement[i++];
        } else if (character == u'$' && i < replacement.size() && isAsciiDigit(replacement[i])) {
            qsizetype group = 0;
            for (int digit = 0; digit < mostDigits && i < replacement.size() && isAsciiDigit(replacement[i]); ++digit) {
                group = group * 10 + (replacement[i++].unicode() - u'0');
            }
            if (const auto range = match.group(group)) {
                expanded += textOf(*range);
            }
        } else {
            expanded += character;
        }
    }
    return expanded;
}

QString RegularExpression::replaceMatches(QStringView text, QStringView replacement) const
{
    QString result;
    result.reserve(text.size());
    qsizetype copied = 0;
    const Ending ending = enumerateMatches(text, 0, [&](const RegularExpressionMatch& match) {
        result += text.sliced(copied, match.location() - copied);
        result += expandTemplate(replacement, match, text);
        copied = match.end();
        return true;
    });
    if (ending == Ending::gaveUp) {
        return text.toString();
    }
    result += text.sliced(copied);
    return result;
}

QString RegularExpression::escapedPattern(QStringView text)
{
    // "#" and white space count only in patterns with comments, which no option here switches on.
    return withBackslashes(text, u"\\^$.|?*+()[]{}-&");
}

QString RegularExpression::escapedTemplate(QStringView text)
{
    return withBackslashes(text, u"\\$");
}

} // namespace kelm
