// The search through a project's files.
#pragma once

#include "search/file_search.h"
#include "search/localized_needle.h"
#include "search/search_result.h"

#include <QString>

#include <functional>

namespace kelm {

/// What a scan tells, and asks.
struct ProjectScanCallbacks
{
    /// One at a time, from whatever thread.
    std::function<void(SearchResult)> onResult;
    /// Asked from any thread, between files, pieces of a file and lines; true ends the scan.
    std::function<bool()> isCancelled;
    /// A file was not searched, or not to its end, since it is too long or has a line that is; from any thread.
    std::function<void()> onTooLong = {};
};

/// Looks for `needle` in each line of each regular file below the folder `root`, in the order of `ProjectWalk`, and
/// reports each line that holds it, once, in that order. What cannot be read, or is no UTF-8, is passed over. Several
/// threads search files at once, at most `FileSearch` has them hold; all have ended when this comes back. Any thread.
void scanProject(const QString& root, const LocalizedNeedle& needle, const ProjectScanCallbacks& callbacks,
                 FileSearch::Limits limits = {});

} // namespace kelm
