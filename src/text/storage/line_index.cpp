#include "text/storage/line_index.h"

#include "text/storage/line_terminator.h"

#include <utility>

namespace kelm {

const LineIndex::Known& LineIndex::known(qsizetype line) const
{
    Known& known = known_[static_cast<std::size_t>(line) % mostKnown];
    if (known.line != line) {
        const qsizetype start = tree_.lineStart(line);
        const qsizetype end = tree_.lineStart(line + 1);
        known = {line, TextRange::between(start, end), 0};
        if (line + 1 < lineCount()) {
            known.terminator = end - start > 1 && tree_.at(end - 1) == u'\n' && tree_.at(end - 2) == u'\r' ? 2 : 1;
        }
    }
    return known;
}

TextRange LineIndex::content(qsizetype line) const
{
    const Known& found = known(line);
    return {found.extent.location, found.extent.length - found.terminator};
}

qsizetype LineIndex::lineAt(qsizetype offset) const
{
    if (lastLine_ < 0 || !extent(lastLine_).contains(offset)) {
        lastLine_ = tree_.lineAt(offset);
    }
    return lastLine_;
}

void LineIndex::forget()
{
    known_.fill({});
    lastLine_ = -1;
}

namespace {

/// Where a walk from line to line has come to.
struct LineWalk
{
    const std::function<void(TextRange)>& look;
    /// How many lines are still to be looked at, and where the first of them begins.
    qsizetype left = 0;
    qsizetype start = 0;

    /// False when that was the last one.
    bool lineEnds(qsizetype end)
    {
        look(TextRange::between(start, end));
        start = end;
        return --left > 0;
    }
};

enum class Walked { toTheLast, toTheEnd, intoALongLine };

/// Looks at the text unit by unit, until a piece of it has no line end.
Walked walkUnits(const TextTree& text, LineWalk& walk)
{
    qsizetype offset = walk.start;
    bool endsInReturn = false;
    bool isLong = false;
    const bool hasMore = text.forEachPiece({offset, text.length() - offset}, [&](QStringView piece) {
        qsizetype at = 0;
        if (std::exchange(endsInReturn, false)) {
            at = piece.front() == u'\n' ? 1 : 0;
            if (!walk.lineEnds(offset + at)) {
                return false;
            }
        }
        while (at < piece.size()) {
            const qsizetype length = lineTerminatorLength(piece, at);
            at += std::max(length, qsizetype(1));
            if (length == 1 && at == piece.size() && piece.back() == u'\r') {
                endsInReturn = true;
            } else if (length > 0 && !walk.lineEnds(offset + at)) {
                return false;
            }
        }
        isLong = walk.start <= offset && !endsInReturn;
        offset += piece.size();
        return !isLong;
    });
    if (isLong) {
        return Walked::intoALongLine;
    }
    return hasMore && (!endsInReturn || walk.lineEnds(text.length())) ? Walked::toTheEnd : Walked::toTheLast;
}

} // namespace

void forEachLine(const TextTree& text, qsizetype first, qsizetype count, const std::function<void(TextRange)>& look)
{
    LineWalk walk{look, count, text.lineStart(first)};
    while (walk.left > 0) {
        const Walked walked = walkUnits(text, walk);
        if (walked == Walked::toTheLast) {
            return;
        }
        // The tree knows where a line ends, without a look at each of its units. The last line has no end.
        const qsizetype next = first + count - walk.left + 1;
        if (walked == Walked::toTheEnd || next >= text.lineCount()) {
            look(TextRange::between(walk.start, text.length()));
            return;
        }
        walk.lineEnds(text.lineStart(next));
    }
}

TextEdit editBetween(const TextTree& before, const TextTree& after, TextRange range)
{
    const qsizetype change = after.length() - before.length();
    // One unit more on each side, since a carriage return and a line feed that meet or part are two lines or one.
    const TextRange old =
        TextRange::between(std::max<qsizetype>(0, range.location - 1), std::min(before.length(), range.end() + 1));
    const qsizetype lineBefore = before.lineAt(old.location);
    qsizetype firstChanged = lineBefore + 1;
    qsizetype removed = before.lineAt(old.end()) - lineBefore;
    qsizetype added = after.lineAt(old.end() + change) - after.lineAt(old.location);
    if (removed > 0 && added > 0) {
        const qsizetype start = after.lineStart(firstChanged);
        if (start <= range.location && start == before.lineStart(firstChanged)) {
            ++firstChanged;
            --removed;
            --added;
        }
    }
    if (removed > 0 && added > 0) {
        const qsizetype start = before.lineStart(firstChanged + removed - 1);
        if (start > range.end() && after.lineStart(firstChanged + added - 1) == start + change) {
            --removed;
            --added;
        }
    }
    return {range, range.length + change, firstChanged - 1, removed + 1, added + 1};
}

} // namespace kelm
