// A search through a whole text on another thread.
#pragma once

#include "text/find/find_query.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QString>

#include <atomic>
#include <memory>
#include <vector>

namespace kelm {

/// Goes through a text as it stood from an offset to its end, in portions, so that what is found can be shown
/// meanwhile. The portions may be taken on different threads, one after the other.
///
/// A pattern is looked for in a copy of the whole text, made with the first portion and gone with the run: a library
/// that reads a text in pieces takes two to three times as long.
class FindRun
{
public:
    struct Portion
    {
        std::vector<TextRange> matches;
        /// All matches that begin before this offset have been given.
        qsizetype searchedTo = 0;
        /// Stopped when there may be more: the next portion goes on.
        FindQuery::Ending ending = FindQuery::Ending::stopped;
    };

    FindRun(FindQuery query, TextTree text, qsizetype from);

    /// Some ten thousand matches or some million units, but of a pattern not less than up to its next match. Ends early
    /// once `stop` is set; what is given then is good for nothing, as is the run.
    Portion next(const std::atomic<bool>& stop);

private:
    Portion nextOfText();
    Portion nextOfPattern(const std::atomic<bool>& stop);

    FindQuery query_;
    TextTree text_;
    qsizetype searchedTo_;
    QString whole_;
    std::unique_ptr<RegularExpressionSearch> search_;
};

} // namespace kelm
