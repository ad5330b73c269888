#include "git/viewer/view/sheet_failure_line.h"

#include "git/service/git_service.h"
#include "platform/style/view/style.h"
#include "platform/view/details_sheet.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"

#include <QHBoxLayout>

#include <utility>

namespace kelm {

SheetFailureLine::SheetFailureLine(GitService& git, QStringList commands, QWidget* parent)
    : QWidget(parent),
      git_(&git),
      commands_(std::move(commands)),
      sentence_(new TextLabel({}, style::interfaceFont(style::typeSize::subheadline), SystemColor::red, this)),
      details_(makePanelButton(tr("Details"), this))
{
    sentence_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 4, 16, 8);
    row->setSpacing(6);
    row->addWidget(sentence_, 1);
    row->addWidget(details_);
    // Its room stays: what is told moves nothing of the diff above it.
    setFixedHeight(sizeHint().height());
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
    setVisible(false);
    connect(git_, &GitService::lastFailureChanged, this, &SheetFailureLine::refresh);
    connect(details_, &QAbstractButton::clicked, this, &SheetFailureLine::showDetails);
}

QString SheetFailureLine::sentence() const
{
    return isHidden() ? QString() : sentence_->text();
}

void SheetFailureLine::clear()
{
    setVisible(false);
}

void SheetFailureLine::refresh()
{
    const std::optional<GitFailure>& failure = git_->lastFailure();
    const bool isOwn = failure && !failure->command.isEmpty() && commands_.contains(failure->command.first());
    setVisible(isOwn);
    if (isOwn) {
        sentence_->setText(failure->sentence());
        details_->setVisible(failure->hasMore());
    }
}

void SheetFailureLine::showDetails()
{
    if (git_ && git_->lastFailure()) {
        (new DetailsSheet(git_->lastFailure()->sentence(), git_->lastFailure()->text, window()))->open();
    }
}

} // namespace kelm
