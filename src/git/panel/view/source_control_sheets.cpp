#include "git/panel/view/source_control_sheets.h"

#include "git/viewer/view/commit_sheet.h"
#include "git/viewer/view/diff_sheet.h"

namespace kelm {

SourceControlSheets SourceControlSheets::standard()
{
    return {.makeDiff =
                [](const DiffSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent) {
                    auto* view = new DiffSheetView(git, sheet.path, parent);
                    view->onClose = onClose;
                    return view;
                },
            .makeCommit =
                [](const CommitSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent) {
                    auto* view = new CommitDetailView(git, sheet.sha, parent);
                    view->onClose = onClose;
                    return view;
                }};
}

} // namespace kelm
