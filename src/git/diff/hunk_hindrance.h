// Why a hunk cannot be staged by itself.
#pragma once

#include "git/diff/diff.h"

namespace kelm {

/// What is to be known of a hunk before its patch is handed to git.
struct HunkHindrance
{
    /// Why git would refuse it, in a sentence; empty when it would not.
    QString reason;
    /// What git would make of it that the hunk does not say; empty mostly.
    QString caution;

    bool operator==(const HunkHindrance&) const = default;

    /// Looks at the patch as it is made, without asking git. `isReversed` is for a hunk that is taken out of the index.
    /// Linear in the hunk.
    static HunkHindrance of(const DiffFile& file, qsizetype hunk, bool isReversed);
};

} // namespace kelm
