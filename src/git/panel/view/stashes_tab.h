// The tab of stashes.
#pragma once

#include "git/panel/view/panel_tab.h"

class QCheckBox;
class QLineEdit;

namespace kelm {

class GitService;
class RowList;

/// A form that stashes the changes, and the stashes.
class StashesTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit StashesTab(GitService& git, QWidget* parent = nullptr);

    RowList& list() { return *list_; }

protected:
    void refreshState() override;

private:
    void stash();

    GitService& git_;
    QLineEdit* stashMessage_;
    QCheckBox* includeUntracked_;
    RowList* list_;
};

} // namespace kelm
