#include "git/diff/common_subsequence.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kelm {

namespace {

using Word = std::uint64_t;
using Words = std::vector<Word>;
constexpr std::size_t wordBits = 64;

/// Up to so many words of steps are kept at once (4 MiB) before rows are computed twice to save memory.
constexpr std::size_t stepBudget = std::size_t(1) << 19;

bool bit(const Word* words, std::size_t index)
{
    return ((words[index / wordBits] >> (index % wordBits)) & 1) != 0;
}

void setBit(Words& words, std::size_t index)
{
    words[index / wordBits] |= Word(1) << (index % wordBits);
}

/// For each element the columns of `b` in which it stands. Frequent elements have a whole row of bits ready; a rare
/// one's columns are set in a scratch row when it is asked for, so that memory stays linear in `b`.
class Columns
{
public:
    Columns(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b)
        : words_((b.size() + wordBits - 1) / wordBits), scratch_(words_)
    {
        std::uint32_t largest = 0;
        for (const auto* sequence : {&a, &b}) {
            largest = std::max(largest, *std::max_element(sequence->begin(), sequence->end()));
        }
        positions_.resize(std::size_t(largest) + 1);
        rows_.resize(std::size_t(largest) + 1);
        for (std::size_t column = 0; column < b.size(); ++column) {
            positions_[b[column]].push_back(static_cast<std::uint32_t>(column));
        }
        for (std::size_t element = 0; element < positions_.size(); ++element) {
            if (positions_[element].size() >= words_) {
                rows_[element].resize(words_);
                for (const std::uint32_t column : positions_[element]) {
                    setBit(rows_[element], column);
                }
            }
        }
    }

    std::size_t words() const { return words_; }

    /// The row of bits of `element`, null when it stands nowhere; valid until the next call.
    const Word* of(std::uint32_t element)
    {
        if (!rows_[element].empty()) {
            return rows_[element].data();
        }
        if (positions_[element].empty()) {
            return nullptr;
        }
        for (const std::uint32_t column : inScratch_) {
            scratch_[column / wordBits] = 0;
        }
        inScratch_ = positions_[element];
        for (const std::uint32_t column : inScratch_) {
            setBit(scratch_, column);
        }
        return scratch_.data();
    }

private:
    std::size_t words_;
    std::vector<std::vector<std::uint32_t>> positions_;
    std::vector<Words> rows_;
    Words scratch_;
    std::vector<std::uint32_t> inScratch_;
};

/// Takes `row` from one row of the table to the next, whose element stands in the columns `matches`. A bit of a row is
/// clear where the length grows from the column before. When `steps` is given, its bit is set where the walk back is to
/// step in `b`: where the length is that of the column before and more than that of the row before.
void nextRow(Words& row, const Word* matches, Word* steps)
{
    if (matches == nullptr) {
        return;
    }
    Word carry = 0;
    for (std::size_t index = 0; index < row.size(); ++index) {
        const Word before = row[index];
        const Word hit = before & matches[index];
        const Word partial = before + hit;
        const Word sum = partial + carry;
        carry = Word(partial < before) | Word(sum < partial);
        const Word after = sum | (before & ~matches[index]);
        if (steps != nullptr) {
            // The carry out of a column says that the length has grown there from the row before.
            steps[index] = after & (hit | (before & ~sum));
        }
        row[index] = after;
    }
}

} // namespace

std::vector<std::uint32_t> commonSubsequence(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b)
{
    if (a.empty() || b.empty()) {
        return {};
    }
    Columns columns(a, b);
    const std::size_t words = columns.words();
    // Rows per block: all of them if they fit the budget, else about as many as there are blocks.
    const std::size_t blockRows = a.size() * words <= stepBudget
                                      ? a.size()
                                      : static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(a.size()))));
    std::vector<Words> checkpoints;
    Words row(words, ~Word(0));
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (i % blockRows == 0) {
            checkpoints.push_back(row);
            if (i + blockRows >= a.size()) {
                break;
            }
        }
        nextRow(row, columns.of(a[i]), nullptr);
    }

    std::vector<std::uint32_t> common;
    Words steps(blockRows * words);
    std::size_t i = a.size();
    std::size_t j = b.size();
    for (std::size_t block = checkpoints.size(); block-- > 0 && j > 0;) {
        const std::size_t first = block * blockRows;
        std::fill(steps.begin(), steps.end(), 0);
        row = checkpoints[block];
        for (std::size_t r = first; r < i; ++r) {
            nextRow(row, columns.of(a[r]), &steps[(r - first) * words]);
        }
        while (i > first && j > 0) {
            if (a[i - 1] == b[j - 1]) {
                --i;
                --j;
                common.push_back(static_cast<std::uint32_t>(i));
            } else if (bit(&steps[(i - 1 - first) * words], j - 1)) {
                --j;
            } else {
                --i;
            }
        }
    }
    std::reverse(common.begin(), common.end());
    return common;
}

} // namespace kelm
