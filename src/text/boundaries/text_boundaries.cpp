#include "text/boundaries/text_boundaries.h"

#include "platform/text/word_breaks.h"

#include <QString>

#include <algorithm>

namespace kelm {

namespace {

/// A tree as it lies.
class TreeSource final : public UnitSource
{
public:
    explicit TreeSource(const TextTree& tree) : tree_(tree) {}

    qsizetype length() const override { return tree_.length(); }

    Stretch stretchAt(qsizetype offset) const override
    {
        // Pieces before the one that holds the offset are passed over, so that it is not looked for from far away.
        constexpr qsizetype reach = 1024;
        struct Search
        {
            qsizetype offset;
            Stretch found;
        } search{offset, {std::max<qsizetype>(0, offset - reach), {}}};
        tree_.forEachPiece({search.found.start, 2 * reach}, [&search](QStringView piece) {
            search.found.start += search.found.units.size();
            search.found.units = piece;
            return search.offset >= search.found.start + piece.size();
        });
        return search.found;
    }

private:
    const TextTree& tree_;
};

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

/// The class of the character that begins at a place, which is that of what it begins with.
CharacterClass classAt(QStringView text, qsizetype place)
{
    const QChar unit = text[place];
    const bool isPair = unit.isHighSurrogate() && place + 1 < text.size() && text[place + 1].isLowSurrogate();
    return classOf(isPair ? QChar::surrogateToUcs4(unit, text[place + 1]) : unit.unicode());
}

/// The end of the run of one class from a place on, no more than a character behind `limit`.
qsizetype skipForward(QStringView text, qsizetype place, CharacterClass wanted, qsizetype limit)
{
    GraphemeWalk walk(text.sliced(place));
    while (place + walk.place() < limit && !walk.isAtEnd()) {
        const qsizetype at = place + walk.place();
        if (classAt(text, at) != wanted) {
            return at;
        }
        walk.next();
    }
    return place + walk.place();
}

/// The start of the run of one class before a place, no more than a character before `limit`.
qsizetype skipBackward(QStringView text, qsizetype place, CharacterClass wanted, qsizetype limit)
{
    // Forwards through stretches that grow, which is quicker than backwards from one to the next.
    for (qsizetype stretch = 16; place > limit && place > 0; stretch *= 2) {
        const qsizetype first = graphemeBoundaryAtOrBefore(text, std::max(limit, place - stretch));
        qsizetype start = first;
        for (GraphemeWalk walk(text.sliced(first, place - first)); !walk.isAtEnd();) {
            const CharacterClass found = classAt(text, first + walk.place());
            walk.next();
            start = found == wanted ? start : first + walk.place();
        }
        if (start > first) {
            return start;
        }
        place = first;
    }
    return place;
}

/// How much of a run the dictionaries are given on both sides of a place.
constexpr qsizetype dictionaryReach = 256;

/// The words of a run around a place in it, as far as the dictionaries look.
struct WordsAround
{
    TextRange seen;
    std::vector<qsizetype> breaks;

    WordsAround(QStringView text, qsizetype place)
        : seen(TextRange::between(
              skipBackward(text, place, CharacterClass::word, place - dictionaryReach),
              skipForward(text, place, CharacterClass::word, std::min(text.size(), place + dictionaryReach)))),
          breaks(wordBreaks(text.sliced(seen.location, seen.length)))
    {
        for (qsizetype& at : breaks) {
            at += seen.location;
        }
    }
};

/// Where what stands at a place ends: behind its run, or where the dictionaries end a word.
qsizetype wordEnd(QStringView text, qsizetype place)
{
    const CharacterClass wanted = classAt(text, place);
    if (wanted != CharacterClass::word) {
        return skipForward(text, place, wanted, text.size());
    }
    for (qsizetype from = place + 1;; from = place) {
        const WordsAround words(text, place);
        const auto behind = std::lower_bound(words.breaks.begin(), words.breaks.end(), from);
        if (behind != words.breaks.end()) {
            return *behind;
        }
        if (words.seen.end() < place + dictionaryReach || words.seen.end() == text.size()) {
            return words.seen.end();
        }
        place = words.seen.end();
    }
}

/// Where what stands before a place begins.
qsizetype wordStart(QStringView text, qsizetype place)
{
    const CharacterClass wanted = classAt(text, previousGraphemeBoundary(text, place));
    if (wanted != CharacterClass::word) {
        return skipBackward(text, place, wanted, 0);
    }
    for (qsizetype from = place - 1;; from = place) {
        const WordsAround words(text, place);
        const auto behind = std::upper_bound(words.breaks.begin(), words.breaks.end(), from);
        if (behind != words.breaks.begin()) {
            return *std::prev(behind);
        }
        if (words.seen.location > place - dictionaryReach || words.seen.location == 0) {
            return words.seen.location;
        }
        place = words.seen.location;
    }
}

/// The line that holds an offset, without what ends it.
TextRange lineAround(QStringView text, qsizetype offset)
{
    const auto endsLine = [](QChar unit) {
        return unit == u'\n' || unit == u'\r' || unit == QChar(0x85) || unit == QChar(0x2028) || unit == QChar(0x2029);
    };
    qsizetype start = offset;
    while (start > 0 && !endsLine(text[start - 1])) {
        --start;
    }
    qsizetype end = offset;
    while (end < text.size() && !endsLine(text[end])) {
        ++end;
    }
    return TextRange::between(start, end);
}

} // namespace

qsizetype nextWordEnd(QStringView text, qsizetype offset)
{
    const qsizetype start = graphemeBoundaryAtOrBefore(text, offset);
    const qsizetype word = skipForward(text, start, CharacterClass::space, text.size());
    return word < text.size() ? wordEnd(text, word) : word;
}

qsizetype previousWordStart(QStringView text, qsizetype offset)
{
    const qsizetype end = graphemeBoundaryAtOrBehind(text, offset);
    const qsizetype word = skipBackward(text, end, CharacterClass::space, 0);
    return word > 0 ? wordStart(text, word) : word;
}

TextRange wordAt(QStringView text, qsizetype offset)
{
    const qsizetype at = graphemeBoundaryAtOrBefore(text, offset);
    const TextRange range = lineAround(text, at);
    const QStringView line = text.sliced(range.location, range.length);
    if (line.isEmpty()) {
        return range;
    }
    // At the line's end the word before it is meant.
    const qsizetype inLine = at - range.location;
    const qsizetype place = inLine < line.size() ? inLine : previousGraphemeBoundary(line, inLine);
    const qsizetype start = wordStart(line, nextGraphemeBoundary(line, place));
    return TextRange::between(range.location + start, range.location + wordEnd(line, place));
}

namespace {

/// The characters of a tree around an offset.
struct Surroundings
{
    QString units;
    qsizetype start = 0;
    qsizetype length = 0;

    Surroundings(const TextTree& text, qsizetype offset, qsizetype reach) : length(text.length())
    {
        const qsizetype at = std::clamp<qsizetype>(offset, 0, length);
        start = graphemeBoundaryAtOrBefore(text, at - reach);
        units = text.substring(TextRange::between(start, nextGraphemeBoundary(text, std::min(length, at + reach))));
    }

    /// Whether a place found here may be another one when more of the text is seen: one near an end that is not the
    /// text's.
    bool isDoubtful(qsizetype found) const
    {
        constexpr qsizetype seen = 2 * dictionaryReach;
        return (start > 0 && found < seen) || (start + units.size() < length && found > units.size() - seen);
    }
};

/// The answer of `ask` for an offset within its surroundings, which are widened until it can be trusted.
template <typename Ask, typename IsDoubtful>
auto askWidening(const TextTree& text, qsizetype offset, Ask ask, IsDoubtful isDoubtful)
{
    for (qsizetype reach = 4 * dictionaryReach;; reach *= 4) {
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
    return nextGraphemeBoundary(TreeSource(text), offset);
}

qsizetype previousGraphemeBoundary(const TextTree& text, qsizetype offset)
{
    return previousGraphemeBoundary(TreeSource(text), offset);
}

qsizetype graphemeBoundaryAtOrBefore(const TextTree& text, qsizetype offset)
{
    return graphemeBoundaryAtOrBefore(TreeSource(text), offset);
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
