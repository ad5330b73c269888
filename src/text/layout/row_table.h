// How many rows each line of a text takes, and where they stand.
#pragma once

#include <QtGlobal>

#include <vector>

namespace kelm {

/// A line and one of its rows, both counted from 0.
struct RowPosition
{
    qsizetype line = 0;
    qsizetype row = 0;

    friend bool operator==(RowPosition, RowPosition) = default;
};

/// The number of rows of every line, with prefix sums over blocks of lines: from a line to its first row and back in
/// logarithmic time, and a changed count costs the blocks behind it one addition each, not the lines.
class RowTable
{
public:
    qsizetype lineCount() const;
    qsizetype rowCount() const;
    qsizetype rowsOf(qsizetype line) const;
    /// The number of rows before a line. `line` may be the line count, which gives all rows.
    qsizetype firstRow(qsizetype line) const;
    /// The line that holds a row, and which of its rows that is; clamped to the table, which must not be empty.
    RowPosition at(qsizetype row) const;

    void assign(const std::vector<int>& rows);
    void setRows(qsizetype line, int rows);
    void replaceLines(qsizetype first, qsizetype removed, const std::vector<int>& added);

private:
    struct Block
    {
        std::vector<int> rows;
        qsizetype sum = 0;
    };

    struct Place
    {
        std::size_t block;
        std::size_t index;
    };

    Place placeOf(qsizetype line) const;
    void appendBlocks(std::vector<Block>& blocks, const std::vector<int>& rows) const;
    void refreshSums() const;

    std::vector<Block> blocks_;
    // Lines and rows before each block, and one more entry for all of them; right up to `firstStale_`.
    mutable std::vector<qsizetype> linesBefore_{0};
    mutable std::vector<qsizetype> rowsBefore_{0};
    mutable std::size_t firstStale_ = 0;
};

} // namespace kelm
