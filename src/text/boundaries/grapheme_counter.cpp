#include "text/boundaries/grapheme_counter.h"

#include "text/storage/text_range.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace kelm {

namespace {

/// Distance of the boundaries that are kept, in UTF-16 units.
constexpr qsizetype keptDistance = 1 << 16;

/// Whether a unit neither goes on with a character before it nor takes in one behind it, other than what does the
/// former: of Unicode's text segmentation (UAX #29) the classes Other and LF without the pictographs, and the Hangul
/// syllables LV and LVT. The blocks in which most text is written are enough; the others are looked at closely.
constexpr bool standsAlone(char16_t unit)
{
    if (unit < 0x80) {
        return unit != u'\r';
    }
    const bool isLatin = unit >= 0x00C0 && unit <= 0x02FF;
    const bool isKana = (unit >= 0x3041 && unit <= 0x3096) || (unit >= 0x30A1 && unit <= 0x30FA);
    const bool isIdeograph = unit >= 0x4E00 && unit <= 0x9FFF;
    const bool isHangulSyllable = unit >= 0xAC00 && unit <= 0xD7A3;
    // Lines of tables and trees.
    const bool isBoxDrawing = unit >= 0x2500 && unit <= 0x259F;
    return isLatin || isKana || isIdeograph || isHangulSyllable || isBoxDrawing;
}

/// The end of the run of units from `offset` on that stand alone. Plain text goes by in blocks, which the compiler does
/// several units at a time.
qsizetype endOfLoners(QStringView text, qsizetype offset)
{
    constexpr qsizetype blockSize = 32;
    const char16_t* units = text.utf16();
    while (offset < text.size()) {
        const qsizetype end = std::min(offset + blockSize, text.size());
        bool isPlain = true;
        for (qsizetype at = offset; at < end; ++at) {
            isPlain &= units[at] < 0x80 && units[at] != u'\r';
        }
        const auto standing = [](char16_t unit) { return standsAlone(unit); };
        if (!isPlain) {
            const char16_t* loner = std::find_if_not(units + offset, units + end, standing);
            if (loner != units + end) {
                return loner - units;
            }
        }
        offset = end;
    }
    return text.size();
}

/// Whether the units at `offset` - 1 and `offset` are surely of two characters.
bool isSurelyBoundary(QStringView text, qsizetype offset)
{
    return standsAlone(text[offset - 1].unicode()) && standsAlone(text[offset].unicode());
}

/// Adds the characters of `range`, which begins and ends at boundaries and is not empty, to `count`; where the last of
/// them begins.
qsizetype countClosely(QStringView text, TextRange range, qsizetype& count)
{
    if (range.length == 1) {
        ++count;
        return range.location;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data() + range.location, range.length);
    qsizetype lastStart = 0;
    for (qsizetype at = 0; at < range.length; at = finder.toNextBoundary()) {
        lastStart = at;
        ++count;
    }
    return range.location + lastStart;
}

} // namespace

qsizetype GraphemeCounter::count(QStringView text)
{
    Boundary at = last_;
    while (at.offset < text.size()) {
        const qsizetype start = at.offset;
        const qsizetype next = std::max(start + 1, endOfLoners(text, start));
        // The unit before `next` may be the first of a longer character.
        at.count += next - 1 - start;
        qsizetype end = next;
        while (end < text.size() && !isSurelyBoundary(text, end)) {
            ++end;
        }
        const qsizetype lastStart = countClosely(text, {next - 1, end - next + 1}, at.count);
        at.offset = end;
        // A pair of surrogates that is not whole yet may still become anything.
        if (end == text.size() && !text.back().isHighSurrogate()) {
            last_ = {lastStart, at.count - 1};
        }
        if (at.offset < text.size() && at.offset - kept_.back().offset >= keptDistance) {
            kept_.push_back(at);
        }
    }
    return at.count;
}

void GraphemeCounter::textReplaced(qsizetype offset)
{
    // Another unit behind a boundary may make one character with the unit right at it, and so undo the boundary.
    const auto stands = [offset](Boundary boundary) { return boundary.offset == 0 || boundary.offset + 1 < offset; };
    while (!stands(kept_.back())) {
        kept_.pop_back();
    }
    if (!stands(last_)) {
        last_ = kept_.back();
    }
}

} // namespace kelm
