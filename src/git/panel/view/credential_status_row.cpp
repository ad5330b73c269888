#include "git/panel/view/credential_status_row.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "platform/view/accessible_role.h"
#include "platform/view/labels.h"
#include "platform/view/wrapping_row.h"

#include <QDir>
#include <QPainter>
#include <QShowEvent>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int symbolSize = 11;
constexpr int spacing = 4;
constexpr int sidePadding = 8;
constexpr int chipHeight = 20;
constexpr double presentOpacity = 0.1;
constexpr double absentOpacity = 0.08;

QFont labelFont()
{
    return style::interfaceFont(style::typeSize::subheadline);
}

} // namespace

CredentialChip::CredentialChip(const QString& label, QWidget* parent) : QWidget(parent), label_(label)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleRole(*this, QAccessible::StaticText);
    setAccessibleName(label);
    setPresent(false);
}

void CredentialChip::setPresent(bool isPresent)
{
    isPresent_ = isPresent;
    setAccessibleDescription(isPresent ? tr("found") : tr("not found"));
    update();
}

QSize CredentialChip::sizeHint() const
{
    const int text = QFontMetrics(labelFont()).horizontalAdvance(label_) + 1;
    return {sidePadding + symbolSize + spacing + text + sidePadding, chipHeight};
}

void CredentialChip::paintEvent(QPaintEvent*)
{
    const Tint tint = isPresent_ ? Tint(SystemColor::green) : Tint::secondary();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tint.at(isPresent_ ? presentOpacity : absentOpacity).on(*this));
    painter.drawRoundedRect(QRectF(rect()), chipHeight / 2.0, chipHeight / 2.0);
    icons::paint(painter, isPresent_ ? u"checkmark.circle.fill"_s : u"circle"_s,
                 QRectF(sidePadding, (chipHeight - symbolSize) / 2.0, symbolSize, symbolSize), style::ink(tint, *this));
    painter.setFont(labelFont());
    painter.setPen((isPresent_ ? Tint::primary() : Tint::secondary()).on(*this));
    painter.drawText(rect().adjusted(sidePadding + symbolSize + spacing, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, label_);
}

CredentialStatusRow::CredentialStatusRow(QWidget* parent)
    : QWidget(parent),
      sshKey_(new CredentialChip(u"SSH key"_s, this)),
      gitHubCLI_(new CredentialChip(u"gh CLI"_s, this)),
      credentialHelper_(new CredentialChip(u"git helper"_s, this)),
      hint_(new WrappedLabel({}, style::interfaceFont(style::typeSize::subheadline), Tint::secondary(), this))
{
    auto* chips = new WrappingRow;
    for (CredentialChip* chip : {sshKey_, gitHubCLI_, credentialHelper_}) {
        chips->addWidget(chip);
    }
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addLayout(chips);
    column->addWidget(hint_);
    setStatus({});
}

void CredentialStatusRow::detect()
{
    setStatus(detectCredentials(QDir::homePath()));
}

void CredentialStatusRow::setStatus(const CredentialStatus& status)
{
    status_ = status;
    sshKey_->setPresent(status.hasSSHKey);
    gitHubCLI_->setPresent(status.hasGitHubCLI);
    credentialHelper_->setPresent(status.hasGitCredentialHelper);
    hint_->setText(status.hint());
}

void CredentialStatusRow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        detect();
    }
}

} // namespace kelm
