// The source control panel of the sidebar.
#pragma once

#include "git/panel/source_control_tab.h"
#include "git/panel/view/source_control_sheets.h"
#include "platform/desktop/file_panels.h"
#include "platform/desktop/workspace.h"
#include "platform/events/scheduler.h"

#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <optional>

class QDialog;
class QStackedWidget;

namespace kelm {

class AppState;
class ChangesTab;
class CloneDialog;
class GitService;
class HistoryTab;
class SourceControlEmptyState;
class SourceControlTabBar;

/// Shows the repository of the open project, or of the current document's folder, in six tabs, and drives git. It holds
/// only what is typed and what is shown; everything else is `GitService`'s, and nothing polls: the repository is read
/// when the panel appears, when the project changes, by the header's button and by the operations themselves, and
/// while the panel is on screen by the `RepositoryFollower`.
class SourceControlView final : public QWidget
{
    Q_OBJECT

public:
    struct Services
    {
        FilePanels& filePanels;
        Scheduler& scheduler;
        SourceControlSheets sheets = SourceControlSheets::standard();
        /// Reveals files; null where nothing can.
        Workspace* workspace = nullptr;
    };

    /// The application's state and the services outlive the view.
    SourceControlView(AppState& appState, Services services, QWidget* parent = nullptr);
    ~SourceControlView() override;

    SourceControlTab tab() const;
    void setTab(SourceControlTab tab);
    /// What is typed as the next commit's message; it survives a change of tab.
    QString commitMessage() const;
    void setCommitMessage(const QString& message);
    /// The file whose diff is showing.
    const std::optional<QString>& diffPath() const { return diffPath_; }
    void setDiffPath(const std::optional<QString>& path);
    /// The commit that is showing.
    const std::optional<QString>& historySha() const { return historySha_; }
    void setHistorySha(const std::optional<QString>& sha);
    bool showCloneDialog() const { return !cloneDialog_.isNull(); }
    void setShowCloneDialog(bool show);

    /// Opens the repository of the project, or else of the current document's folder; without either, what was open
    /// stays.
    void syncRepo();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void addTabs();
    void refreshRepository();
    void refreshBadge(SourceControlTab tab);
    void offerToPutBack(const QString& refusal, const std::function<void()>& putBack);
    /// What a sheet calls when it is closed; nothing once the view has gone.
    std::function<void()> onSheetClosed(void (SourceControlView::*set)(const std::optional<QString>&));
    void closeSheet(QPointer<QDialog>& sheet);
    QDialog* showSheet(QWidget* content, const std::function<void()>& onClose);

    AppState& appState_;
    GitService& git_;
    Services services_;
    std::optional<QString> diffPath_;
    std::optional<QString> historySha_;
    QPointer<QDialog> diffSheet_;
    QPointer<QDialog> commitSheet_;
    QPointer<CloneDialog> cloneDialog_;
    QWidget* content_;
    SourceControlEmptyState* emptyState_;
    SourceControlTabBar* tabBar_;
    QStackedWidget* tabs_;
    ChangesTab* changesTab_ = nullptr;
    HistoryTab* historyTab_ = nullptr;
    /// Of the last commit that was refused.
    /// The repository that the history was read from.
    std::optional<QUrl> shownRepository_;
};

} // namespace kelm
