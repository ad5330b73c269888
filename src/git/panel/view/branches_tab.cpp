#include "git/panel/view/branches_tab.h"

#include "git/panel/view/branch_row.h"
#include "git/panel/view/repository_bound.h"
#include "git/service/git_service.h"
#include "git/service/remote_branch_checkout.h"
#include "platform/text/character_sets.h"
#include "platform/text/shown_name.h"
#include "platform/view/confirmation_dialog.h"
#include "platform/view/panel_controls.h"
#include "platform/view/row_list.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int rowHeight = 24;

} // namespace

BranchesTab::BranchesTab(GitService& git, QWidget* parent)
    : PanelTab(parent),
      git_(git),
      newBranchName_(makePanelField(tr("New branch"), this)),
      list_(new RowList(rowHeight, this))
{
    PlainButton* createButton = makePanelButton(tr("Create"), this);
    connect(createButton, &QAbstractButton::clicked, this, &BranchesTab::create);
    connect(newBranchName_, &QLineEdit::returnPressed, this, &BranchesTab::create);
    list_->setAccessibleName(tr("Branches"));
    arrange({besideButton(newBranchName_, createButton)}, list_);
    connect(&git_, &GitService::branchesChanged, this, &BranchesTab::refresh);
}

void BranchesTab::refreshState()
{
    QList<GitBranch> local;
    QList<GitBranch> remote;
    for (const GitBranch& branch : git_.branches()) {
        (branch.isRemote ? remote : local).append(branch);
    }
    const auto localRow = [this, local](qsizetype i) {
        const GitBranch& branch = local[i];
        return BranchRow{.branch = branch,
                         .isCurrent = branch.isCurrent,
                         .onCheckout = [this, name = branch.name] { git_.checkoutBranch(name); },
                         .onMerge = [this, branch] { askToMerge(branch); },
                         .onDelete = [this, branch] { askToDelete(branch); }}
            .content();
    };
    const auto remoteRow = [this, remote](qsizetype i) {
        const auto checkout = [this, name = remote[i].name] {
            git_.checkoutBranch(localNameOfRemoteBranch(nameOfListedRemoteBranch(name, git_.remotes())));
        };
        return RemoteBranchRow{remote[i], checkout}.content();
    };
    list_->setSections({{.title = tr("Local"),
                         .count = local.size(),
                         .row = localRow,
                         .key = [local](qsizetype i) { return local[i].name; }},
                        {.title = tr("Remote"), .count = remote.size(), .row = remoteRow, .key = [remote](qsizetype i) {
                             return remote[i].name;
                         }}});
}

void BranchesTab::create()
{
    const QString name = trimmed(newBranchName_->text(), isWhitespaceOrNewline).toString();
    if (name.isEmpty()) {
        return;
    }
    git_.createBranch(name, true);
    newBranchName_->clear();
}

void BranchesTab::askToMerge(const GitBranch& branch)
{
    showingMergePicker_ = branch;
    const auto merge = [&git = git_, name = branch.name] { git.mergeBranch(name); };
    auto* dialog =
        new ConfirmationDialog(u"Merge "_s + shownName(branch.name) + u" into "_s + shownName(git_.branch()) + u'?',
                               {{tr("Merge"), inThisRepository(git_, merge)}}, window());
    closeWithRepository(*dialog, git_);
    connect(dialog, &QDialog::finished, this, [this] { showingMergePicker_.reset(); });
    dialog->open();
}

void BranchesTab::askToDelete(const GitBranch& branch)
{
    showingDeleteConfirm_ = branch;
    const auto remove = [&git = git_, name = branch.name](bool force) {
        return inThisRepository(git, [&git, name, force] { git.deleteBranch(name, force); });
    };
    auto* dialog = new ConfirmationDialog(
        u"Delete branch "_s + shownName(branch.name) + u'?',
        {{tr("Delete (safe)"), remove(false)}, {tr("Force delete (-D)"), remove(true), true}}, window());
    closeWithRepository(*dialog, git_);
    connect(dialog, &QDialog::finished, this, [this] { showingDeleteConfirm_.reset(); });
    dialog->open();
}

} // namespace kelm
