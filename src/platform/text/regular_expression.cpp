#include "platform/text/regular_expression.h"

#include <unicode/uregex.h>

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
            // ICU counts lines of the pattern from 1 and gives the offset within the line.
            *error = {QString::fromLatin1(u_errorName(status)), place.line <= 1 ? place.offset : -1};
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
    if (text.size() > longestText) {
        return Ending::gaveUp;
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<URegularExpression, Close> search(uregex_clone(compiled_.get(), &status));
    const char16_t* units = text.isEmpty() ? u"" : text.utf16();
    uregex_setText(search.get(), units, static_cast<int32_t>(text.size()), &status);
    uregex_setTimeLimit(search.get(), effort_.steps, &status);
    uregex_setStackLimit(search.get(), effort_.stackBytes, &status);

    RegularExpressionMatch match;
    match.ranges_.resize(static_cast<std::size_t>(groupCount_) + 1);
    const auto start = static_cast<int32_t>(std::clamp<qsizetype>(from, 0, text.size()));
    bool another = uregex_find(search.get(), start, &status);
    while (another && U_SUCCESS(status)) {
        for (int32_t group = 0; group <= groupCount_; ++group) {
            const int32_t location = uregex_start(search.get(), group, &status);
            const int32_t end = uregex_end(search.get(), group, &status);
            match.ranges_[static_cast<std::size_t>(group)] = {location, end - location};
        }
        if (!found(match)) {
            return Ending::stopped;
        }
        another = uregex_findNext(search.get(), &status);
    }
    return U_SUCCESS(status) ? Ending::complete : Ending::gaveUp;
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
            expanded += match.groupText(group, text);
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
