#include "editor/highlighter/painted_text.h"

#include <bit>
#include <cstring>

namespace kelm {

namespace {

/// Where the coat changes for the first time behind `start`, or `end`.
std::size_t endOfCoat(const quint8* coats, std::size_t start, std::size_t end)
{
    const quint64 eightAlike = coats[start] * 0x0101010101010101u;
    std::size_t i = start + 1;
    for (; i + 8 <= end; i += 8) {
        quint64 eight = 0;
        std::memcpy(&eight, coats + i, 8);
        if (const quint64 different = eight ^ eightAlike) {
            return i + static_cast<std::size_t>(std::countr_zero(different)) / 8;
        }
    }
    while (i < end && coats[i] == coats[start]) {
        ++i;
    }
    return i;
}

} // namespace

std::vector<ColorRun> PaintedText::runs(std::span<const QRgb> colors) const
{
    const std::size_t length = coats_.size();
    if (length == 0) {
        return {};
    }
    // Counting first saves the copies of a growing list, and its slack, which counts in a text of a hundred million
    // units.
    std::size_t count = 1;
    for (std::size_t i = 1; i < length; ++i) {
        count += coats_[i] != coats_[i - 1] ? 1 : 0;
    }
    std::vector<ColorRun> runs;
    runs.reserve(count);
    for (std::size_t start = 0; start < length;) {
        const std::size_t end = endOfCoat(coats_.data(), start, length);
        const QRgb color = colors[coats_[start]];
        const auto runLength = static_cast<qsizetype>(end - start);
        if (!runs.empty() && runs.back().color == color) {
            runs.back().range.length += runLength;
        } else {
            runs.push_back({{static_cast<qsizetype>(start), runLength}, color});
        }
        start = end;
    }
    return runs;
}

} // namespace kelm
