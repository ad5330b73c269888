#include "platform/style/view/control_painter.h"

#include "platform/style/view/hairline.h"
#include "platform/style/view/style.h"

#include <QPainter>
#include <QStyleOptionMenuItem>
#include <QStyleOptionSlider>

#include <algorithm>

namespace kelm {

namespace {

/// The close cross: half its extent and the width of its lines.
constexpr qreal crossArm = 3;
constexpr qreal crossStroke = 1.4;

} // namespace

QColor tint(const QStyleOption& option, float alpha)
{
    QColor color = option.palette.color(QPalette::Normal, QPalette::WindowText);
    color.setAlphaF(alpha);
    return color;
}

void drawFocusRing(QPainter& painter, const QRectF& box, QColor color, qreal radius)
{
    constexpr qreal stroke = 2;
    color.setAlphaF(0.8F);
    painter.setPen(QPen(color, stroke));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(stroke / 2, stroke / 2, -stroke / 2, -stroke / 2), radius, radius);
}

void drawScrollBar(const QStyleOptionSlider& option, QPainter& painter, const QRect& thumb)
{
    if (option.maximum <= option.minimum) {
        return;
    }
    const bool isVertical = option.orientation == Qt::Vertical;
    const bool isHeld =
        option.activeSubControls.testFlag(QStyle::SC_ScrollBarSlider) && option.state.testFlag(QStyle::State_MouseOver);
    QColor color = option.palette.color(QPalette::WindowText);
    color.setAlphaF(option.state.testFlag(QStyle::State_Sunken) ? 0.5F : isHeld ? 0.4F : 0.22F);
    const int inset = isHeld ? 2 : 3;
    const QRectF box = QRectF(thumb).adjusted(isVertical ? inset : 2, isVertical ? 2 : inset, isVertical ? -inset : -2,
                                              isVertical ? -2 : -inset);
    const qreal radius = std::min(box.width(), box.height()) / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(box, radius, radius);
    painter.restore();
}

QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part)
{
    const bool isVertical = option.orientation == Qt::Vertical;
    const int length = isVertical ? option.rect.height() : option.rect.width();
    const int range = option.maximum - option.minimum;
    int thumb = length;
    if (range > 0) {
        const qint64 total = qint64(range) + option.pageStep;
        thumb = static_cast<int>(qint64(length) * option.pageStep / total);
        thumb = std::min(length, std::max(shortestThumb, thumb));
    }
    const int start = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                      length - thumb, option.upsideDown);
    const auto along = [&](int from, int to) {
        return isVertical ? QRect(0, from, option.rect.width(), to - from)
                          : QRect(from, 0, to - from, option.rect.height());
    };
    switch (part) {
    case QStyle::SC_ScrollBarSlider:
        return along(start, start + thumb);
    case QStyle::SC_ScrollBarSubPage:
        return along(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return along(start + thumb, length);
    case QStyle::SC_ScrollBarGroove:
        return along(0, length);
    default:
        return {};
    }
}

void drawCheckBox(const QStyleOption& option, QPainter& painter)
{
    constexpr qreal radius = 3.5;
    const bool isChecked = option.state.testFlag(QStyle::State_On);
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    QColor line = option.palette.color(QPalette::Normal, QPalette::WindowText);
    line.setAlphaF(option.state.testFlag(QStyle::State_MouseOver) && isEnabled ? 0.5F : 0.3F);
    const auto [box, lineWidth] = hairline(painter, QRectF(option.rect));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled ? 1 : 0.5);
    painter.setPen(isChecked ? QPen(Qt::NoPen) : QPen(line, lineWidth));
    painter.setBrush(option.palette.color(QPalette::Normal, isChecked ? QPalette::Highlight : QPalette::Base));
    painter.drawRoundedRect(isChecked ? QRectF(option.rect) : box, radius, radius);
    if (isChecked) {
        const auto at = [&](qreal x, qreal y) { return box.topLeft() + QPointF(box.width() * x, box.height() * y); };
        painter.setPen(QPen(Qt::white, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF{at(0.24, 0.53), at(0.43, 0.72), at(0.77, 0.3)});
    }
    painter.restore();
}

void drawCloseCross(const QStyleOption& option, QPainter& painter)
{
    const bool isHovered =
        option.state.testFlag(QStyle::State_MouseOver) && option.state.testFlag(QStyle::State_Enabled);
    const QRectF box = QRectF(option.rect).adjusted(1, 1, -1, -1);
    QColor color = option.palette.color(QPalette::WindowText);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (isHovered) {
        QColor ground = color;
        ground.setAlphaF(option.state.testFlag(QStyle::State_Sunken) ? 0.25F : 0.14F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        painter.drawRoundedRect(box, 3, 3);
    }
    color.setAlphaF(isHovered ? 0.9F : 0.5F);
    painter.setPen(QPen(color, crossStroke, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = box.center();
    painter.drawLine(middle + QPointF(-crossArm, -crossArm), middle + QPointF(crossArm, crossArm));
    painter.drawLine(middle + QPointF(-crossArm, crossArm), middle + QPointF(crossArm, -crossArm));
    painter.restore();
}

void drawField(const QStyleOptionFrame& option, QPainter& painter)
{
    if (option.lineWidth <= 0) {
        return;
    }
    constexpr qreal radius = style::radius::control;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const Hairline outline = hairline(painter, QRectF(option.rect));
    painter.setPen(QPen(tint(option, 0.18F), outline.width));
    painter.setBrush(option.palette.color(QPalette::Base));
    painter.drawRoundedRect(outline.box, radius, radius);
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        drawFocusRing(painter, QRectF(option.rect), option.palette.color(QPalette::Normal, QPalette::Link), radius);
    }
    painter.restore();
}

void drawTab(const QStyleOptionTab& option, QPainter& painter)
{
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    painter.save();
    if (isSelected) {
        painter.fillRect(option.rect, option.palette.color(QPalette::Base));
    } else if (isHovered) {
        painter.fillRect(option.rect, tint(option, 0.06F));
    }
    const QColor line = tint(option, 0.12F);
    painter.fillRect(QRect(option.rect.right(), option.rect.top(), 1, option.rect.height()), line);
    if (!isSelected) {
        painter.fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width() - 1, 1), line);
    }
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        painter.setRenderHint(QPainter::Antialiasing);
        drawFocusRing(painter, QRectF(option.rect).adjusted(0, 0, -1, 0),
                      option.palette.color(QPalette::Normal, QPalette::Link), 0);
    }
    painter.restore();
}

QStyleOptionTab tabLabelOption(const QStyleOptionTab& option)
{
    QStyleOptionTab label(option);
    label.state.setFlag(QStyle::State_HasFocus, false);
    if (!option.state.testFlag(QStyle::State_Selected)) {
        label.palette.setColor(QPalette::WindowText, tint(option, 0.6F));
    }
    return label;
}

void drawMenuBarItem(const QStyleOptionMenuItem& option, QPainter& painter)
{
    constexpr qreal radius = 4;
    painter.save();
    painter.fillRect(option.rect, option.palette.window());
    if (option.state.testFlag(QStyle::State_Selected) && option.state.testFlag(QStyle::State_Enabled)) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint(option, option.state.testFlag(QStyle::State_Sunken) ? 0.18F : 0.1F));
        painter.drawRoundedRect(QRectF(option.rect).adjusted(0, 2, 0, -2), radius, radius);
    }
    painter.setPen(option.palette.color(QPalette::WindowText));
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, option.text);
    painter.restore();
}

void drawPushButton(const QStyleOptionButton& option, QPainter& painter)
{
    constexpr qreal radius = 5;
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    const bool isDown = option.state.testFlag(QStyle::State_Sunken) || option.state.testFlag(QStyle::State_On);
    const bool isDefault = option.features.testFlag(QStyleOptionButton::DefaultButton) && isEnabled;
    const auto [box, lineWidth] = hairline(painter, QRectF(option.rect));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!option.features.testFlag(QStyleOptionButton::Flat) || isDown) {
        painter.setPen(QPen(tint(option, 0.15F), lineWidth));
        painter.setBrush(option.palette.color(isDefault ? QPalette::Highlight : QPalette::Button));
        painter.drawRoundedRect(box, radius, radius);
    }
    if (isEnabled && (isDown || option.state.testFlag(QStyle::State_MouseOver))) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint(option, isDown ? 0.16F : 0.07F));
        painter.drawRoundedRect(box, radius, radius);
    }
    if (option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        drawFocusRing(painter, QRectF(option.rect), option.palette.color(QPalette::Normal, QPalette::Link), radius);
    }
    painter.restore();
}

} // namespace kelm
