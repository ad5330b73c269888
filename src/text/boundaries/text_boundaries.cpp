#include "text/boundaries/text_boundaries.h"

#include <QString>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace kelm {

namespace {

/// How many units before and behind an offset are looked at. No cluster that people write comes near this length.
constexpr qsizetype contextUnits = 128;

/// Whether a cluster surely begins right before an ASCII unit: nothing in ASCII but the line feed continues one.
bool startsClusterSurely(QStringView text, qsizetype offset)
{
    const char16_t unit = text[offset].unicode();
    return unit < 0x80 && unit != u'\n' && (offset == 0 || text[offset - 1].unicode() < 0x80);
}

/// A start for looking at clusters that is a boundary itself, where one is near.
qsizetype contextStart(QStringView text, qsizetype offset)
{
    const qsizetype farthest = std::max<qsizetype>(0, offset - contextUnits);
    for (qsizetype at = offset - 1; at > farthest; --at) {
        if (startsClusterSurely(text, at)) {
            return at;
        }
    }
    return farthest > 0 && text[farthest].isLowSurrogate() ? farthest - 1 : farthest;
}

enum class CharacterClass { space, word, sign };

CharacterClass classOf(char32_t character)
{
    if (QChar::isSpace(character)) {
        return CharacterClass::space;
    }
    if (character == U'_' || QChar::isLetterOrNumber(character) || QChar::isMark(character)) {
        return CharacterClass::word;
    }
    return CharacterClass::sign;
}

bool isPair(QChar high, QChar low)
{
    return high.isHighSurrogate() && low.isLowSurrogate();
}

/// The character that ends right before `offset`, which is greater than 0.
char32_t characterBefore(QStringView text, qsizetype offset)
{
    const bool pair = offset > 1 && isPair(text[offset - 2], text[offset - 1]);
    return pair ? QChar::surrogateToUcs4(text[offset - 2], text[offset - 1]) : text[offset - 1].unicode();
}

char32_t characterAt(QStringView text, qsizetype offset)
{
    const bool pair = offset + 1 < text.size() && isPair(text[offset], text[offset + 1]);
    return pair ? QChar::surrogateToUcs4(text[offset], text[offset + 1]) : text[offset].unicode();
}

qsizetype unitsOf(char32_t character)
{
    return QChar::requiresSurrogates(character) ? 2 : 1;
}

qsizetype skipForward(QStringView text, qsizetype offset, CharacterClass wanted)
{
    while (offset < text.size()) {
        const char32_t character = characterAt(text, offset);
        if (classOf(character) != wanted) {
            break;
        }
        offset += unitsOf(character);
    }
    return offset;
}

qsizetype skipBackward(QStringView text, qsizetype offset, CharacterClass wanted)
{
    while (offset > 0) {
        const char32_t character = characterBefore(text, offset);
        if (classOf(character) != wanted) {
            break;
        }
        offset -= unitsOf(character);
    }
    return offset;
}

} // namespace

qsizetype nextGraphemeBoundary(QStringView text, qsizetype offset)
{
    if (offset + 1 >= text.size()) {
        return text.size();
    }
    // Two plain ASCII units in a row have a boundary between them.
    if (text[offset].unicode() < 0x80 && startsClusterSurely(text, offset + 1)) {
        return offset + 1;
    }
    const qsizetype start = contextStart(text, offset + 1);
    const QStringView context = text.mid(start, offset - start + contextUnits);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, context.data(), context.size());
    finder.setPosition(offset - start);
    const qsizetype next = finder.toNextBoundary();
    return next < 0 ? text.size() : start + next;
}

qsizetype previousGraphemeBoundary(QStringView text, qsizetype offset)
{
    if (offset <= 1) {
        return 0;
    }
    if (startsClusterSurely(text, offset - 1) && text[offset - 1].unicode() < 0x80) {
        return offset - 1;
    }
    const qsizetype start = contextStart(text, offset - 1);
    const QStringView context = text.mid(start, offset - start);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, context.data(), context.size());
    finder.toEnd();
    const qsizetype previous = finder.toPreviousBoundary();
    return previous < 0 ? start : start + previous;
}

qsizetype graphemeBoundaryAtOrBefore(QStringView text, qsizetype offset)
{
    if (offset <= 0 || offset >= text.size()) {
        return std::clamp<qsizetype>(offset, 0, text.size());
    }
    if (startsClusterSurely(text, offset)) {
        return offset;
    }
    const qsizetype start = contextStart(text, offset);
    const QStringView context = text.mid(start, offset - start + contextUnits);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, context.data(), context.size());
    finder.setPosition(offset - start);
    return finder.isAtBoundary() ? offset : start + std::max<qsizetype>(0, finder.toPreviousBoundary());
}

qsizetype graphemeCount(QStringView text)
{
    const auto isPlain = [](QChar unit) { return unit.unicode() < 0x80 && unit != u'\r'; };
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        return text.size();
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    qsizetype count = 0;
    while (finder.toNextBoundary() > 0) {
        ++count;
    }
    return count;
}

qsizetype nextWordEnd(QStringView text, qsizetype offset)
{
    offset = skipForward(text, offset, CharacterClass::space);
    return offset < text.size() ? skipForward(text, offset, classOf(characterAt(text, offset))) : offset;
}

qsizetype previousWordStart(QStringView text, qsizetype offset)
{
    offset = skipBackward(text, offset, CharacterClass::space);
    return offset > 0 ? skipBackward(text, offset, classOf(characterBefore(text, offset))) : offset;
}

TextRange wordAt(QStringView text, qsizetype offset)
{
    const auto endsLine = [](QChar unit) {
        return unit == u'\n' || unit == u'\r' || unit == QChar(0x85) || unit == QChar(0x2028) || unit == QChar(0x2029);
    };
    qsizetype lineStart = std::min(offset, text.size());
    while (lineStart > 0 && !endsLine(text[lineStart - 1])) {
        --lineStart;
    }
    qsizetype lineEnd = std::min(offset, text.size());
    while (lineEnd < text.size() && !endsLine(text[lineEnd])) {
        ++lineEnd;
    }
    const QStringView line = text.mid(lineStart, lineEnd - lineStart);
    const qsizetype at = std::min(offset, text.size()) - lineStart;
    if (line.isEmpty()) {
        return {lineStart, 0};
    }
    // At the line's end the word before it is meant.
    const CharacterClass wanted = classOf(at < line.size() ? characterAt(line, at) : characterBefore(line, at));
    const qsizetype start = skipBackward(line, at, wanted);
    return {lineStart + start, skipForward(line, at, wanted) - start};
}

namespace {

/// The units of a tree around an offset.
struct Surroundings
{
    QString units;
    qsizetype start = 0;
    qsizetype length = 0;

    Surroundings(const TextTree& text, qsizetype offset, qsizetype reach) : length(text.length())
    {
        const qsizetype at = std::clamp<qsizetype>(offset, 0, length);
        start = std::max<qsizetype>(0, at - reach);
        units = text.substring(TextRange::between(start, std::min(length, at + reach)));
    }

    /// Whether a place found here may be another one when more of the text is seen: one at an end that is not the
    /// text's, where a pair of surrogates can be cut.
    bool isDoubtful(qsizetype found) const
    {
        constexpr qsizetype pair = 2;
        return (start > 0 && found < pair) || (start + units.size() < length && found > units.size() - pair);
    }
};

/// More than what is looked at for a boundary between characters, on both sides.
constexpr qsizetype graphemeReach = contextUnits + 32;

/// The answer of `ask` for an offset within its surroundings, which are widened until it can be trusted.
template <typename Ask, typename IsDoubtful>
auto askWidening(const TextTree& text, qsizetype offset, Ask ask, IsDoubtful isDoubtful)
{
    for (qsizetype reach = 256;; reach *= 4) {
        const Surroundings around(text, offset, reach);
        const auto found = ask(around);
        if (!isDoubtful(around, found)) {
            return found;
        }
    }
}

qsizetype placeWidening(const TextTree& text, qsizetype offset, qsizetype (*ask)(QStringView, qsizetype))
{
    return askWidening(
        text, offset,
        [&](const Surroundings& around) { return around.start + ask(around.units, offset - around.start); },
        [](const Surroundings& around, qsizetype found) { return around.isDoubtful(found - around.start); });
}

} // namespace

qsizetype nextGraphemeBoundary(const TextTree& text, qsizetype offset)
{
    const Surroundings around(text, offset, graphemeReach);
    return around.start + nextGraphemeBoundary(around.units, offset - around.start);
}

qsizetype previousGraphemeBoundary(const TextTree& text, qsizetype offset)
{
    const Surroundings around(text, offset, graphemeReach);
    return around.start + previousGraphemeBoundary(around.units, offset - around.start);
}

qsizetype graphemeBoundaryAtOrBefore(const TextTree& text, qsizetype offset)
{
    const qsizetype at = std::clamp<qsizetype>(offset, 0, text.length());
    const Surroundings around(text, at, graphemeReach);
    return around.start + graphemeBoundaryAtOrBefore(around.units, at - around.start);
}

qsizetype nextWordEnd(const TextTree& text, qsizetype offset)
{
    return placeWidening(text, offset, nextWordEnd);
}

qsizetype previousWordStart(const TextTree& text, qsizetype offset)
{
    return placeWidening(text, offset, previousWordStart);
}

TextRange wordAt(const TextTree& text, qsizetype offset)
{
    return askWidening(
        text, offset,
        [&](const Surroundings& around) {
            const TextRange word = wordAt(around.units, offset - around.start);
            return TextRange{around.start + word.location, word.length};
        },
        [](const Surroundings& around, TextRange word) {
            return around.isDoubtful(word.location - around.start) || around.isDoubtful(word.end() - around.start);
        });
}

} // namespace kelm
