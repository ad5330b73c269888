#include "git/panel/view/stashes_tab.h"

#include "git/panel/view/stash_row.h"
#include "git/service/git_service.h"
#include "platform/view/panel_controls.h"
#include "platform/view/row_list.h"
#include "platform/view/wrapping_row.h"

namespace kelm {

namespace {

constexpr int rowHeight = 42;

} // namespace

StashesTab::StashesTab(GitService& git, QWidget* parent)
    : PanelTab(parent),
      git_(git),
      stashMessage_(makePanelField(tr("Stash message (optional)"), this)),
      includeUntracked_(makePanelCheckBox(tr("Include untracked files (-u)"), this)),
      list_(new RowList(rowHeight, this))
{
    PlainButton* stashButton = makePanelButton(tr("Stash"), this);
    connect(stashButton, &QAbstractButton::clicked, this, &StashesTab::stash);
    connect(stashMessage_, &QLineEdit::returnPressed, this, &StashesTab::stash);
    list_->setAccessibleName(tr("Stashes"));
    list_->setPlaceholder(tr("No stashes"));

    auto* row = new WrappingRow;
    row->addWidget(includeUntracked_);
    row->alignRestRight();
    row->addWidget(stashButton);
    arrange({stashMessage_, row}, list_);
    connect(&git_, &GitService::stashesChanged, this, &StashesTab::refresh);
}

void StashesTab::refreshState()
{
    const QList<GitStash> stashes = git_.stashes();
    list_->setSections({{.title = {},
                         .count = stashes.size(),
                         .row =
                             [this, stashes](qsizetype i) {
                                 const QString& label = stashes[i].label;
                                 return StashRow{.stash = stashes[i],
                                                 .onApply = [this, label] { git_.stashApply(label); },
                                                 .onPop = [this, label] { git_.stashPop(label); },
                                                 .onDrop = [this, label] { git_.stashDrop(label); }}
                                     .content();
                             },
                         .key = [stashes](qsizetype i) { return stashes[i].label; }}});
}

void StashesTab::stash()
{
    const QString message = stashMessage_->text();
    git_.stashPush(message.isEmpty() ? std::nullopt : std::optional(message), includeUntracked_->isChecked());
    stashMessage_->clear();
}

} // namespace kelm
