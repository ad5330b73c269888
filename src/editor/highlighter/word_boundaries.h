// Where words begin and end.
#pragma once

#include <QStringView>

#include <bit>
#include <vector>

namespace kelm {

/// The places of a text where `\b` of ICU's regular expressions matches, one bit a place.
///
/// ICU looks through combining marks and format characters: there is no boundary right before one, and before any other
/// character the last one that is neither counts. So each character is given a side, inside a word or outside, where
/// such a character has the side of the one before it and the text begins outside; a boundary is where the side
/// changes. Boundaries therefore are, in turn, the beginning of a word and its end.
class WordBoundaries
{
public:
    /// `isInside` is the side of the character before the text, where that is a part of another.
    explicit WordBoundaries(QStringView text, bool isInside = false);

    bool at(qsizetype place) const { return (blocks_[block(place)] >> (place % blockSize)) & 1; }

    /// The first boundary at `place` or behind it, or a place behind the end of the text.
    qsizetype next(qsizetype place) const
    {
        std::size_t index = block(place);
        quint64 bits = blocks_[index] & (~quint64(0) << (place % blockSize));
        while (bits == 0) {
            if (++index == blocks_.size()) {
                return static_cast<qsizetype>(index) * blockSize;
            }
            bits = blocks_[index];
        }
        return static_cast<qsizetype>(index) * blockSize + std::countr_zero(bits);
    }

    /// Whether the character before `place` is on the inner side.
    bool isInsideBefore(qsizetype place) const
    {
        int changes = isInside_ ? 1 : 0;
        for (std::size_t index = 0; index < block(place); ++index) {
            changes += std::popcount(blocks_[index]);
        }
        return (changes + std::popcount(blocks_[block(place)] & ~(~quint64(0) << (place % blockSize)))) % 2 != 0;
    }

    /// Calls `word(start, end)` for each word that begins at `from` or behind it, in order, while it returns true.
    template <class Word>
    void forEachWord(qsizetype from, Word word) const
    {
        constexpr qsizetype outside = -1;
        constexpr qsizetype begunBefore = -2;
        qsizetype start = isInsideBefore(from) ? begunBefore : outside;
        quint64 wanted = ~quint64(0) << (from % blockSize);
        for (std::size_t index = block(from); index < blocks_.size(); ++index, wanted = ~quint64(0)) {
            for (quint64 bits = blocks_[index] & wanted; bits != 0; bits &= bits - 1) {
                const qsizetype place = static_cast<qsizetype>(index) * blockSize + std::countr_zero(bits);
                if (start == outside) {
                    start = place;
                    continue;
                }
                if (start >= 0 && !word(start, place)) {
                    return;
                }
                start = outside;
            }
        }
    }

private:
    static constexpr qsizetype blockSize = 64;
    static std::size_t block(qsizetype place) { return static_cast<std::size_t>(place / blockSize); }

    std::vector<quint64> blocks_;
    bool isInside_;
};

} // namespace kelm
