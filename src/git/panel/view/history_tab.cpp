#include "git/panel/view/history_tab.h"

#include "git/panel/view/commit_row.h"
#include "git/service/git_service.h"
#include "git/service/repository_snapshot.h"
#include "platform/files/file_url.h"
#include "platform/view/divider.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"
#include "platform/view/row_list.h"

#include <QHBoxLayout>
#include <QHideEvent>
#include <QMenu>
#include <QVBoxLayout>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int rowHeight = 42;
constexpr std::array limits{25, 50, 100, 250};

} // namespace

HistoryTab::HistoryTab(GitService& git, std::function<void(const QString& sha)> onSelectCommit, QWidget* parent)
    : PanelTab(parent),
      git_(git),
      onSelectCommit_(std::move(onSelectCommit)),
      limitButton_(new PlainButton({.symbol = u"chevron.down"_s, .symbolSize = 9}, this)),
      list_(new RowList(rowHeight, this))
{
    limitButton_->setText(QString::number(limit_));
    limitButton_->setHelp(tr("Number of commits"));
    limitButton_->setMenu([this](QMenu& menu) {
        for (const int limit : limits) {
            QAction* action = menu.addAction(QString::number(limit), this, [this, limit] { setLimit(limit); });
            action->setCheckable(true);
            action->setChecked(limit == limit_);
        }
    });
    PlainButton* reloadButton = makeSymbolButton(u"arrow.clockwise"_s, tr("Reload"), this);
    connect(reloadButton, &QAbstractButton::clicked, this, &HistoryTab::reload);
    connect(&git_, &GitService::taken, this, &HistoryTab::follow);
    list_->setAccessibleName(tr("Recent commits"));
    list_->setPlaceholder(tr("No commits yet"));

    auto* header = new QHBoxLayout;
    header->setContentsMargins(8, 4, 4, 4);
    header->setSpacing(2);
    header->addWidget(new TextLabel(tr("Recent commits"), RowFonts::standard().body, Tint::primary(), this), 1);
    header->addWidget(limitButton_);
    header->addWidget(reloadButton);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(header);
    column->addWidget(new Divider(Qt::Horizontal, this));
    column->addWidget(list_, 1);
}

void HistoryTab::hideEvent(QHideEvent* event)
{
    PanelTab::hideEvent(event);
    // Each time that the tab appears it reads anew.
    if (!event->spontaneous()) {
        markStale();
    }
}

void HistoryTab::refreshState()
{
    reload();
}

void HistoryTab::setLimit(int limit)
{
    if (limit == limit_) {
        return;
    }
    limit_ = limit;
    limitButton_->setText(QString::number(limit));
    limitButton_->updateGeometry();
    reload();
}

void HistoryTab::follow()
{
    if (!isVisible() || !git_.repoURL()) {
        return;
    }
    following_.start([this, runner = git_.runner(), folder = filePath(*git_.repoURL()),
                      limit = limit_](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        // It is never older than what is shown: whatever the tab itself reads, here or of another repository, stops it.
        return [this, commits = readLog(*runner, folder, limit, stop)] {
            if (commits && *commits != commits_) {
                commits_ = *commits;
                showCommits();
            }
        };
    });
}

void HistoryTab::reload()
{
    following_.stop();
    commits_ = git_.log(limit_);
    showCommits();
}

void HistoryTab::showCommits()
{
    list_->setSections(
        {{.title = {},
          .count = commits_.size(),
          .row =
              [this, commits = commits_](qsizetype i) {
                  return CommitRow{commits[i], [this, id = commits[i].id] { onSelectCommit_(id); }}.content();
              },
          .key = [commits = commits_](qsizetype i) { return commits[i].id; }}});
}

} // namespace kelm
