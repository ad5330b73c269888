// Letting go of the front of a text that grows without end.
#pragma once

#include "run/kept_tail.h"

#include <QString>

namespace kelm {

class TextStorage;

/// Keeps at least the last `most` units of a text that grows at its end, and little more: what stands before them is
/// taken away, up to a line's start, and a first line says how much that was in all. Of a line that is longer than what
/// is kept, the end is kept, and where there was no line before it, it is said in the same line. Main thread only.
class FrontTrimmer
{
public:
    explicit FrontTrimmer(TextStorage& storage, qsizetype most = mostKeptUnits, qsizetype slack = keptSlackUnits)
        : storage_(storage), most_(most), slack_(slack)
    {}

    /// To be called when the text has grown. The length of what says how much was let go if that is new, else 0.
    qsizetype trim();
    /// To be called right before the text begins anew.
    void reset();
    /// How many units were let go since then.
    qsizetype letGo() const { return letGo_; }

private:
    qsizetype cutBefore(qsizetype offset) const;

    TextStorage& storage_;
    qsizetype most_;
    qsizetype slack_;
    /// What says how much was let go.
    QString front_;
    qsizetype letGo_ = 0;
};

} // namespace kelm
