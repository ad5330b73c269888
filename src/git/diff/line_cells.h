// Lines of text on a grid of equally wide cells.
#pragma once

#include <QString>

#include <vector>

namespace kelm {

/// Cells from one tab stop to the next.
inline constexpr qsizetype cellsPerTab = 4;

/// The number of cells that a line takes: one for most characters, two for wide ones such as Hangul and Han, none for
/// combining marks, up to the next stop for a tab. Linear in the line; quick where it is plain ASCII.
qsizetype cellCount(QStringView line);

/// A line cut into rows of at most so many cells, behind a blank where there is one in the row's second half, else
/// anywhere. Every row but that of an empty line holds at least one character. Tab stops count from the start of each
/// row.
///
/// Making it costs one pass over the line, or next to nothing where the line is short.
class LineRows
{
public:
    /// `columns` is at least 1.
    LineRows(QStringView line, qsizetype columns);

    qsizetype count() const { return static_cast<qsizetype>(starts_.size()); }
    /// The first UTF-16 unit of a row, and the one behind its last.
    qsizetype start(qsizetype row) const { return starts_[static_cast<std::size_t>(row)]; }
    qsizetype end(qsizetype row) const { return row + 1 < count() ? start(row + 1) : length_; }
    /// The row that holds a unit; the last one for the line's end.
    qsizetype rowOf(qsizetype unit) const;

private:
    qsizetype length_;
    std::vector<qint32> starts_;
};

/// A row of a line as it is drawn: tabs as blanks, control characters as their pictures, line separators as blanks.
struct DrawnText
{
    QString text;
    /// For each unit of the row, and its end, where it stands in `text`.
    std::vector<qint32> places;

    /// The unit at or before a place in `text`.
    qsizetype unitAt(qsizetype place) const;
};

/// `row` is a whole row of a line.
DrawnText drawnText(QStringView row);

} // namespace kelm
