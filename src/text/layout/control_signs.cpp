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

QChar signOf(QChar unit)
{
    const char16_t code = unit.unicode();
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
    return code < u' ' ? code != u'\t' : code >= deleteUnit && code <= lastOfSecondSet;
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
