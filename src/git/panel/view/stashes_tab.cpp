#include "git/panel/view/stashes_tab.h"

#include "git/panel/view/repository_bound.h"
#include "git/panel/view/stash_row.h"
#include "git/service/git_service.h"
#include "platform/view/panel_controls.h"
#include "platform/view/row_list.h"
#include "platform/view/wrapping_row.h"

#include <algorithm>

namespace kelm {

namespace {

constexpr int rowHeight = 42;

/// What tells a stash from the others. Its label is only a place, which another takes when one is made or dropped; new
/// ones come on top, so that the number from the bottom stays.
QString keyOf(const QList<GitStash>& stashes, qsizetype place)
{
    return QString::number(stashes.size() - place) + u' ' + stashes[place].message;
}

/// The label that a stash of an earlier list has in the present one; nothing when it is gone, or cannot be told from
/// one that may have taken its place.
std::optional<QString> presentLabel(const QList<GitStash>& earlier, qsizetype place, const QList<GitStash>& present)
{
    const QString& message = earlier[place].message;
    const auto isNamesake = [&message](const GitStash& stash) { return stash.message == message; };
    if (present.size() < earlier.size() && std::count_if(earlier.begin(), earlier.end(), isNamesake) > 1) {
        return std::nullopt;
    }
    const qsizetype now = present.size() - (earlier.size() - place);
    return now >= 0 && isNamesake(present[now]) ? std::optional(present[now].label) : std::nullopt;
}

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
    const auto rowOf = [this, stashes](qsizetype i) {
        // A menu keeps what it offers while the list changes below it.
        const auto onThis = [&](GitOpResult (GitService::*operation)(const QString&)) {
            return inThisRepository(git_, [&git = git_, stashes, i, operation] {
                if (const std::optional<QString> label = presentLabel(stashes, i, git.stashes())) {
                    (git.*operation)(*label);
                }
            });
        };
        return StashRow{.stash = stashes[i],
                        .onApply = onThis(&GitService::stashApply),
                        .onPop = onThis(&GitService::stashPop),
                        .onDrop = onThis(&GitService::stashDrop)}
            .content();
    };
    list_->setSections({{.title = {}, .count = stashes.size(), .row = rowOf, .key = [stashes](qsizetype i) {
                             return keyOf(stashes, i);
                         }}});
}

void StashesTab::stash()
{
    const QString message = stashMessage_->text();
    git_.stashPush(message.isEmpty() ? std::nullopt : std::optional(message), includeUntracked_->isChecked());
    stashMessage_->clear();
}

} // namespace kelm
