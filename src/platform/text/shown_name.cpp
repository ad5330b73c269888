#include "platform/text/shown_name.h"

#include "platform/text/script_joiners.h"

#include <algorithm>
#include <array>

namespace kelm {

namespace {

constexpr char32_t openingBracket = 0x27e8;
constexpr char32_t firstRawByte = 0xdc80;
constexpr char32_t lastRawByte = 0xdcff;

struct Range
{
    char32_t first;
    char32_t last;
};

/// Marks and letters that are drawn as nothing. Those of the category of formats are known by it.
constexpr std::array unseen{Range{0x34f, 0x34f},     Range{0x115f, 0x1160},
                            Range{0x17b4, 0x17b5},   Range{0x180b, 0x180f},
                            Range{0x2065, 0x2065},   Range{0x2800, 0x2800},
                            Range{0x3164, 0x3164},   Range{0xfe00, 0xfe0f},
                            Range{0xffa0, 0xffa0},   Range{0xfff0, 0xfff8},
                            Range{0x1d159, 0x1d159}, Range{0x1d173, 0x1d17a},
                            Range{0xe0000, 0xe0fff}, Range{openingBracket, openingBracket}};

bool isUnseen(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Separator_Space:
        return character != U' ';
    default:
        return std::any_of(unseen.begin(), unseen.end(), [character](const Range& range) {
            return character >= range.first && character <= range.last;
        });
    }
}

QString hexadecimal(char32_t number, int digits)
{
    return QString::number(uint(number), 16).toUpper().rightJustified(digits, u'0');
}

QString sign(char32_t character)
{
    if (character >= firstRawByte && character <= lastRawByte) {
        return u'\u27e8' + hexadecimal(character - 0xdc00, 2) + u'\u27e9';
    }
    return QStringLiteral("\u27e8U+") + hexadecimal(character, 4) + u'\u27e9';
}

} // namespace

QString shownName(QStringView name)
{
    const qsizetype start =
        std::find_if(name.begin(), name.end(), [](QChar unit) { return unit != u' '; }) - name.begin();
    qsizetype end = name.size();
    while (end > start && name[end - 1] == u' ') {
        --end;
    }
    QString shown;
    shown.reserve(name.size());
    for (qsizetype at = 0; at < name.size(); ++at) {
        const bool isPair = name[at].isHighSurrogate() && at + 1 < name.size() && name[at + 1].isLowSurrogate();
        const char32_t character = isPair ? QChar::surrogateToUcs4(name[at], name[at + 1]) : name[at].unicode();
        const bool isBlankAtEnd = character == U' ' && (at < start || at >= end);
        if (isBlankAtEnd || (isUnseen(character) && !isScriptJoiner(name, at))) {
            shown += sign(character);
        } else {
            shown += name.sliced(at, isPair ? 2 : 1);
        }
        at += isPair ? 1 : 0;
    }
    return shown;
}

} // namespace kelm
