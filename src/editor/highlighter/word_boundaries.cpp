#include "editor/highlighter/word_boundaries.h"

#include "editor/highlighter/character_classes.h"

#include <QChar>

#include <cstring>

namespace kelm {

namespace {

constexpr int blockSize = 64;

bool isAscii(const char16_t* units, int count)
{
    char16_t all = 0;
    for (int i = 0; i < count; ++i) {
        all |= units[i];
    }
    return all < 0x80;
}

/// One bit for each of 64 ASCII units: whether it belongs to a word.
quint64 asciiSides(const char16_t* units)
{
    quint8 inWord[blockSize];
    for (int i = 0; i < blockSize; ++i) {
        inWord[i] = isNamePart(units[i]) ? 1 : 0;
    }
    quint64 sides = 0;
    for (int i = 0; i < blockSize; i += 8) {
        quint64 eight = 0;
        std::memcpy(&eight, inWord + i, 8);
        // Gathers the lowest bits of the eight bytes in the highest byte.
        sides |= ((eight * 0x0102040810204080u) >> 56) << i;
    }
    return sides;
}

/// The same for up to 64 units from `from` on, of whatever kind. `inWord` is the side of the character before.
quint64 sidesOf(QStringView text, qsizetype from, qsizetype count, bool inWord)
{
    const CharacterClasses& classes = CharacterClasses::ofUnicode();
    quint64 sides = 0;
    for (qsizetype i = 0; i < count; ++i) {
        const qsizetype at = from + i;
        const QChar unit = text[at];
        const bool endsPair = unit.isLowSurrogate() && at > 0 && text[at - 1].isHighSurrogate();
        if (!endsPair) {
            const bool beginsPair = unit.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
            const quint8 found = beginsPair ? CharacterClasses::ofCodePoint(QChar::surrogateToUcs4(unit, text[at + 1]))
                                            : classes.ofUnit(unit.unicode());
            if (!(found & CharacterClasses::transparent)) {
                inWord = found & CharacterClasses::word;
            }
        }
        sides |= quint64(inWord) << i;
    }
    return sides;
}

} // namespace

WordBoundaries::WordBoundaries(QStringView text, bool isInside)
    : // The end of the text is a place as well.
      blocks_(static_cast<std::size_t>(text.size() / blockSize) + 1),
      isInside_(isInside)
{
    quint64 before = isInside ? 1 : 0;
    for (std::size_t index = 0; index < blocks_.size(); ++index) {
        const qsizetype from = static_cast<qsizetype>(index) * blockSize;
        const qsizetype count = std::min<qsizetype>(blockSize, text.size() - from);
        const char16_t* units = text.utf16() + from;
        const quint64 sides =
            count == blockSize && isAscii(units, blockSize) ? asciiSides(units) : sidesOf(text, from, count, before);
        blocks_[index] = sides ^ (sides << 1 | before);
        before = sides >> (blockSize - 1);
    }
}

} // namespace kelm
