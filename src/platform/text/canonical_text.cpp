#include "platform/text/canonical_text.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace kelm {

namespace {

/// Of a text that the system's library cannot decompose, the text itself.
icu::UnicodeString decomposition(const icu::UnicodeString& text)
{
    // The toolkit's own normalization takes three to four times as long with Korean and with accents.
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFDInstance(status);
    icu::UnicodeString result = U_SUCCESS(status) ? normalizer->normalize(text, status) : text;
    return U_SUCCESS(status) ? result : text;
}

/// Reads the text where it stands.
icu::UnicodeString aliasOf(QStringView text)
{
    return {false, text.utf16(), static_cast<int32_t>(text.size())};
}

QString stringOf(const icu::UnicodeString& text)
{
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

} // namespace

QString decomposed(QStringView text)
{
    return stringOf(decomposition(aliasOf(text)));
}

QString decomposedWithoutCase(QStringView text)
{
    return stringOf(decomposition(decomposition(aliasOf(text)).foldCase()));
}

} // namespace kelm
