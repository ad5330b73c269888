#include "editor/transforms/text_transformer.h"

#include "editor/transforms/capitalized_form.h"
#include "platform/text/character_sets.h"

#include <unicode/ustring.h>

#include <limits>

namespace kelm {
namespace {

using CaseFunction = int32_t (*)(UChar*, int32_t, const UChar*, int32_t, const char*, UErrorCode*);

/// Maps a whole text. A text of a gigabyte and more, for whose length the library has no number, comes back as it is.
QString mapped(const QString& text, CaseFunction map)
{
    constexpr const char* rootLocale = "";
    // One unit becomes three at most, but hardly ever more than one.
    if (text.size() > std::numeric_limits<int32_t>::max() / 3) {
        return text;
    }
    QString result(text.size(), Qt::Uninitialized);
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length =
            map(reinterpret_cast<UChar*>(result.data()), int32_t(result.size()),
                reinterpret_cast<const UChar*>(text.utf16()), int32_t(text.size()), rootLocale, &status);
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            result.resize(length);
            return U_SUCCESS(status) ? result : text;
        }
        result.resize(length);
    }
}

bool isSeparator(QChar unit)
{
    return unit == u'_' || unit == u'-' || isWhitespace(unit.unicode());
}

bool isHump(QChar before, QChar unit)
{
    return before >= u'a' && before <= u'z' && unit >= u'A' && unit <= u'Z';
}

} // namespace

QString TextTransformer::toUpperCase(const QString& text)
{
    return mapped(text, u_strToUpper);
}

QString TextTransformer::toLowerCase(const QString& text)
{
    return mapped(text, u_strToLower);
}

QString TextTransformer::toCapitalized(const QString& text)
{
    return capitalizedForm(text);
}

QString TextTransformer::toCamelCase(const QString& text)
{
    const QStringList words = splitIntoWords(text);
    if (words.isEmpty()) {
        return text;
    }
    QString result = toLowerCase(words.first());
    for (qsizetype i = 1; i < words.size(); ++i) {
        result += toCapitalized(words[i]);
    }
    return result;
}

QString TextTransformer::toSnakeCase(const QString& text)
{
    QString result;
    for (const QString& word : splitIntoWords(text)) {
        if (!result.isEmpty()) {
            result += u'_';
        }
        result += toLowerCase(word);
    }
    return result;
}

QStringList TextTransformer::splitIntoWords(const QString& text)
{
    QStringList words;
    qsizetype start = 0;
    const auto endWord = [&](qsizetype end) {
        if (end > start) {
            words += text.mid(start, end - start);
        }
    };
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (isSeparator(text[at])) {
            endWord(at);
            start = at + 1;
        } else if (at > start && isHump(text[at - 1], text[at])) {
            endWord(at);
            start = at;
        }
    }
    endWord(text.size());
    return words;
}

} // namespace kelm
