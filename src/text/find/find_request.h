// What a find bar is asked to look for.
#pragma once

#include <QString>

namespace kelm {

/// A text and what to take for a match, as someone else had it typed and chosen.
struct FindRequest
{
    /// Empty for one that leaves the bar's own.
    QString text;
    /// Whether replacing is asked for too, and with what.
    bool replaces = false;
    QString replacement;
    bool isCaseSensitive = false;
    bool isPattern = false;
};

} // namespace kelm
