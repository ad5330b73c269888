// The tab of changed files.
#pragma once

#include "git/panel/view/panel_tab.h"
#include "git/panel/view/row_menu.h"

#include <functional>

namespace kelm {

class CommitComposer;
class GitService;
class RowList;
struct GitFileStatus;
struct Row;
class TextLabel;

/// The conflict bar, the commit composer, and the staged and other changes.
class ChangesTab final : public PanelTab
{
    Q_OBJECT

public:
    ChangesTab(GitService& git, std::function<void(const QString& path)> onClickDiff, QWidget* parent = nullptr);

    /// What the rows' menus do with files.
    void setFileActions(FileActions actions);

    CommitComposer& composer() { return *composer_; }
    RowList& list() { return *list_; }

protected:
    void refreshState() override;

private:
    QWidget* makeConflictBar();
    Row rowOf(const GitFileStatus& file, bool staged);

    GitService& git_;
    std::function<void(const QString& path)> onClickDiff_;
    FileActions fileActions_;
    TextLabel* conflictCount_ = nullptr;
    QWidget* conflictBar_;
    CommitComposer* composer_;
    RowList* list_;
};

} // namespace kelm
