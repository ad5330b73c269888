#include "editor/transforms/capitalized_form.h"

#include <unicode/casemap.h>
#include <unicode/stringoptions.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <array>

namespace kelm {
namespace {

constexpr UChar32 capitalSigma = 0x3a3;
constexpr UChar32 finalSigma = 0x3c2;
constexpr const char* noLocale = "";

UChar32 characterAt(QStringView text, qsizetype& at)
{
    const char16_t* units = text.utf16();
    const UChar32 unit = units[at++];
    if (U16_IS_LEAD(unit) && at < text.size() && U16_IS_TRAIL(units[at])) {
        return U16_GET_SUPPLEMENTARY(unit, units[at++]);
    }
    return unit;
}

bool isIgnorable(UChar32 character)
{
    return u_hasBinaryProperty(character, UCHAR_CASE_IGNORABLE);
}

bool isCased(UChar32 character)
{
    return u_hasBinaryProperty(character, UCHAR_CASED);
}

/// Whether no cased letter follows at `at`, but for ignorable characters between.
bool endsWord(QStringView text, qsizetype at)
{
    while (at < text.size()) {
        const UChar32 next = characterAt(text, at);
        if (!isIgnorable(next)) {
            return !isCased(next);
        }
    }
    return true;
}

/// Appends the full mapping of one character outside ASCII.
void appendMapped(QString& result, QStringView character, bool toLower)
{
    std::array<UChar, 8> mapped;
    UErrorCode status = U_ZERO_ERROR;
    const auto* source = reinterpret_cast<const UChar*>(character.utf16());
    const auto capacity = int32_t(mapped.size());
    const int32_t length =
        toLower ? u_strToLower(mapped.data(), capacity, source, int32_t(character.size()), noLocale, &status)
                : icu::CaseMap::toTitle(noLocale, U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_BREAK_ADJUSTMENT, nullptr,
                                        source, int32_t(character.size()), mapped.data(), capacity, nullptr, status);
    if (U_SUCCESS(status)) {
        result.append(reinterpret_cast<const QChar*>(mapped.data()), length);
    } else {
        result.append(character);
    }
}

char16_t mappedAscii(char16_t unit, bool toLower)
{
    if (toLower) {
        return unit >= u'A' && unit <= u'Z' ? char16_t(unit + 32) : unit;
    }
    return unit >= u'a' && unit <= u'z' ? char16_t(unit - 32) : unit;
}

} // namespace

QString capitalizedForm(const QString& text)
{
    QString result;
    result.reserve(text.size());
    bool isInWord = false;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype start = at;
        const UChar32 character = characterAt(text, at);
        if (character < 0x80) {
            result.append(QChar(mappedAscii(char16_t(character), isInWord)));
        } else if (character == capitalSigma && isInWord) {
            result.append(QChar(char16_t(endsWord(text, at) ? finalSigma : capitalSigma + 0x20)));
        } else {
            appendMapped(result, QStringView(text).sliced(start, at - start), isInWord);
        }
        if (!isIgnorable(character)) {
            isInWord = isCased(character);
        }
    }
    return result;
}

} // namespace kelm
