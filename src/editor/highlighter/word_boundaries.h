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
    explicit WordBoundaries(QStringView text);

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

    /// Calls `word(start, end)` for each word in order.
    template <class Word>
    void forEachWord(Word word) const
    {
        qsizetype start = -1;
        for (std::size_t index = 0; index < blocks_.size(); ++index) {
            for (quint64 bits = blocks_[index]; bits != 0; bits &= bits - 1) {
                const qsizetype place = static_cast<qsizetype>(index) * blockSize + std::countr_zero(bits);
                if (start < 0) {
                    start = place;
                } else {
                    word(start, place);
                    start = -1;
                }
            }
        }
    }

private:
    static constexpr qsizetype blockSize = 64;
    static std::size_t block(qsizetype place) { return static_cast<std::size_t>(place / blockSize); }

    std::vector<quint64> blocks_;
};

} // namespace kelm
