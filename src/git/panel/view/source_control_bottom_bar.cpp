#include "git/panel/view/source_control_bottom_bar.h"

#include "git/panel/view/transfer_sign.h"
#include "git/service/git_service.h"
#include "platform/view/accessible_news.h"
#include "platform/view/accessible_role.h"
#include "platform/view/details_sheet.h"
#include "platform/view/panel_controls.h"
#include "platform/view/plain_help.h"

#include <QEvent>
#include <QHBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int leastErrorWidth = 150;
/// What comes behind is in the sheet only: a text of this length fills every screen, and is laid out each time.
constexpr qsizetype mostHelpUnits = 100'000;

} // namespace

ErrorLine::ErrorLine(QWidget* parent)
    : TextLabel({}, style::interfaceFont(style::typeSize::subheadline), SystemColor::red, parent)
{
    setAccessibleRole(*this, QAccessible::AlertMessage);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ErrorLine::setError(const QString& sentence, const QString& error)
{
    error_ = error;
    setText(sentence);
    setAccessibleName(sentence);
    announce(*this);
    setToolTip(plainHelp(error_.left(mostHelpUnits)));
}

void ErrorLine::resizeEvent(QResizeEvent* event)
{
    TextLabel::resizeEvent(event);
    setToolTip(plainHelp(error_.left(mostHelpUnits)));
}

void ErrorLine::changeEvent(QEvent* event)
{
    TextLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        setToolTip(plainHelp(error_.left(mostHelpUnits)));
    }
}

SourceControlBottomBar::SourceControlBottomBar(GitService& git, QWidget* parent)
    : QWidget(parent),
      git_(git),
      column_(new QBoxLayout(QBoxLayout::BottomToTop, this)),
      errorRow_(new QWidget(this)),
      errorLine_(new ErrorLine(errorRow_)),
      details_(makePanelButton(tr("Details"), errorRow_))
{
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    PlainButton* fetchButton = makeTransferButton(u"arrow.down.circle"_s, tr("Fetch"));
    PlainButton* pullButton = makeTransferButton(u"arrow.down.to.line"_s, tr("Pull"));
    PlainButton* pushButton = makeTransferButton(u"arrow.up.to.line"_s, tr("Push"));
    for (PlainButton* button : transferButtons_) {
        buttons->addWidget(button);
    }
    buttons->addStretch();
    connect(fetchButton, &QAbstractButton::clicked, this, [this] { git_.fetch(std::nullopt, false); });
    connect(pullButton, &QAbstractButton::clicked, this, [this] { git_.pull(true); });
    connect(pushButton, &QAbstractButton::clicked, this, &SourceControlBottomBar::push);

    details_->setHelp(tr("All that git said"));
    connect(details_, &QAbstractButton::clicked, this, &SourceControlBottomBar::showDetails);
    PlainButton* dismiss = makeSymbolButton(u"xmark.circle.fill"_s, tr("Dismiss"), errorRow_, 12);
    connect(dismiss, &QAbstractButton::clicked, this, [this] { git_.setLastError(std::nullopt); });
    auto* error = new QHBoxLayout(errorRow_);
    error->setContentsMargins(4, 0, 0, 0);
    error->setSpacing(2);
    error->addWidget(errorLine_, 1);
    error->addWidget(details_);
    error->addWidget(dismiss);

    column_->setContentsMargins(6, 4, 6, 4);
    column_->setSpacing(2);
    column_->addLayout(buttons);
    auto* transferSign = new TransferSign(git_.transfers(), TransferSign::Kind::others, this);
    column_->addWidget(transferSign);
    column_->addWidget(errorRow_, 1);
    const QMargins around = column_->contentsMargins();
    rowHeight_ =
        std::max({buttons->sizeHint().height(), transferSign->sizeHint().height(), errorRow_->sizeHint().height()}) +
        around.top() + around.bottom();
    connect(&git_, &GitService::isBusyChanged, this, &SourceControlBottomBar::refreshBusy);
    connect(&git_, &GitService::lastFailureChanged, this, &SourceControlBottomBar::refreshError);
    refreshBusy();
    refreshError();
}

PlainButton* SourceControlBottomBar::makeTransferButton(const QString& symbol, const QString& label)
{
    auto* button =
        new PlainButton({.symbol = symbol, .symbolSize = 13, .tint = Tint::primary(), .padding = {6, 4, 6, 4}}, this);
    button->setText(label);
    transferButtons_.append(button);
    return button;
}

void SourceControlBottomBar::push()
{
    git_.push(git_.upstreamMissingForCurrent() ? std::optional(git_.branch()) : std::nullopt);
}

void SourceControlBottomBar::refreshBusy()
{
    for (PlainButton* button : transferButtons_) {
        button->setEnabled(!git_.isBusy());
    }
}

void SourceControlBottomBar::refreshError()
{
    const std::optional<GitFailure>& failure = git_.lastFailure();
    errorRow_->setVisible(failure.has_value());
    errorLine_->setError(failure ? failure->sentence() : QString(), failure ? failure->text : QString());
    details_->setVisible(failure && failure->hasMore());
}

void SourceControlBottomBar::showDetails()
{
    if (const std::optional<GitFailure>& failure = git_.lastFailure()) {
        (new DetailsSheet(failure->sentence(), failure->text, window()))->open();
    }
}

void SourceControlBottomBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    int buttonsWidth = 0;
    for (const PlainButton* button : transferButtons_) {
        buttonsWidth += button->sizeHint().width();
    }
    const bool isWide = width() - buttonsWidth >= leastErrorWidth;
    column_->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::BottomToTop);
    // Beside the buttons what is told makes the bar no higher.
    setMinimumHeight(isWide ? rowHeight_ : 0);
}

} // namespace kelm
