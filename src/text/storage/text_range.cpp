#include "text/storage/text_range.h"

namespace kelm {

namespace {

/// A span of the old text and the span of the new text that took its place; both begin at `start`.
struct Span
{
    qsizetype start;
    qsizetype oldCount;
    qsizetype newCount;

    Span followedBy(Span next) const
    {
        // Where the spans leave text between them, that text belongs to the union, once on each side.
        const qsizetype head = std::max<qsizetype>(0, start - next.start);
        const qsizetype tail = std::max<qsizetype>(0, next.start + next.oldCount - (start + newCount));
        return {std::min(start, next.start), oldCount + head + tail,
                newCount + head + tail + next.newCount - next.oldCount};
    }
};

} // namespace

TextEdit TextEdit::followedBy(const TextEdit& next) const
{
    const Span units = Span{range.location, range.length, newLength}.followedBy(
        {next.range.location, next.range.length, next.newLength});
    const Span lines =
        Span{firstLine, linesRemoved, linesAdded}.followedBy({next.firstLine, next.linesRemoved, next.linesAdded});
    return {{units.start, units.oldCount}, units.newCount, lines.start, lines.oldCount, lines.newCount};
}

} // namespace kelm
