// A shown diff as one text, for those who hear it.
#pragma once

#include "git/diff/diff_selection.h"

#include <QString>

#include <optional>
#include <vector>

namespace kelm {

/// The paths, the headers of the hunks and the lines, each with what it is in words, since readers pass over signs; in
/// the order in which they are read, and in the side-by-side form the two sides of a row one after the other, and once
/// where both are the same. What is collapsed is left out. Offsets are UTF-16 units. Made in one pass over the diff.
class DiffTranscript
{
public:
    struct Line
    {
        qsizetype start = 0;
        /// Where the line's text stands. The header of a hunk stands at its entry -1.
        DiffTextPlace place;
        SideBySideHunkLines::Side side = SideBySideHunkLines::Side::newSide;
        /// The units before the text: its kind.
        qsizetype prefix = 0;
    };

    DiffTranscript() = default;
    explicit DiffTranscript(const DiffLayout& layout);

    const QString& text() const { return text_; }
    const std::vector<Line>& lines() const { return lines_; }
    /// The line that an offset is in. There is none in an empty text.
    const Line* lineAt(qsizetype offset) const;
    /// The place of an offset, which is at the start of the text for one in the kind.
    DiffTextPlace placeOf(qsizetype offset) const;
    /// The offset of a place; absent where the place is not in the text.
    std::optional<qsizetype> offsetOf(const DiffTextPlace& place, SideBySideHunkLines::Side side) const;

private:
    void append(const QString& kind, QStringView line, const DiffTextPlace& place, SideBySideHunkLines::Side side);

    QString text_;
    std::vector<Line> lines_;
};

/// The sign before a line: a blank for context.
QString diffSign(DiffLineKind kind);
/// What is said before a line: nothing for context.
QString spokenKind(DiffLineKind kind);

} // namespace kelm
