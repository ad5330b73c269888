#include "git/panel/view/clone_dialog.h"

#include "git/panel/view/credential_status_row.h"
#include "git/panel/view/transfer_sign.h"
#include "platform/text/shown_name.h"
#include "platform/view/breaking_label.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"

#include <QDir>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int contentWidth = 440;
constexpr int margin = 20;
constexpr int smallText = 11;
constexpr int mostErrorHeight = 160;
constexpr double errorOpacity = 0.08;

TextLabel* makeCaption(const QString& text, QWidget* parent)
{
    return new TextLabel(text, style::interfaceFont(12, QFont::Medium), Tint::primary(), parent);
}

PlainButton* makeDialogButton(const QString& label, bool isProminent, QWidget* parent)
{
    auto* button = new PlainButton(isProminent ? prominentLook() : borderedLook(), parent);
    button->setText(label);
    return button;
}

} // namespace

CloneDialog::CloneDialog(GitService& git, FilePanels& filePanels, Scheduler& scheduler, QWidget* parent)
    : QDialog(parent), form_(git, filePanels, scheduler)
{
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Clone Repository"));
    buildRows(git);
    connect(&form_, &CloneForm::changed, this, &CloneDialog::refreshForm);
    connect(&form_, &CloneForm::dismissed, this, [this] { done(form_.didSucceed() ? Accepted : Rejected); });
    refreshForm();
    remoteURL_->setFocus(Qt::OtherFocusReason);
}

void CloneDialog::buildRows(GitService& git)
{
    auto* title = new QHBoxLayout;
    title->setSpacing(8);
    title->addWidget(new SymbolLabel(u"square.and.arrow.down.on.square"_s, 18, Tint::accent(), this));
    title->addWidget(
        new TextLabel(u"Clone Repository"_s, style::interfaceFont(15, QFont::DemiBold), Tint::primary(), this), 1);

    remoteURL_ = makePanelField(u"https://github.com/owner/repo.git 또는 git@github.com:owner/repo.git"_s, this);
    remoteURL_->setAccessibleName(u"Remote URL"_s);
    connect(remoteURL_, &QLineEdit::textChanged, &form_, &CloneForm::setRemoteURL);
    credentials_ = new CredentialStatusRow(this);
    auto* sign = new TransferSign(git.transfers(), TransferSign::Kind::clones, this);
    sign->setFixedWidth(contentWidth);
    success_ =
        new TextLabel(u"✓ Cloned. Repository opened."_s, style::interfaceFont(smallText), SystemColor::green, this);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(6);
    column->addLayout(title);
    column->addSpacing(8);
    column->addWidget(makeCaption(u"Remote URL"_s, this));
    column->addWidget(remoteURL_);
    column->addWidget(credentials_);
    column->addSpacing(8);
    column->addWidget(makeCaption(u"Destination"_s, this));
    column->addWidget(makeDestinationRow());
    column->addWidget(makeNameRow());
    column->addWidget(makeErrorBox());
    column->addWidget(sign);
    column->addWidget(success_);
    column->addSpacing(8);
    column->addWidget(makeButtonRow());
    column->setSizeConstraint(QLayout::SetFixedSize);
    remoteURL_->setFixedWidth(contentWidth);
    credentials_->setFixedWidth(contentWidth);
}

QWidget* CloneDialog::makeDestinationRow()
{
    auto* row = new QWidget(this);
    destination_ = new TextLabel({}, style::interfaceFont(12), Tint::secondary(), row);
    destination_->setElideMode(Qt::ElideMiddle);
    PlainButton* choose = makePanelButton(u"Choose"_s, row);
    connect(choose, &QAbstractButton::clicked, &form_, &CloneForm::pickDestination);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(destination_, 1);
    line->addWidget(choose);
    row->setFixedWidth(contentWidth);
    return row;
}

QWidget* CloneDialog::makeNameRow()
{
    auto* row = new QWidget(this);
    auto* caption = new TextLabel(u"Folder name:"_s, style::interfaceFont(smallText), Tint::primary(), row);
    caption->setGivesWay(false);
    destinationName_ = makePanelField(u"repo"_s, row);
    destinationName_->setAccessibleName(u"Folder name"_s);
    connect(destinationName_, &QLineEdit::textChanged, &form_, &CloneForm::setDestinationName);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(caption);
    line->addWidget(destinationName_, 1);
    row->setFixedWidth(contentWidth);
    return row;
}

QWidget* CloneDialog::makeErrorBox()
{
    errorBox_ = new QScrollArea(this);
    errorBox_->setFrameShape(QFrame::NoFrame);
    errorBox_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    errorBox_->setWidgetResizable(true);
    errorBox_->viewport()->setAutoFillBackground(false);
    error_ = new BreakingLabel(style::interfaceFont(smallText), SystemColor::red, errorBox_);
    error_->setGround(Tint(SystemColor::red).at(errorOpacity));
    error_->setPadding(8);
    errorBox_->setWidget(error_);
    error_->setAutoFillBackground(false);
    errorBox_->setFixedWidth(contentWidth);
    return errorBox_;
}

QWidget* CloneDialog::makeButtonRow()
{
    auto* row = new QWidget(this);
    cancelButton_ = makeDialogButton(u"Cancel"_s, false, row);
    cloneButton_ = makeDialogButton(u"Clone"_s, true, row);
    connect(cancelButton_, &QAbstractButton::clicked, &form_, &CloneForm::dismiss);
    connect(cloneButton_, &QAbstractButton::clicked, &form_, &CloneForm::startClone);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addStretch();
    line->addWidget(cancelButton_);
    line->addWidget(cloneButton_);
    row->setFixedWidth(contentWidth);
    return row;
}

void CloneDialog::refreshForm()
{
    if (remoteURL_->text() != form_.remoteURL()) {
        remoteURL_->setText(form_.remoteURL());
    }
    if (destinationName_->text() != form_.destinationName()) {
        destinationName_->setText(form_.destinationName());
    }
    const std::optional<QUrl>& parentFolder = form_.destinationParent();
    destination_->setText(parentFolder ? shownName(QDir::toNativeSeparators(parentFolder->toLocalFile()))
                                       : u"(pick a folder)"_s);
    destination_->setTint(parentFolder ? Tint::primary() : Tint::secondary());

    error_->setText(form_.errorMessage().value_or(QString()));
    errorBox_->setFixedHeight(std::min(mostErrorHeight, error_->heightForWidth(contentWidth)));
    errorBox_->setVisible(form_.errorMessage().has_value());
    success_->setVisible(form_.didSucceed());
    cancelButton_->setEnabled(!form_.inProgress());
    cloneButton_->setText(form_.inProgress() ? u"Cloning…"_s : u"Clone"_s);
    cloneButton_->updateGeometry();
    cloneButton_->setEnabled(form_.canStart() && !form_.inProgress());
    // The longer words want their room in the same picture.
    cloneButton_->parentWidget()->layout()->activate();
}

void CloneDialog::reject()
{
    if (!form_.inProgress()) {
        form_.dismiss();
    }
}

void CloneDialog::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && cloneButton_->isEnabled()) {
        cloneButton_->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace kelm
