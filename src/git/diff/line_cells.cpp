#include "git/diff/line_cells.h"

#include "platform/text/grapheme_boundaries.h"

#include <QtGlobal>

#include <unicode/uchar.h>

#include <algorithm>

namespace kelm {

namespace {

/// Without a jump in the loop, so that several units are looked at at once.
bool isPlainAscii(QStringView text)
{
    bool isOther = false;
    for (const QChar unit : text) {
        isOther |= static_cast<char16_t>(unit.unicode() - u' ') > u'~' - u' ';
    }
    return !isOther;
}

int cellsOf(char32_t character)
{
    if (character < 0x300) {
        return 1;
    }
    const auto code = static_cast<UChar32>(character);
    switch (u_charType(code)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
        return 0;
    default:
        break;
    }
    switch (u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH)) {
    case U_EA_WIDE:
    case U_EA_FULLWIDTH:
        return 2;
    default:
        return 1;
    }
}

/// The cells that a character takes when it stands at the cell `cell` of its row.
qsizetype cellsAt(char32_t character, qsizetype cell)
{
    return character == U'\t' ? cellsPerTab - cell % cellsPerTab : cellsOf(character);
}

/// Calls `take(first unit, units, character)` for each code point in turn.
template <typename Take>
void forEachCharacter(QStringView text, Take take)
{
    for (qsizetype at = 0; at < text.size();) {
        const bool isPair = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        const qsizetype units = isPair ? 2 : 1;
        take(at, units, isPair ? QChar::surrogateToUcs4(text[at], text[at + 1]) : char32_t(text[at].unicode()));
        at += units;
    }
}

/// What is drawn for a character that has no shape of its own.
QChar picture(QChar unit)
{
    if (unit == u'\r' || unit == u'\u0085' || unit == u'\u2028' || unit == u'\u2029') {
        return u' ';
    }
    if (unit < u' ') {
        return QChar(u'\u2400' + unit.unicode());
    }
    return unit == u'\u007f' ? QChar(u'\u2421') : unit;
}

} // namespace

qsizetype cellCount(QStringView line)
{
    if (isPlainAscii(line)) {
        return line.size();
    }
    qsizetype count = 0;
    forEachCharacter(line, [&](qsizetype, qsizetype, char32_t character) { count += cellsAt(character, count); });
    return count;
}

LineRows::LineRows(QStringView line, qsizetype columns) : length_(line.size()), starts_{0}
{
    // No character takes more cells than a tab: most lines are not looked at.
    if (line.size() * cellsPerTab <= columns || (line.size() <= columns && isPlainAscii(line))) {
        return;
    }
    qsizetype cell = 0;
    /// Behind the last blank of the row, and the cell there.
    qsizetype wordStart = 0;
    qsizetype wordCell = 0;
    for (GraphemeWalk walk(line); !walk.isAtEnd();) {
        const qsizetype at = walk.place();
        const QStringView character = walk.next();
        const bool isTab = character.front() == u'\t';
        const bool isBlank = isTab || character.front() == u' ';
        const auto fits = [&] {
            // A blank may stand over the edge, where nobody sees it; a tab takes what room there is.
            return isBlank ? cell <= columns - (isTab ? 1 : 0) : cell + cellCount(character) <= columns;
        };
        while (!fits() && at > starts_.back()) {
            const bool keepsWord =
                wordStart > starts_.back() && 2 * (wordStart - starts_.back()) >= at - starts_.back();
            starts_.push_back(static_cast<qint32>(keepsWord ? wordStart : at));
            cell = keepsWord ? cell - wordCell : 0;
        }
        cell += isTab ? cellsAt(U'\t', cell) : cellCount(character);
        if (isBlank) {
            wordStart = walk.place();
            wordCell = cell;
        }
    }
}

qsizetype LineRows::rowOf(qsizetype unit) const
{
    return std::upper_bound(starts_.begin(), starts_.end(), unit) - starts_.begin() - 1;
}

qsizetype DrawnText::unitAt(qsizetype place) const
{
    const auto behind = std::upper_bound(places.begin(), places.end(), place);
    return std::max<qsizetype>(0, behind - places.begin() - 1);
}

DrawnText drawnText(QStringView row)
{
    DrawnText drawn;
    drawn.text.reserve(row.size());
    drawn.places.reserve(static_cast<std::size_t>(row.size()) + 1);
    qsizetype cell = 0;
    forEachCharacter(row, [&](qsizetype at, qsizetype units, char32_t character) {
        for (qsizetype unit = 0; unit < units; ++unit) {
            drawn.places.push_back(static_cast<qint32>(drawn.text.size() + unit));
        }
        const qsizetype cells = cellsAt(character, cell);
        if (character == U'\t') {
            drawn.text += QString(cells, u' ');
        } else if (units == 1) {
            drawn.text += picture(row[at]);
        } else {
            drawn.text += row.sliced(at, units);
        }
        cell += cells;
    });
    drawn.places.push_back(static_cast<qint32>(drawn.text.size()));
    return drawn;
}

} // namespace kelm
