// Where the editor's carets go by keys.
#include "text/boundaries/text_boundaries.h"
#include "text/editing/text_editor.h"

#include <cstdlib>

namespace kelm {

namespace {

/// The first place of a row that lies between characters: a line may be wrapped within one.
CaretPlace startOfRow(const TextTree& text, const TextRow& row)
{
    const qsizetype start = graphemeBoundaryAtOrBefore(text, row.range.location);
    const bool isInside = start < row.range.location;
    return {isInside ? std::min(nextGraphemeBoundary(text, start), row.range.end()) : start, false};
}

/// The last one.
CaretPlace endOfRow(const TextTree& text, const TextRow& row)
{
    const qsizetype end = graphemeBoundaryAtOrBefore(text, row.range.end());
    return {std::max(end, row.range.location), !row.isLastOfLine && end == row.range.end()};
}

} // namespace

void TextEditor::move(Movement movement, Extend extend)
{
    SelectionSet next = selections_;
    std::vector<Selection> all;
    for (const Selection& selection : next.all()) {
        all.push_back(moved(selection, movement, extend));
    }
    next.replaceAll(std::move(all));
    history_.endRun();
    assignSelections(std::move(next));
}

void TextEditor::addCarets(Movement direction)
{
    SelectionSet added = selections_;
    for (const Selection& selection : selections_.all()) {
        const TextRow row = layout_.rowOf(selection.head);
        if (const auto next = layout_.neighbour(row, direction == Movement::rowUp ? -1 : 1)) {
            const qreal goalX = selection.goalX.value_or(layout_.xInRow(row, selection.head.offset));
            Selection caret = Selection::caret(layout_.placeInRow(*next, goalX));
            caret.goalX = goalX;
            added.add(caret);
        }
    }
    history_.endRun();
    assignSelections(std::move(added));
}

Selection TextEditor::moved(const Selection& selection, Movement movement, Extend extend)
{
    Selection result = selection;
    result.goalX.reset();
    const TextRange range = selection.range();
    const bool sideways = movement == Movement::characterLeft || movement == Movement::characterRight;
    if (extend == Extend::no && sideways && !selection.isCaret()) {
        // A selection collapses to its side first.
        result.head = {movement == Movement::characterLeft ? range.location : range.end(), false};
    } else {
        std::optional<qreal> goalX = selection.goalX;
        result.head = target(selection, movement, goalX);
        const bool vertical = movement == Movement::rowUp || movement == Movement::rowDown ||
                              movement == Movement::pageUp || movement == Movement::pageDown;
        if (vertical) {
            result.goalX = goalX;
        }
    }
    if (extend == Extend::no) {
        result.anchor = result.head.offset;
    }
    return result;
}

CaretPlace TextEditor::target(const Selection& selection, Movement movement, std::optional<qreal>& goalX)
{
    const TextTree& text = storage_.tree();
    const qsizetype offset = selection.head.offset;
    const LineIndex& lines = storage_.lines();
    switch (movement) {
    case Movement::characterLeft:
        return {previousGraphemeBoundary(text, offset), false};
    case Movement::characterRight:
        return {nextGraphemeBoundary(text, offset), false};
    case Movement::wordLeft:
        return {previousWordStart(text, offset), false};
    case Movement::wordRight:
        return {nextWordEnd(text, offset), false};
    case Movement::rowUp:
        return byRows(selection, -1, goalX);
    case Movement::rowDown:
        return byRows(selection, 1, goalX);
    case Movement::pageUp:
        return byRows(selection, -pageRows_, goalX);
    case Movement::pageDown:
        return byRows(selection, pageRows_, goalX);
    case Movement::rowStart:
        return startOfRow(text, layout_.rowOf(selection.head));
    case Movement::rowEnd:
        return endOfRow(text, layout_.rowOf(selection.head));
    case Movement::lineStart:
        return {lines.start(lines.lineAt(offset)), false};
    case Movement::lineEnd: {
        const qsizetype line = lines.lineAt(offset);
        const qsizetype end = lines.end(line);
        const bool isLast = line + 1 == lines.lineCount();
        return {isLast ? end : previousGraphemeBoundary(text, end), false};
    }
    case Movement::textStart:
        return {0, false};
    case Movement::textEnd:
        return {storage_.length(), false};
    }
    return selection.head;
}

CaretPlace TextEditor::byRows(const Selection& selection, qsizetype rows, std::optional<qreal>& goalX)
{
    TextRow row = layout_.rowOf(selection.head);
    if (!goalX) {
        goalX = layout_.xInRow(row, selection.head.offset);
    }
    const int direction = rows < 0 ? -1 : 1;
    for (qsizetype left = std::abs(rows); left > 0; --left) {
        const std::optional<TextRow> next = layout_.neighbour(row, direction);
        if (!next) {
            // Past the first or last row the caret goes to the end of the text on that side.
            return {direction < 0 ? 0 : storage_.length(), false};
        }
        row = *next;
    }
    return layout_.placeInRow(row, *goalX);
}

} // namespace kelm
