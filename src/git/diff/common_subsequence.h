// Longest common subsequence of two sequences of small numbers.
#pragma once

#include <cstdint>
#include <vector>

namespace kelm {

/// The indices in `a` of a longest common subsequence of `a` and `b`, ascending.
///
/// Of several longest ones it is the one that a walk back from the end of the full table of lengths finds, where the
/// walk takes equal elements, else steps back in `b` where that keeps a longer rest, else (also on a tie) in `a`.
///
/// The elements are numbers from 0 on, without large gaps. Rows of the table are computed a machine word of columns at
/// a time (H. Hyyrö, "Bit-parallel LCS-length computation revisited", 2004), and only checkpoints of them are kept:
/// time a.size() * b.size() / 64, memory at most a few megabytes for sequences of 100,000 elements.
std::vector<std::uint32_t> commonSubsequence(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b);

} // namespace kelm
