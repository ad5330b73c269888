#include "platform/style/view/menu_painter.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyleOptionMenuItem>

#include <algorithm>

namespace kelm {

namespace {

constexpr int lineHeight = 24;
constexpr int separatorHeight = 9;
/// From the line's edge to the highlight, from there to the text, and the room of a check mark before the text.
constexpr int highlightInset = 4;
constexpr int textInset = 8;
constexpr int checkWidth = 18;
constexpr int keyGap = 28;
constexpr int arrowWidth = 16;
constexpr int markSize = 11;

QColor labelColor(const QStyleOptionMenuItem& option, double opacity)
{
    QColor color = option.palette.color(QPalette::Active, QPalette::WindowText);
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

void drawSeparator(const QStyleOptionMenuItem& option, QPainter& painter)
{
    const int inset = highlightInset + textInset;
    const QRect line(option.rect.left() + inset, option.rect.center().y(), option.rect.width() - 2 * inset, 1);
    painter.fillRect(line, labelColor(option, 0.14));
}

} // namespace

QSize menuItemSize(const QStyleOptionMenuItem& option)
{
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        return {1, separatorHeight};
    }
    const QFontMetrics metrics(option.font);
    const int tab = static_cast<int>(option.text.indexOf(QLatin1Char('\t')));
    int width = 2 * (highlightInset + textInset) + checkWidth;
    width += metrics.size(Qt::TextSingleLine | Qt::TextShowMnemonic, option.text.left(tab)).width();
    if (tab >= 0) {
        // The menu itself adds the column of the keys.
        width += keyGap;
    }
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        width += arrowWidth;
    }
    return {width, std::max(lineHeight, metrics.height() + 6)};
}

void drawMenuItem(const QStyleOptionMenuItem& option, QPainter& painter)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        drawSeparator(option, painter);
        painter.restore();
        return;
    }
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    const bool isHighlighted = option.state.testFlag(QStyle::State_Selected) && isEnabled;
    if (isHighlighted) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(option.palette.color(QPalette::Active, QPalette::Highlight));
        painter.drawRoundedRect(QRectF(option.rect).adjusted(highlightInset, 0, -highlightInset, 0),
                                style::radius::chip, style::radius::chip);
    }
    const QColor highlighted = option.palette.color(QPalette::Active, QPalette::HighlightedText);
    const QColor color = isHighlighted ? highlighted : labelColor(option, isEnabled ? 0.85 : 0.42);
    const QRect inner = option.rect.adjusted(highlightInset + textInset, 0, -highlightInset - textInset, 0);
    if (option.checkType != QStyleOptionMenuItem::NotCheckable && option.checked) {
        icons::paint(painter, QStringLiteral("checkmark"),
                     QRectF(inner.left() - 2, inner.center().y() - markSize / 2.0 + 0.5, markSize, markSize), color);
    }
    const qsizetype tab = option.text.indexOf(QLatin1Char('\t'));
    painter.setFont(option.font);
    painter.setPen(color);
    const QRect textPlace = inner.adjusted(checkWidth, 0, 0, 0);
    painter.drawText(textPlace, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextHideMnemonic,
                     option.text.left(tab));
    if (tab >= 0) {
        painter.setPen(isHighlighted ? highlighted : labelColor(option, isEnabled ? 0.6 : 0.42));
        painter.drawText(textPlace, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, option.text.mid(tab + 1));
    }
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        icons::paint(painter, QStringLiteral("chevron.right"),
                     QRectF(inner.right() - 9, inner.center().y() - 4.5 + 0.5, 10, 10), color);
    }
    painter.restore();
}

} // namespace kelm
