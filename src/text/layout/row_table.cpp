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

bool RowTable::isMeasured(qsizetype line) const
{
    return blocks_[placeOf(line).block].isMeasured();
}

qsizetype RowTable::rowsOf(qsizetype line) const
{
    const Place place = placeOf(line);
    measure(place.block);
    return blocks_[place.block].rows[place.index];
}

qsizetype RowTable::firstRow(qsizetype line) const
{
    refreshSums();
    if (line >= linesBefore_.back()) {
        return rowsBefore_.back();
    }
    const Place place = placeOf(line);
    if (place.index == 0) {
        return rowsBefore_[place.block];
    }
    measure(place.block);
    const std::vector<int>& rows = blocks_[place.block].rows;
    return std::accumulate(rows.begin(), rows.begin() + static_cast<qsizetype>(place.index), rowsBefore_[place.block]);
}

RowPosition RowTable::at(qsizetype row) const
{
    // Measuring a block moves those behind it, so that the row may be found in another one.
    for (;;) {
        refreshSums();
        const qsizetype wanted = std::clamp<qsizetype>(row, 0, rowsBefore_.back() - 1);
        const auto behind = std::upper_bound(rowsBefore_.begin(), rowsBefore_.end(), wanted);
        const auto block = static_cast<std::size_t>(behind - rowsBefore_.begin()) - 1;
        if (!blocks_[block].isMeasured()) {
            measure(block);
            continue;
        }
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
}

void RowTable::measure(std::size_t number) const
{
    Block& block = blocks_[number];
    if (block.isMeasured()) {
        return;
    }
    block.rows = measure_->rowsOfLines(linesBefore_[number], block.lines);
    const qsizetype sum = std::accumulate(block.rows.begin(), block.rows.end(), qsizetype(0));
    if (std::exchange(block.sum, sum) != sum) {
        firstStale_ = std::min(firstStale_, number);
        ++revision_;
        measure_->guessCorrected();
    }
}

void RowTable::assign(const std::vector<int>& rows)
{
    blocks_.clear();
    appendBlocks(blocks_, rows);
    firstStale_ = 0;
    ++revision_;
}

void RowTable::assignUnmeasured(qsizetype lines)
{
    blocks_.clear();
    appendUnmeasured(blocks_, 0, lines);
    firstStale_ = 0;
    ++revision_;
}

void RowTable::setRows(qsizetype line, int rows)
{
    const Place place = placeOf(line);
    measure(place.block);
    Block& block = blocks_[place.block];
    const int change = rows - block.rows[place.index];
    if (change == 0) {
        return;
    }
    block.rows[place.index] = rows;
    block.sum += change;
    firstStale_ = std::min(firstStale_, place.block);
    ++revision_;
}

void RowTable::replaceLines(qsizetype first, qsizetype removed, const std::vector<int>& added)
{
    const auto [from, end] = blocksOf(first, removed);
    const auto isUnmeasured = [](const Block& block) { return !block.isMeasured(); };
    if (std::any_of(blocks_.begin() + static_cast<qsizetype>(from), blocks_.begin() + static_cast<qsizetype>(end),
                    isUnmeasured)) {
        replaceWithUnmeasured(first, removed, static_cast<qsizetype>(added.size()));
        return;
    }
    // What is left of the first and the last touched block is put together with what is new, and cut into blocks again.
    std::vector<int> rows;
    if (from < end) {
        const std::vector<int>& head = blocks_[from].rows;
        rows.assign(head.begin(), head.begin() + (first - linesBefore_[from]));
    }
    rows.insert(rows.end(), added.begin(), added.end());
    if (from < end) {
        const std::vector<int>& tail = blocks_[end - 1].rows;
        rows.insert(rows.end(), tail.begin() + (first + removed - linesBefore_[end - 1]), tail.end());
    }
    std::vector<Block> rebuilt;
    appendBlocks(rebuilt, rows);
    replaceBlocks(from, end, std::move(rebuilt));
}

void RowTable::replaceWithUnmeasured(qsizetype first, qsizetype removed, qsizetype added)
{
    const auto [from, end] = blocksOf(first, removed);
    const qsizetype lines = linesBefore_[end] - linesBefore_[from] - removed + added;
    std::vector<Block> rebuilt;
    appendUnmeasured(rebuilt, linesBefore_[from], lines);
    replaceBlocks(from, end, std::move(rebuilt));
}

std::pair<std::size_t, std::size_t> RowTable::blocksOf(qsizetype first, qsizetype count) const
{
    refreshSums();
    const auto blockAt = [this](qsizetype line) {
        const auto behind = std::upper_bound(linesBefore_.begin(), linesBefore_.end(), line);
        return std::min(static_cast<std::size_t>(behind - linesBefore_.begin()) - 1, blocks_.size());
    };
    const std::size_t from = blockAt(first);
    const std::size_t last = count > 0 ? blockAt(first + count - 1) : from;
    return {from, std::min(last + 1, blocks_.size())};
}

void RowTable::replaceBlocks(std::size_t first, std::size_t end, std::vector<Block> with)
{
    const auto position =
        blocks_.erase(blocks_.begin() + static_cast<qsizetype>(first), blocks_.begin() + static_cast<qsizetype>(end));
    blocks_.insert(position, std::make_move_iterator(with.begin()), std::make_move_iterator(with.end()));
    firstStale_ = std::min(firstStale_, first);
    ++revision_;
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
        Block block{{first, first + static_cast<qsizetype>(size)}, static_cast<qsizetype>(size), 0};
        block.sum = std::accumulate(block.rows.begin(), block.rows.end(), qsizetype(0));
        blocks.push_back(std::move(block));
        at += size;
    }
}

void RowTable::appendUnmeasured(std::vector<Block>& blocks, qsizetype firstLine, qsizetype lines) const
{
    constexpr auto most = static_cast<qsizetype>(blockSize);
    while (lines > 0) {
        const qsizetype size = lines <= most + most / 2 ? lines : most;
        blocks.push_back({{}, size, measure_->guessedRows(firstLine, size)});
        firstLine += size;
        lines -= size;
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
        linesBefore_[block + 1] = linesBefore_[block] + blocks_[block].lines;
        rowsBefore_[block + 1] = rowsBefore_[block] + blocks_[block].sum;
    }
    firstStale_ = blocks_.size();
}

} // namespace kelm
