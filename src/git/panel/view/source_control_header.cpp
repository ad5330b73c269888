#include "git/panel/view/source_control_header.h"

#include "git/service/git_service.h"
#include "platform/text/shown_name.h"
#include "platform/view/accessible_role.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"

#include <QHBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr qsizetype shownHashLength = 7;

/// git says "HEAD" of one that names a commit, and of one whose branch has none yet.
QString shownBranch(const GitService& git)
{
    const GitHead& head = git.head();
    const bool isNamed = !git.branch().isEmpty() && git.branch() != u"HEAD"_s;
    if (!isNamed && !head.commit.isEmpty()) {
        return SourceControlHeader::tr("detached at %1").arg(head.commit.left(shownHashLength));
    }
    if (!isNamed && !head.branch.isEmpty()) {
        return shownName(head.branch);
    }
    return git.branch().isEmpty() ? u"—"_s : shownName(git.branch());
}

} // namespace

SourceControlHeader::SourceControlHeader(GitService& git, QWidget* parent)
    : QWidget(parent),
      git_(git),
      branch_(new TextLabel({}, style::interfaceFont(12, QFont::Medium), Tint::primary(), this)),
      aheadBehind_(new TextLabel({}, style::interfaceFont(style::typeSize::subheadline), Tint::secondary(), this)),
      conflicts_(new SymbolLabel(u"exclamationmark.triangle.fill"_s, 13, SystemColor::orange, this))
{
    branch_->setElideMode(Qt::ElideMiddle);
    aheadBehind_->setGivesWay(false);
    // The symbol takes the mouse for its help text.
    conflicts_->setAttribute(Qt::WA_TransparentForMouseEvents, false);
    conflicts_->setToolTip(tr("Merge conflicts in working tree"));
    setAccessibleRole(*conflicts_, QAccessible::Graphic);
    conflicts_->setAccessibleName(tr("Merge conflicts in working tree"));
    PlainButton* refresh = makeSymbolButton(u"arrow.clockwise"_s, tr("Refresh"), this);
    connect(refresh, &QAbstractButton::clicked, &git_, &GitService::refreshAll);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 4, 4);
    row->setSpacing(6);
    row->addWidget(new SymbolLabel(u"arrow.triangle.branch"_s, 13, Tint::secondary(), this));
    row->addWidget(branch_);
    row->addWidget(aheadBehind_);
    row->addWidget(conflicts_);
    row->addStretch();
    row->addWidget(refresh);

    connect(&git_, &GitService::branchChanged, this, &SourceControlHeader::refreshBranch);
    connect(&git_, &GitService::aheadChanged, this, &SourceControlHeader::refreshBranch);
    connect(&git_, &GitService::behindChanged, this, &SourceControlHeader::refreshBranch);
    connect(&git_, &GitService::statusChanged, this, &SourceControlHeader::refreshConflicts);
    refreshBranch();
    refreshConflicts();
}

void SourceControlHeader::refreshBranch()
{
    branch_->setText(shownBranch(git_));
    aheadBehind_->setText(u"↑"_s + QString::number(git_.ahead()) + u" ↓"_s + QString::number(git_.behind()));
    aheadBehind_->setAccessibleName(tr("%1 ahead, %2 behind").arg(git_.ahead()).arg(git_.behind()));
}

void SourceControlHeader::refreshConflicts()
{
    conflicts_->setVisible(git_.hasConflicts());
}

} // namespace kelm
