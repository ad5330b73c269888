#include "text/layout/control_signs.h"

#include <QColor>

#include <algorithm>

namespace kelm {

namespace {

constexpr char16_t deleteUnit = 0x7F;
constexpr char16_t firstOfSecondSet = 0x80;
constexpr char16_t lastOfSecondSet = 0x9F;
/// To be seen on the grounds of dark themes and of light ones.
constexpr QRgb signGround = qRgba(0x80, 0x80, 0x80, 0x80);

struct DirectionSign
{
    char16_t unit;
    char16_t sign;
};

/// What embeds or overrides a direction, and ends that.
constexpr DirectionSign directionSigns[] = {{0x202A, u'>'}, {0x202B, u'<'}, {0x202C, u'|'},
                                            {0x202D, u'>'}, {0x202E, u'<'}, {0x2066, u'>'},
                                            {0x2067, u'<'}, {0x2068, u'?'}, {0x2069, u'|'}};

const DirectionSign* directionSign(char16_t code)
{
    const auto* const found = std::find_if(std::begin(directionSigns), std::end(directionSigns),
                                           [code](const DirectionSign& each) { return each.unit == code; });
    return found != std::end(directionSigns) ? found : nullptr;
}

QChar signOf(QChar unit)
{
    const char16_t code = unit.unicode();
    if (const DirectionSign* const direction = directionSign(code)) {
        return direction->sign;
    }
    if (code == deleteUnit) {
        return u'?';
    }
    if (code == lastOfSecondSet) {
        return u'-';
    }
    return QChar(code < firstOfSecondSet ? code + 0x40 : code - 0x20);
}

} // namespace

bool needsSign(QChar unit)
{
    const char16_t code = unit.unicode();
    if (code < u' ') {
        return code != u'\t';
    }
    return code <= lastOfSecondSet ? code >= deleteUnit
                                   : code >= directionSigns[0].unit && directionSign(code) != nullptr;
}

QString withControlSigns(QString text)
{
    const auto first = std::find_if(text.cbegin(), text.cend(), needsSign);
    if (first != text.cend()) {
        const qsizetype start = first - text.cbegin();
        std::transform(text.begin() + start, text.end(), text.begin() + start,
                       [](QChar unit) { return needsSign(unit) ? signOf(unit) : unit; });
    }
    return text;
}

QList<QTextLayout::FormatRange> controlSignFormats(QStringView text)
{
    QList<QTextLayout::FormatRange> formats;
    for (auto at = std::find_if(text.begin(), text.end(), needsSign); at != text.end();) {
        const auto end = std::find_if_not(at, text.end(), needsSign);
        QTextLayout::FormatRange format;
        format.start = static_cast<int>(at - text.begin());
        format.length = static_cast<int>(end - at);
        format.format.setBackground(QColor::fromRgba(signGround));
        formats.append(format);
        at = std::find_if(end, text.end(), needsSign);
    }
    return formats;
}

} // namespace kelm
