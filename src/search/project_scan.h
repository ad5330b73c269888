// The walk through a project's files.
#pragma once

#include "search/localized_needle.h"
#include "search/search_result.h"

#include <QString>

#include <functional>

namespace kelm {

/// What a walk tells, and asks.
struct ProjectScanCallbacks
{
    std::function<void(SearchResult)> onResult;
    /// Asked between files, pieces of a file and lines; true ends the walk.
    std::function<bool()> isCancelled;
};

/// Looks for `needle` in each line of each regular file below the folder `root`, folder by folder, and reports each
/// line that holds it, once. Hidden files and folders are left out, symbolic links are not followed, and what cannot be
/// read, or is no UTF-8, is passed over. A file is read whole. Any thread.
void scanProject(const QString& root, const LocalizedNeedle& needle, const ProjectScanCallbacks& callbacks);

} // namespace kelm
