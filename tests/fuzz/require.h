// What a fuzz target holds its subject to.
#pragma once

#include <cstdlib>

/// Ends the program where something does not hold, which the fuzzer takes for a finding.
inline void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}
