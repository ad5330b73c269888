// Longest common subsequence of two sequences of small numbers.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelm {

/// So many machine words of rows that the walk back sets out from are kept at once: 256 MiB.
inline constexpr std::size_t mostCheckpointWords = std::size_t(1) << 25;

/// The indices in `a` of a longest common subsequence of `a` and `b`, ascending.
///
/// Of several longest ones it is the one that a walk back from the end of the full table of lengths finds, where the
/// walk takes equal elements, else steps back in `b` where that keeps a longer rest, else (also on a tie) in `a`.
///
/// The elements are numbers from 0 on, without large gaps. Rows of the table are computed a machine word of columns at
/// a time (H. Hyyrö, "Bit-parallel LCS-length computation revisited", 2004), and only checkpoints of them are kept:
/// time a.size() * b.size() / 64, memory at most a few megabytes for sequences of 100,000 elements. Of very long ones
/// no more than `mostKept` words of checkpoints are kept, but for two rows at each of a few levels; rows between them
/// are then computed more often, to the same result.
///
/// From any thread. Ends early, with nothing, soon after `stop` is set.
std::vector<std::uint32_t> commonSubsequence(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b,
                                             const std::atomic<bool>& stop, std::size_t mostKept = mostCheckpointWords);
/// The same, to its end.
std::vector<std::uint32_t> commonSubsequence(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b);

} // namespace kelm
