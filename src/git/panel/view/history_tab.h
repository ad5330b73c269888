// The tab of recent commits.
#pragma once

#include "git/panel/view/panel_tab.h"
#include "git/service/git_records.h"
#include "platform/events/background_task.h"

#include <functional>

namespace kelm {

class GitService;
class PlainButton;
class RowList;

/// The newest commits of the current branch. They are read when the tab appears, when another limit is chosen, on
/// "Reload", and when another repository is opened; and on a worker when the repository has been read by itself, so
/// that commits which others make are seen.
class HistoryTab final : public PanelTab
{
    Q_OBJECT

public:
    HistoryTab(GitService& git, std::function<void(const QString& sha)> onSelectCommit, QWidget* parent = nullptr);

    int limit() const { return limit_; }
    const QList<GitCommit>& commits() const { return commits_; }
    RowList& list() { return *list_; }
    void reload();

protected:
    void refreshState() override;
    void hideEvent(QHideEvent* event) override;

private:
    void setLimit(int limit);
    void follow();
    void showCommits();

    GitService& git_;
    std::function<void(const QString& sha)> onSelectCommit_;
    QList<GitCommit> commits_;
    int limit_ = 50;
    PlainButton* limitButton_;
    RowList* list_;
    BackgroundTask following_;
};

} // namespace kelm
