// The sets of characters at which texts are split and trimmed.
#pragma once

#include <QStringList>
#include <QStringView>

namespace kelm {

/// U+000A to U+000D, U+0085, U+2028 and U+2029.
constexpr bool isNewline(char16_t unit)
{
    return (unit >= u'\n' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028' || unit == u'\u2029';
}

/// Tab and Unicode's space separators (general category Zs).
constexpr bool isWhitespace(char16_t unit)
{
    return unit == u' ' || unit == u'\t' || unit == u'\u00a0' || unit == u'\u1680' ||
           (unit >= u'\u2000' && unit <= u'\u200a') || unit == u'\u202f' || unit == u'\u205f' || unit == u'\u3000';
}

constexpr bool isWhitespaceOrNewline(char16_t unit)
{
    return isWhitespace(unit) || isNewline(unit);
}

/// `text` without the units at both ends that are in the set.
template <typename Set>
constexpr QStringView trimmed(QStringView text, Set isInSet)
{
    while (!text.isEmpty() && isInSet(text.front().unicode())) {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && isInSet(text.back().unicode())) {
        text.chop(1);
    }
    return text;
}

/// The pieces of `text` between the units that are in the set, empty ones included. The pieces look into `text`.
template <typename Set>
QList<QStringView> split(QStringView text, Set isInSet)
{
    QList<QStringView> pieces;
    qsizetype start = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (isInSet(text[at].unicode())) {
            pieces.append(text.sliced(start, at - start));
            start = at + 1;
        }
    }
    pieces.append(text.sliced(start));
    return pieces;
}

} // namespace kelm
