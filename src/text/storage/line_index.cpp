#include "text/storage/line_index.h"

namespace kelm {

namespace {

constexpr char16_t lineFeed = u'\n';
constexpr char16_t carriageReturn = u'\r';

bool isOddTerminator(char16_t unit)
{
    return unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

/// Whether the unit can end a line. Written so that the common unit falls out of the first comparison but one.
bool mayTerminate(char16_t unit)
{
    return unit <= carriageReturn ? unit == lineFeed || unit == carriageReturn : isOddTerminator(unit);
}

/// Whether a line ends right behind the unit at `offset`.
bool endsLine(QStringView text, qsizetype offset)
{
    const char16_t unit = text[offset].unicode();
    if (unit == carriageReturn) {
        return offset + 1 >= text.size() || text[offset + 1] != u'\n';
    }
    return unit == lineFeed || isOddTerminator(unit);
}

/// Whether the line end behind `offset` is neither a line feed nor the pair.
bool isOddEnd(QStringView text, qsizetype offset)
{
    return text[offset] != u'\n' && endsLine(text, offset);
}

/// Calls `found` with the offset behind each line end whose last unit lies in `range`.
template <typename Found>
void forEachLineEnd(QStringView text, TextRange range, Found found)
{
    const char16_t* units = text.utf16();
    for (qsizetype i = range.location; i < range.end(); ++i) {
        if (mayTerminate(units[i]) && endsLine(text, i)) {
            found(i + 1);
        }
    }
}

} // namespace

qsizetype lineTerminatorLength(QStringView text, qsizetype offset)
{
    if (offset >= text.size() || !mayTerminate(text[offset].unicode())) {
        return 0;
    }
    const bool isPair = text[offset] == u'\r' && offset + 1 < text.size() && text[offset + 1] == u'\n';
    return isPair ? 2 : 1;
}

LineIndex::LineIndex()
{
    starts_.reset({0});
}

qsizetype LineIndex::lineAt(qsizetype offset) const
{
    return starts_.upperBound(std::max<qsizetype>(0, offset)) - 1;
}

void LineIndex::rebuild(QStringView text)
{
    std::vector<qsizetype> starts{0};
    oddTerminators_ = 0;
    forEachLineEnd(text, {0, text.size()}, [&](qsizetype start) {
        starts.push_back(start);
        oddTerminators_ += text[start - 1] != u'\n' ? 1 : 0;
    });
    starts_.reset(std::move(starts));
    length_ = text.size();
}

TextRange LineIndex::affected(TextRange range, qsizetype textLength)
{
    const qsizetype start = std::max<qsizetype>(0, range.location - 1);
    return {start, std::min(textLength, range.end() + 1) - start};
}

qsizetype LineIndex::countOdd(QStringView text, TextRange range)
{
    qsizetype count = 0;
    for (qsizetype i = range.location; i < range.end(); ++i) {
        count += mayTerminate(text[i].unicode()) && isOddEnd(text, i) ? 1 : 0;
    }
    return count;
}

TextEdit LineIndex::replace(QStringView text, TextRange range, qsizetype newLength, qsizetype oddRemoved)
{
    const qsizetype change = newLength - range.length;
    const TextRange before = affected(range, length_);
    const TextRange after{before.location, before.length + change};

    std::vector<qsizetype> added;
    forEachLineEnd(text, after, [&added](qsizetype start) { added.push_back(start); });
    qsizetype firstRemoved = starts_.upperBound(before.location);
    qsizetype removedCount = starts_.upperBound(before.end()) - firstRemoved;
    // A line end right before or behind the replaced range that stayed one bounds the change: it is no part of it.
    if (removedCount > 0 && !added.empty() && added.front() <= range.location &&
        added.front() == starts_.at(firstRemoved)) {
        added.erase(added.begin());
        ++firstRemoved;
        --removedCount;
    }
    const qsizetype lastRemoved = firstRemoved + removedCount - 1;
    if (removedCount > 0 && !added.empty() && starts_.at(lastRemoved) > range.end() &&
        added.back() == starts_.at(lastRemoved) + change) {
        added.pop_back();
        --removedCount;
    }
    const qsizetype firstLine = firstRemoved - 1;

    const auto addedCount = static_cast<qsizetype>(added.size());
    starts_.replace(firstRemoved, removedCount, added);
    starts_.shift(firstRemoved + addedCount, change);
    oddTerminators_ += countOdd(text, after) - oddRemoved;
    length_ += change;
    return {range, newLength, firstLine, removedCount + 1, addedCount + 1};
}

} // namespace kelm
