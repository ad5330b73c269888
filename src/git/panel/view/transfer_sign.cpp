#include "git/panel/view/transfer_sign.h"

#include "platform/view/accessible_role.h"
#include "platform/view/activity_line.h"
#include "platform/view/labels.h"
#include "platform/view/panel_controls.h"

#include <QHBoxLayout>

#include <algorithm>
#include <chrono>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

using namespace std::chrono_literals;

namespace {

const QString cloneName = u"git clone"_s;

} // namespace

TransferSign::TransferSign(GitTransfers& transfers, Kind kind, QWidget* parent)
    : QWidget(parent),
      transfers_(transfers),
      kind_(kind),
      activity_(new ActivityLine(this)),
      label_(new TextLabel({}, style::interfaceFont(style::typeSize::subheadline), Tint::secondary(), this)),
      stop_(makePanelButton(tr("Stop"), this))
{
    setAccessibleRole(*this, QAccessible::Notification);
    auto* row = new QHBoxLayout(this);
    // In the panel it stands below buttons whose own edges are not seen.
    row->setContentsMargins(kind == Kind::others ? 4 : 0, 4, 0, 2);
    row->setSpacing(6);
    row->addWidget(label_, 1);
    row->addWidget(stop_);
    connect(stop_, &QAbstractButton::clicked, this, [this] {
        if (const GitTransfer* const shown = transfer()) {
            transfers_.stop(shown->id);
        }
    });
    connect(&transfers_, &GitTransfers::began, this, &TransferSign::refresh);
    connect(&transfers_, &GitTransfers::ended, this, &TransferSign::refresh);
    connect(&seconds_, &QTimer::timeout, this, &TransferSign::refresh);
    refresh();
}

QString TransferSign::text() const
{
    return label_->text();
}

const GitTransfer* TransferSign::transfer() const
{
    const auto& all = transfers_.all();
    const auto found = std::find_if(all.begin(), all.end(), [this](const GitTransfer& each) {
        return (each.name == cloneName) == (kind_ == Kind::clones);
    });
    return found != all.end() ? &*found : nullptr;
}

void TransferSign::refresh()
{
    const GitTransfer* const shown = transfer();
    QAccessible::State state;
    state.busy = shown != nullptr;
    setAccessibleState(*this, state);
    setVisible(shown != nullptr);
    activity_->setActive(shown != nullptr);
    if (shown == nullptr) {
        seconds_.stop();
        return;
    }
    const auto time = std::chrono::round<std::chrono::seconds>(std::chrono::steady_clock::now() - shown->begin);
    label_->setText(tr("%1, %2 s").arg(shown->name, QString::number(time.count())));
    // Not each second anew.
    if (accessibleName() != shown->name) {
        setAccessibleName(shown->name);
    }
    if (!seconds_.isActive()) {
        seconds_.start(1s);
    }
}

void TransferSign::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    activity_->setGeometry(0, 0, width(), activity_->height());
}

} // namespace kelm
