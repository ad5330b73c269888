#include "git/diff/common_subsequence.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

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

/// The walk back through the table, a block of its rows after the other.
class WalkBack
{
public:
    WalkBack(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b, const std::atomic<bool>& stop)
        : a_(a), b_(b), stop_(stop), columns_(a, b), i_(a.size()), j_(b.size())
    {}

    /// The indices in `a` that it takes, ascending; none when it was stopped.
    std::vector<std::uint32_t> take(std::size_t mostKept)
    {
        walk(0, Words(columns_.words(), ~Word(0)), mostKept);
        if (stop_) {
            return {};
        }
        std::reverse(common_.begin(), common_.end());
        return std::move(common_);
    }

private:
    /// Walks from where it stands to the row `first`, whose bits are `row`. No more than about `mostKept` words of
    /// checkpoints are kept for it.
    void walk(std::size_t first, Words row, std::size_t mostKept)
    {
        const std::size_t words = columns_.words();
        const std::size_t rows = i_ - first;
        if (rows <= 1 || rows * words <= stepBudget) {
            walkBySteps(first, std::move(row));
            return;
        }
        // About as many blocks as a block has rows, or as many as may be kept; the rest is for the blocks' own.
        const auto root = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(rows))));
        const std::size_t blocks = std::clamp<std::size_t>(mostKept / 2 / words, 2, root);
        const std::size_t blockRows = (rows + blocks - 1) / blocks;
        std::vector<Words> checkpoints = checkpointsFrom(first, std::move(row), blockRows);
        const std::size_t left = mostKept - std::min(mostKept, checkpoints.size() * words);
        while (!checkpoints.empty() && j_ > 0 && !stop_) {
            Words start = std::move(checkpoints.back());
            checkpoints.pop_back();
            walk(first + checkpoints.size() * blockRows, std::move(start), left);
        }
    }

    /// The rows that the blocks from `first` to where the walk stands begin with.
    std::vector<Words> checkpointsFrom(std::size_t first, Words row, std::size_t blockRows)
    {
        std::vector<Words> checkpoints;
        for (std::size_t r = first; r < i_ && !stop_; ++r) {
            if ((r - first) % blockRows == 0) {
                checkpoints.push_back(row);
                if (r + blockRows >= i_) {
                    break;
                }
            }
            nextRow(row, columns_.of(a_[r]), nullptr);
        }
        return checkpoints;
    }

    /// With the steps of all rows from `first` on at hand.
    void walkBySteps(std::size_t first, Words row)
    {
        const std::size_t words = columns_.words();
        steps_.assign((i_ - first) * words, 0);
        for (std::size_t r = first; r < i_; ++r) {
            if (stop_) {
                return;
            }
            nextRow(row, columns_.of(a_[r]), &steps_[(r - first) * words]);
        }
        while (i_ > first && j_ > 0) {
            if (a_[i_ - 1] == b_[j_ - 1]) {
                --i_;
                --j_;
                common_.push_back(static_cast<std::uint32_t>(i_));
            } else if (bit(&steps_[(i_ - 1 - first) * words], j_ - 1)) {
                --j_;
            } else {
                --i_;
            }
        }
    }

    const std::vector<std::uint32_t>& a_;
    const std::vector<std::uint32_t>& b_;
    const std::atomic<bool>& stop_;
    Columns columns_;
    /// Where it stands: behind the elements that are still to be compared.
    std::size_t i_;
    std::size_t j_;
    Words steps_;
    std::vector<std::uint32_t> common_;
};

} // namespace

std::vector<std::uint32_t> commonSubsequence(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b,
                                             const std::atomic<bool>& stop, std::size_t mostKept)
{
    if (a.empty() || b.empty()) {
        return {};
    }
    return WalkBack(a, b, stop).take(mostKept);
}

std::vector<std::uint32_t> commonSubsequence(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b)
{
    const std::atomic<bool> goOn = false;
    return commonSubsequence(a, b, goOn);
}

} // namespace kelm
