// The sheets of the running program.
#pragma once

#include "git/view/source_control_sheets.h"

namespace kelm {

/// A file's changes as `DiffSheetView`, a commit as `CommitDetailView`.
SourceControlSheets liveSheets();

} // namespace kelm
