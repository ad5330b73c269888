#include "editor/kept_ready/view/completion_row.h"

#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/view/accessible_role.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

namespace kelm {

namespace {

constexpr int verticalPadding = 4;
constexpr int sidePadding = 8;
constexpr int spacing = 8;
constexpr int badgeSize = 18;
constexpr qreal badgeRadius = 4;
constexpr double selectedOpacity = 0.3;

} // namespace

CompletionRow::CompletionRow(const CompletionItem& item, QWidget* parent) : QWidget(parent), item_(item)
{
    setAccessibleRole(*this, QAccessible::ListItem);
    setAccessibleName(tr("%1, %2").arg(item.text, item.detail));
}

void CompletionRow::setIsSelected(bool isSelected)
{
    isSelected_ = isSelected;
    QAccessible::State state;
    state.selectable = true;
    state.selected = isSelected;
    setAccessibleState(*this, state);
    update();
}

void CompletionRow::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isSelected_) {
        painter.fillRect(rect(), Tint::accent().at(selectedOpacity).on(*this));
    }
    const QRect content = rect().adjusted(sidePadding, verticalPadding, -sidePadding, -verticalPadding);
    const QRect badge(content.left(), content.top() + (content.height() - badgeSize) / 2, badgeSize, badgeSize);
    const CompletionBadge mark = badgeOf(item_.type);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Tint(mark.color).on(*this));
    painter.drawRoundedRect(badge, badgeRadius, badgeRadius);
    painter.setPen(Qt::white);
    painter.setFont(style::interfaceFont(style::typeSize::subheadline, QFont::Bold));
    painter.drawText(badge, Qt::AlignCenter, mark.letter);

    const QFont detailFont = style::interfaceFont(style::typeSize::subheadline);
    const int detailWidth = QFontMetrics(detailFont).horizontalAdvance(item_.detail);
    painter.setFont(detailFont);
    painter.setPen(Tint::secondary().on(*this));
    painter.drawText(content, Qt::AlignRight | Qt::AlignVCenter, item_.detail);

    const QFont textFont = style::monospaced(style::typeSize::body);
    const QRect text = content.adjusted(badgeSize + spacing, 0, -detailWidth - spacing, 0);
    painter.setFont(textFont);
    painter.setPen(Tint::primary().on(*this));
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(textFont).elidedText(item_.text, Qt::ElideRight, text.width()));
}

void CompletionRow::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void CompletionRow::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        Q_EMIT clicked();
    }
}

} // namespace kelm
