#include "platform/text/script_joiners.h"

#include <QChar>

#include <unicode/uchar.h>

namespace kelm {

namespace {

constexpr char16_t nonJoiner = 0x200c;
constexpr char16_t joiner = 0x200d;
constexpr char16_t pictographSign = 0xfe0f;
constexpr char32_t keycap = 0x20e3;
/// The combining class of the signs that leave out a vowel.
constexpr int vowelKiller = 9;

/// The character that ends before a place, which moves before it; 0 at the start.
char32_t characterBefore(QStringView text, qsizetype& at)
{
    if (at <= 0) {
        return 0;
    }
    const QChar last = text[--at];
    const bool isPair = last.isLowSurrogate() && at > 0 && text[at - 1].isHighSurrogate();
    return isPair ? QChar::surrogateToUcs4(text[--at], last) : last.unicode();
}

/// The character that begins at a place, which moves behind it; 0 at the end.
char32_t characterAt(QStringView text, qsizetype& at)
{
    if (at >= text.size()) {
        return 0;
    }
    const QChar first = text[at++];
    const bool isPair = first.isHighSurrogate() && at < text.size() && text[at].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(first, text[at++]) : first.unicode();
}

bool isPictograph(char32_t character)
{
    return u_hasBinaryProperty(UChar32(character), UCHAR_EXTENDED_PICTOGRAPHIC) != 0;
}

/// Whether the letters on both sides would join, but for the marks between.
bool standsBetweenJoiningLetters(QStringView text, qsizetype at)
{
    qsizetype left = at;
    char32_t before = characterBefore(text, left);
    while (QChar::joiningType(before) == QChar::Joining_Transparent && before != 0) {
        before = characterBefore(text, left);
    }
    qsizetype right = at + 1;
    char32_t behind = characterAt(text, right);
    while (QChar::joiningType(behind) == QChar::Joining_Transparent && behind != 0) {
        behind = characterAt(text, right);
    }
    const QChar::JoiningType first = QChar::joiningType(before);
    const QChar::JoiningType second = QChar::joiningType(behind);
    return (first == QChar::Joining_Dual || first == QChar::Joining_Left) &&
           (second == QChar::Joining_Dual || second == QChar::Joining_Right);
}

bool standsBetweenPictographs(QStringView text, qsizetype at)
{
    qsizetype left = at;
    char32_t before = characterBefore(text, left);
    while (before == pictographSign || u_hasBinaryProperty(UChar32(before), UCHAR_EMOJI_MODIFIER) != 0) {
        before = characterBefore(text, left);
    }
    qsizetype right = at + 1;
    return isPictograph(before) && isPictograph(characterAt(text, right));
}

bool standsBehindVowelKiller(QStringView text, qsizetype at)
{
    qsizetype left = at;
    qsizetype right = at + 1;
    return QChar::combiningClass(characterBefore(text, left)) == vowelKiller &&
           QChar::isLetter(characterAt(text, right));
}

bool standsBehindPictograph(QStringView text, qsizetype at)
{
    qsizetype left = at;
    qsizetype right = at + 1;
    const char32_t before = characterBefore(text, left);
    // Digits are signs of keys only below the picture of one.
    return isPictograph(before) ||
           (u_hasBinaryProperty(UChar32(before), UCHAR_EMOJI) != 0 && characterAt(text, right) == keycap);
}

} // namespace

bool isScriptJoiner(QStringView text, qsizetype at)
{
    switch (text[at].unicode()) {
    case nonJoiner:
        return standsBetweenJoiningLetters(text, at) || standsBehindVowelKiller(text, at);
    case joiner:
        return standsBetweenPictographs(text, at) || standsBehindVowelKiller(text, at);
    case pictographSign:
        return standsBehindPictograph(text, at);
    default:
        return false;
    }
}

} // namespace kelm
