#include "editor/kept_ready/cursor_places.h"

#include "text/boundaries/text_boundaries.h"

#include <algorithm>
#include <array>

namespace kelm {

namespace {

std::optional<qsizetype> sameColumn(qsizetype column, TextRange line)
{
    return std::min(line.location + column, line.end() - 1);
}

/// A line's text: the range without its terminator.
TextRange withoutTerminator(const TextStorage& storage, TextRange line)
{
    qsizetype end = line.end();
    const bool isLast = end == storage.length() && storage.lineRange({end, 0}).location < end;
    if (!isLast && end > line.location) {
        end = previousGraphemeBoundary(storage.tree(), end);
    }
    return {line.location, std::max(line.location, end) - line.location};
}

} // namespace

std::optional<qsizetype> placeAbove(const TextStorage& storage, qsizetype position)
{
    const TextRange line = storage.lineRange({position, 0});
    if (line.location == 0) {
        return {};
    }
    return sameColumn(position - line.location, storage.lineRange({line.location - 1, 0}));
}

std::optional<qsizetype> placeBelow(const TextStorage& storage, qsizetype position)
{
    const TextRange line = storage.lineRange({position, 0});
    if (line.end() >= storage.length()) {
        return {};
    }
    return sameColumn(position - line.location, storage.lineRange({line.end(), 0}));
}

std::vector<TextRange> occurrences(QStringView text, QStringView needle)
{
    std::vector<TextRange> found;
    if (needle.isEmpty()) {
        return found;
    }
    const auto isBoundary = [text](qsizetype offset) { return graphemeBoundaryAtOrBefore(text, offset) == offset; };
    for (qsizetype at = text.indexOf(needle); at >= 0;) {
        const bool isWhole = isBoundary(at) && isBoundary(at + needle.size());
        if (isWhole) {
            found.push_back({at, needle.size()});
        }
        at = text.indexOf(needle, isWhole ? at + needle.size() : at + 1);
    }
    return found;
}

std::vector<qsizetype> lineEnds(const TextStorage& storage, TextRange range)
{
    const TextRange whole = storage.lineRange(range.clampedTo(storage.length()));
    std::vector<qsizetype> ends;
    for (qsizetype at = whole.location; at < whole.end() || ends.empty();) {
        const TextRange line = storage.lineRange({at, 0});
        ends.push_back(withoutTerminator(storage, line).end());
        at = line.end();
    }
    return ends;
}

TextRange expanded(const TextStorage& storage, TextRange selection)
{
    const TextRange lines = storage.lineRange(selection);
    const TextRange first = storage.lineRange({lines.location, 0});
    const TextRange last = storage.lineRange({std::max(lines.location, lines.end() - 1), 0});
    const qsizetype textEnd = withoutTerminator(storage, last).end();
    const std::array steps{
        wordAt(storage.text(), selection.location),
        TextRange::between(first.location, textEnd),
        lines,
        TextRange{0, storage.length()},
    };
    const auto larger = std::find_if(steps.begin(), steps.end(), [selection](TextRange step) {
        return step.location <= selection.location && step.end() >= selection.end() && step.length > selection.length;
    });
    return larger != steps.end() ? *larger : selection;
}

} // namespace kelm
