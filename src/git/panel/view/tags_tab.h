// The tab of tags.
#pragma once

#include "git/panel/view/panel_tab.h"

class QLineEdit;

namespace kelm {

class GitService;
class PlainButton;
class RowList;

/// A form that makes a tag, and the tags. Tags are pushed to "origin".
class TagsTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit TagsTab(GitService& git, QWidget* parent = nullptr);

    RowList& list() { return *list_; }

protected:
    void refreshState() override;

private:
    void create();

    GitService& git_;
    QLineEdit* tagName_;
    QLineEdit* tagMessage_;
    PlainButton* createButton_;
    RowList* list_;
};

} // namespace kelm
