#include "git/panel/view/source_control_view.h"

#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "git/panel/view/branches_tab.h"
#include "git/panel/view/changes_tab.h"
#include "git/panel/view/clone_dialog.h"
#include "git/panel/view/commit_composer.h"
#include "git/panel/view/history_tab.h"
#include "git/panel/view/remotes_tab.h"
#include "git/panel/view/repository_bound.h"
#include "git/panel/view/source_control_bottom_bar.h"
#include "git/panel/view/source_control_empty_state.h"
#include "git/panel/view/source_control_header.h"
#include "git/panel/view/source_control_tab_bar.h"
#include "git/panel/view/stashes_tab.h"
#include "git/panel/view/tags_tab.h"
#include "git/service/git_service.h"
#include "git/service/repository_follower.h"
#include "platform/files/file_url.h"
#include "platform/view/divider.h"

#include <QDialog>
#include <QFileInfo>
#include <QShowEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace kelm {

namespace {

constexpr QSize smallestSheet(640, 420);
constexpr double sheetShare = 0.8;

} // namespace

SourceControlView::SourceControlView(AppState& appState, Services services, QWidget* parent)
    : QWidget(parent),
      appState_(appState),
      git_(appState.git()),
      services_(std::move(services)),
      content_(new QWidget(this)),
      emptyState_(new SourceControlEmptyState(appState, this)),
      tabBar_(new SourceControlTabBar(content_)),
      tabs_(new QStackedWidget(content_))
{
    addTabs();
    auto* column = new QVBoxLayout(content_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new SourceControlHeader(git_, content_));
    column->addWidget(tabBar_);
    column->addWidget(new Divider(Qt::Horizontal, content_));
    column->addWidget(tabs_, 1);
    column->addWidget(new Divider(Qt::Horizontal, content_));
    column->addWidget(new SourceControlBottomBar(git_, content_));
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->addWidget(content_);
    stack->addWidget(emptyState_);

    connect(tabBar_, &SourceControlTabBar::selectedTabChanged, this,
            [this](SourceControlTab tab) { tabs_->setCurrentIndex(static_cast<int>(tab)); });
    connect(emptyState_, &SourceControlEmptyState::cloneRequested, this, [this] { setShowCloneDialog(true); });
    connect(&appState_, &AppState::currentProjectChanged, this, [this] {
        if (isVisible()) {
            syncRepo();
        }
    });
    // The branch is the first thing that is written when a repository is opened or closed.
    connect(&git_, &GitService::branchChanged, this, &SourceControlView::refreshRepository);
    // Each list is counted when it is another one: all of them once after an operation that reads everything.
    for (const auto& [changed, tab] : {std::pair(&GitService::statusChanged, SourceControlTab::changes),
                                       std::pair(&GitService::branchesChanged, SourceControlTab::branches),
                                       std::pair(&GitService::stashesChanged, SourceControlTab::stashes),
                                       std::pair(&GitService::tagsChanged, SourceControlTab::tags),
                                       std::pair(&GitService::remotesChanged, SourceControlTab::remotes)}) {
        connect(&git_, changed, this, [this, shown = tab] { refreshBadge(shown); });
    }
    refreshRepository();
    for (const SourceControlTab tab : allSourceControlTabs) {
        refreshBadge(tab);
    }
}

SourceControlView::~SourceControlView()
{
    // They stand over the window and act for this view.
    delete diffSheet_;
    delete commitSheet_;
    delete cloneDialog_;
}

void SourceControlView::addTabs()
{
    changesTab_ = new ChangesTab(
        git_, [this](const QString& path) { setDiffPath(path); }, tabs_);
    FileActions actions{.open = [this](const QUrl& file) { appState_.openFile(file); }};
    if (services_.workspace != nullptr) {
        actions.reveal = [this](const QUrl& file) { services_.workspace->reveal(file); };
    }
    changesTab_->setFileActions(std::move(actions));
    historyTab_ = new HistoryTab(
        git_, [this](const QString& sha) { setHistorySha(sha); }, tabs_);
    changesTab_->composer().onRefused = [this](const QString& refusal, const std::function<void()>& putBack) {
        offerToPutBack(refusal, putBack);
    };
    tabs_->addWidget(changesTab_);
    tabs_->addWidget(historyTab_);
    tabs_->addWidget(new BranchesTab(git_, tabs_));
    tabs_->addWidget(new StashesTab(git_, tabs_));
    tabs_->addWidget(new TagsTab(git_, tabs_));
    tabs_->addWidget(new RemotesTab(git_, tabs_));
}

SourceControlTab SourceControlView::tab() const
{
    return tabBar_->selectedTab();
}

void SourceControlView::setTab(SourceControlTab tab)
{
    tabBar_->select(tab);
}

QString SourceControlView::commitMessage() const
{
    return changesTab_->composer().message();
}

void SourceControlView::setCommitMessage(const QString& message)
{
    changesTab_->composer().setMessage(message);
}

void SourceControlView::syncRepo()
{
    if (const std::optional<QUrl>& project = appState_.currentProject()) {
        git_.open(*project);
        return;
    }
    const std::shared_ptr<Document> document = appState_.currentDocument();
    if (document && document->fileURL()) {
        git_.open(urlOfFile(QFileInfo(filePath(*document->fileURL())).path()));
    }
}

void SourceControlView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        syncRepo();
        appState_.repositoryFollower().setIsShownBy(*this, true);
    }
}

void SourceControlView::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        appState_.repositoryFollower().setIsShownBy(*this, false);
    }
}

void SourceControlView::offerToPutBack(const QString& refusal, const std::function<void()>& putBack)
{
    // An earlier one stays behind it: its message stands nowhere else.
    appState_.notices().report(refusal, {{tr("Put back"), putBack}});
}

void SourceControlView::refreshRepository()
{
    if (shownRepository_ != git_.repoURL()) {
        shownRepository_ = git_.repoURL();
        // Another repository's commits tell nothing of this one, and its last commit was not to be amended.
        historyTab_->refresh();
        changesTab_->composer().forgetAmend();
    }
    content_->setVisible(shownRepository_.has_value());
    emptyState_->setVisible(!shownRepository_.has_value());
}

void SourceControlView::refreshBadge(SourceControlTab tab)
{
    tabBar_->setBadge(tab, badgeCount(tab, git_));
}

void SourceControlView::setDiffPath(const std::optional<QString>& path)
{
    diffPath_ = path;
    closeSheet(diffSheet_);
    if (path && services_.sheets.makeDiff) {
        const auto onClose = onSheetClosed(&SourceControlView::setDiffPath);
        diffSheet_ = showSheet(services_.sheets.makeDiff({*path}, git_, onClose, window()), onClose);
    }
}

void SourceControlView::setHistorySha(const std::optional<QString>& sha)
{
    historySha_ = sha;
    closeSheet(commitSheet_);
    if (sha && services_.sheets.makeCommit) {
        const auto onClose = onSheetClosed(&SourceControlView::setHistorySha);
        commitSheet_ = showSheet(services_.sheets.makeCommit({*sha}, git_, onClose, window()), onClose);
    }
}

std::function<void()> SourceControlView::onSheetClosed(void (SourceControlView::*set)(const std::optional<QString>&))
{
    return [view = QPointer<SourceControlView>(this), set] {
        if (view) {
            (view->*set)(std::nullopt);
        }
    };
}

void SourceControlView::closeSheet(QPointer<QDialog>& sheet)
{
    if (QDialog* const closing = std::exchange(sheet, nullptr)) {
        // What it tells while it closes is about the sheet that was.
        disconnect(closing, &QDialog::finished, this, nullptr);
        closing->close();
    }
}

QDialog* SourceControlView::showSheet(QWidget* content, const std::function<void()>& onClose)
{
    auto* sheet = new QDialog(window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setWindowTitle(content->windowTitle());
    auto* column = new QVBoxLayout(sheet);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(content);
    sheet->resize(smallestSheet.expandedTo(window()->size() * sheetShare));
    connect(sheet, &QDialog::finished, this, onClose);
    closeWithRepository(*sheet, git_);
    sheet->open();
    return sheet;
}

void SourceControlView::setShowCloneDialog(bool show)
{
    if (show == showCloneDialog()) {
        return;
    }
    if (!show) {
        cloneDialog_->close();
        return;
    }
    cloneDialog_ = new CloneDialog(git_, services_.filePanels, services_.scheduler, window());
    connect(cloneDialog_, &QDialog::finished, this, [this] { cloneDialog_ = nullptr; });
    cloneDialog_->open();
}

} // namespace kelm
