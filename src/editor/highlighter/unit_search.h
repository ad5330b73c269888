// Finding the next UTF-16 unit of a kind, sixteen at a time.
#pragma once

#include <QtGlobal>

#include <bit>
#include <cstring>

namespace kelm {

/// The index of the first unit from `from` up to `end` for which `test` holds, or `end`. The test is arithmetic without
/// a branch, so that the compiler turns the block of sixteen into a few vector instructions.
template <class Test>
inline qsizetype findUnit(const char16_t* units, qsizetype from, qsizetype end, Test test)
{
    constexpr int block = 16;
    static_assert(std::endian::native == std::endian::little, "the first unit of a block is its lowest byte");
    qsizetype i = from;
    for (; end - i >= block; i += block) {
        alignas(block) quint8 hits[block];
        for (int k = 0; k < block; ++k) {
            hits[k] = test(units[i + k]) ? 1 : 0;
        }
        quint64 halves[2];
        std::memcpy(halves, hits, block);
        if (halves[0] | halves[1]) {
            return i + (halves[0] ? std::countr_zero(halves[0]) / 8 : 8 + std::countr_zero(halves[1]) / 8);
        }
    }
    while (i < end && !test(units[i])) {
        ++i;
    }
    return i;
}

} // namespace kelm
