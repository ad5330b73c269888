#include "text/layout/row_table.h"

#include <algorithm>
#include <numeric>

namespace kelm {

namespace {

constexpr std::size_t blockSize = 512;

} // namespace

qsizetype RowTable::lineCount() const
{
    refreshSums();
    return linesBefore_.back();
}

qsizetype RowTable::rowCount() const
{
    refreshSums();
    return rowsBefore_.back();
}

qsizetype RowTable::rowsOf(qsizetype line) const
{
    const Place place = placeOf(line);
    return blocks_[place.block].rows[place.index];
}

qsizetype RowTable::firstRow(qsizetype line) const
{
    refreshSums();
    if (line >= linesBefore_.back()) {
        return rowsBefore_.back();
    }
    const Place place = placeOf(line);
    const std::vector<int>& rows = blocks_[place.block].rows;
    return std::accumulate(rows.begin(), rows.begin() + static_cast<qsizetype>(place.index), rowsBefore_[place.block]);
}

RowPosition RowTable::at(qsizetype row) const
{
    refreshSums();
    const qsizetype wanted = std::clamp<qsizetype>(row, 0, rowsBefore_.back() - 1);
    const auto behind = std::upper_bound(rowsBefore_.begin(), rowsBefore_.end(), wanted);
    const auto block = static_cast<std::size_t>(behind - rowsBefore_.begin()) - 1;
    qsizetype rest = wanted - rowsBefore_[block];
    qsizetype line = linesBefore_[block];
    for (const int rows : blocks_[block].rows) {
        if (rest < rows) {
            break;
        }
        rest -= rows;
        ++line;
    }
    return {line, rest};
}

void RowTable::assign(const std::vector<int>& rows)
{
    blocks_.clear();
    appendBlocks(blocks_, rows);
    firstStale_ = 0;
}

void RowTable::setRows(qsizetype line, int rows)
{
    const Place place = placeOf(line);
    Block& block = blocks_[place.block];
    const int change = rows - block.rows[place.index];
    if (change == 0) {
        return;
    }
    block.rows[place.index] = rows;
    block.sum += change;
    firstStale_ = std::min(firstStale_, place.block);
}

void RowTable::replaceLines(qsizetype first, qsizetype removed, const std::vector<int>& added)
{
    if (first >= lineCount()) {
        appendBlocks(blocks_, added);
        firstStale_ = 0;
        return;
    }
    // The touched blocks are put together, changed and cut into blocks again.
    const Place from = placeOf(first);
    std::vector<int> rows;
    std::size_t last = from.block;
    for (qsizetype covered = -static_cast<qsizetype>(from.index); covered < removed || last == from.block; ++last) {
        if (last >= blocks_.size()) {
            break;
        }
        const std::vector<int>& more = blocks_[last].rows;
        covered += static_cast<qsizetype>(more.size());
        rows.insert(rows.end(), more.begin(), more.end());
    }
    const auto at = rows.begin() + static_cast<qsizetype>(from.index);
    const qsizetype common = std::min<qsizetype>(removed, static_cast<qsizetype>(added.size()));
    std::copy_n(added.begin(), common, at);
    if (removed > common) {
        rows.erase(at + common, at + removed);
    } else {
        rows.insert(at + common, added.begin() + common, added.end());
    }
    std::vector<Block> rebuilt;
    appendBlocks(rebuilt, rows);
    const auto position = blocks_.erase(blocks_.begin() + static_cast<qsizetype>(from.block),
                                        blocks_.begin() + static_cast<qsizetype>(last));
    blocks_.insert(position, std::make_move_iterator(rebuilt.begin()), std::make_move_iterator(rebuilt.end()));
    firstStale_ = std::min(firstStale_, from.block);
}

RowTable::Place RowTable::placeOf(qsizetype line) const
{
    refreshSums();
    const auto behind = std::upper_bound(linesBefore_.begin(), linesBefore_.end(), line);
    const auto block = static_cast<std::size_t>(behind - linesBefore_.begin()) - 1;
    return {block, static_cast<std::size_t>(line - linesBefore_[block])};
}

void RowTable::appendBlocks(std::vector<Block>& blocks, const std::vector<int>& rows) const
{
    // Half as much again may stand in one block, so that a single line more does not cut off a block of its own.
    for (std::size_t at = 0; at < rows.size();) {
        const std::size_t rest = rows.size() - at;
        const std::size_t size = rest <= blockSize + blockSize / 2 ? rest : blockSize;
        const auto first = rows.begin() + static_cast<qsizetype>(at);
        Block block{{first, first + static_cast<qsizetype>(size)}, 0};
        block.sum = std::accumulate(block.rows.begin(), block.rows.end(), qsizetype(0));
        blocks.push_back(std::move(block));
        at += size;
    }
}

void RowTable::refreshSums() const
{
    if (firstStale_ > blocks_.size() || (firstStale_ == blocks_.size() && linesBefore_.size() == blocks_.size() + 1)) {
        return;
    }
    linesBefore_.resize(blocks_.size() + 1);
    rowsBefore_.resize(blocks_.size() + 1);
    for (std::size_t block = firstStale_; block < blocks_.size(); ++block) {
        linesBefore_[block + 1] = linesBefore_[block] + static_cast<qsizetype>(blocks_[block].rows.size());
        rowsBefore_[block + 1] = rowsBefore_[block] + blocks_[block].sum;
    }
    firstStale_ = blocks_.size();
}

} // namespace kelm
