#include "workbench/status/view/status_bar_items.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/view/accessible_role.h"

#include <QPainter>

namespace kelm {

namespace {

constexpr int textSize = 11;
constexpr int symbolExtent = 10;
constexpr int horizontalPadding = 6;
constexpr int itemHeight = 20;
constexpr int spacing = 4;

} // namespace

StatusBarItem::StatusBarItem(QString icon, const QString& text, bool highlight, QWidget* parent)
    : QWidget(parent), icon_(std::move(icon)), text_(text), highlight_(highlight)
{
    setAttribute(Qt::WA_Hover);
    setAccessibleRole(*this, QAccessible::StaticText);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(text);
}

void StatusBarItem::setText(const QString& text)
{
    if (text != text_) {
        text_ = text;
        setAccessibleName(text);
        updateGeometry();
        update();
    }
}

QSize StatusBarItem::sizeHint() const
{
    const QFontMetrics metrics(style::interfaceFont(textSize));
    const int icon = icon_.isEmpty() ? 0 : symbolExtent + spacing;
    return {2 * horizontalPadding + icon + metrics.horizontalAdvance(text_), itemHeight};
}

void StatusBarItem::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Tint::primary().at(style::hoverOpacity).on(*this));
        painter.drawRoundedRect(rect(), style::radius::chip, style::radius::chip);
    }
    const QColor color = style::ink(highlight_ ? Tint::accent() : Tint::secondary(), *this);
    int x = horizontalPadding;
    if (!icon_.isEmpty()) {
        icons::paint(painter, icon_, QRectF(x, (height() - symbolExtent) / 2.0, symbolExtent, symbolExtent), color);
        x += symbolExtent + spacing;
    }
    painter.setFont(style::interfaceFont(textSize));
    painter.setPen(color);
    painter.drawText(QRect(x, 0, width() - x, height()), Qt::AlignVCenter | Qt::TextSingleLine, text_);
}

StatusBarMenu::StatusBarMenu(const QString& icon, const QString& text, std::function<void(QMenu&)> menuContent,
                             QWidget* parent)
    : PlainButton({.symbol = icon,
                   .symbolSize = symbolExtent,
                   .textSize = textSize,
                   .padding = {horizontalPadding, 0, horizontalPadding, 0},
                   .spacing = spacing,
                   .cornerRadius = style::radius::chip,
                   .fixedSize = {0, itemHeight}},
                  parent)
{
    setText(text);
    setMenu(std::move(menuContent));
}

void StatusBarMenu::setText(const QString& text)
{
    PlainButton::setText(text);
    setAccessibleDescription(text);
}

StatusBarDivider::StatusBarDivider(QWidget* parent) : QWidget(parent)
{
    constexpr QSize size(9, 12);
    setFixedSize(size);
}

void StatusBarDivider::paintEvent(QPaintEvent*)
{
    constexpr double opacity = 0.15;
    QPainter(this).fillRect(QRect(width() / 2, 0, 1, height()), Tint::primary().at(opacity).on(*this));
}

} // namespace kelm
