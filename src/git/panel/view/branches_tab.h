// The tab of branches.
#pragma once

#include "git/panel/view/panel_tab.h"
#include "git/service/git_records.h"

#include <optional>

class QLineEdit;

namespace kelm {

class GitService;
class RowList;

/// A field for a new branch, and the local and remote branches. A merge and a deletion are asked about first.
class BranchesTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit BranchesTab(GitService& git, QWidget* parent = nullptr);

    RowList& list() { return *list_; }
    /// The branch that a dialog asks about, to be merged or deleted.
    const std::optional<GitBranch>& showingMergePicker() const { return showingMergePicker_; }
    const std::optional<GitBranch>& showingDeleteConfirm() const { return showingDeleteConfirm_; }

protected:
    void refreshState() override;

private:
    void create();
    void askToMerge(const GitBranch& branch);
    void askToDelete(const GitBranch& branch);

    GitService& git_;
    QLineEdit* newBranchName_;
    RowList* list_;
    std::optional<GitBranch> showingMergePicker_;
    std::optional<GitBranch> showingDeleteConfirm_;
};

} // namespace kelm
