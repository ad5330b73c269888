// How many rows each line of a text takes, and where they stand.
#pragma once

#include <QtGlobal>

#include <utility>
#include <vector>

namespace kelm {

/// A line and one of its rows, both counted from 0.
struct RowPosition
{
    qsizetype line = 0;
    qsizetype row = 0;

    friend bool operator==(RowPosition, RowPosition) = default;
};

/// Tells how many rows lines take, for those that nobody has asked for yet.
class RowMeasure
{
public:
    virtual ~RowMeasure() = default;

    /// The number of rows of each of `count` lines from `first` on.
    virtual std::vector<int> rowsOfLines(qsizetype first, qsizetype count) = 0;
    /// The number of rows of all of them together, more or less, without a look at each.
    virtual qsizetype guessedRows(qsizetype first, qsizetype count) = 0;
    /// Lines were measured that together have another number of rows than was guessed.
    virtual void guessCorrected() = 0;
};

/// The number of rows of every line, with prefix sums over blocks of lines: from a line to its first row and back in
/// logarithmic time, and a changed count costs the blocks behind it one addition each, not the lines.
///
/// Of a long text the blocks are guessed as a whole, and measured when one of their lines is asked for.
class RowTable
{
public:
    /// Without a measure all lines must be given their rows.
    explicit RowTable(RowMeasure* measure = nullptr) : measure_(measure) {}

    qsizetype lineCount() const;
    qsizetype rowCount() const;
    qsizetype rowsOf(qsizetype line) const;
    /// The number of rows before a line. `line` may be the line count, which gives all rows.
    qsizetype firstRow(qsizetype line) const;
    /// The line that holds a row, and which of its rows that is; clamped to the table, which must not be empty.
    RowPosition at(qsizetype row) const;

    void assign(const std::vector<int>& rows);
    /// That many lines, to be measured when they are asked for.
    void assignUnmeasured(qsizetype lines);
    void setRows(qsizetype line, int rows);
    void replaceLines(qsizetype first, qsizetype removed, const std::vector<int>& added);
    /// The same with lines that are measured when they are asked for; the measure already knows them by their new
    /// numbers. Not a block is measured now.
    void replaceWithUnmeasured(qsizetype first, qsizetype removed, qsizetype added);
    /// Grows whenever a line may stand at another row than before.
    quint64 revision() const { return revision_; }
    /// Whether the rows of a line are known and not guessed.
    bool isMeasured(qsizetype line) const;

private:
    struct Block
    {
        /// Empty where the block is not measured.
        std::vector<int> rows;
        qsizetype lines = 0;
        qsizetype sum = 0;

        bool isMeasured() const { return !rows.empty(); }
    };

    struct Place
    {
        std::size_t block;
        std::size_t index;
    };

    Place placeOf(qsizetype line) const;
    void measure(std::size_t block) const;
    /// The blocks that hold the lines: from the first to before the second.
    std::pair<std::size_t, std::size_t> blocksOf(qsizetype first, qsizetype count) const;
    void appendBlocks(std::vector<Block>& blocks, const std::vector<int>& rows) const;
    void appendUnmeasured(std::vector<Block>& blocks, qsizetype firstLine, qsizetype lines) const;
    void replaceBlocks(std::size_t first, std::size_t end, std::vector<Block> with);
    void refreshSums() const;

    RowMeasure* measure_;
    mutable std::vector<Block> blocks_;
    // Lines and rows before each block, and one more entry for all of them; right up to `firstStale_`.
    mutable std::vector<qsizetype> linesBefore_{0};
    mutable std::vector<qsizetype> rowsBefore_{0};
    mutable std::size_t firstStale_ = 0;
    mutable quint64 revision_ = 0;
};

} // namespace kelm
