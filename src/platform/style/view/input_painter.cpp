#include "platform/style/view/input_painter.h"

#include "platform/style/view/control_painter.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyleOptionComboBox>
#include <QStyleOptionSlider>

#include <algorithm>

namespace kelm {

namespace {

constexpr int textInset = 9;
constexpr int chevronPlace = 24;
constexpr int chevronSize = 10;
/// What the lines of the list need beside their texts more than the button does.
constexpr int listExtra = 14;
constexpr int comboBoxHeight = 26;
constexpr qreal grooveWidth = 4;
constexpr int knobSize = 18;
constexpr float disabledOpacity = 0.5F;

bool isEnabled(const QStyleOption& option)
{
    return option.state.testFlag(QStyle::State_Enabled);
}

bool showsKeyboard(const QStyleOption& option)
{
    return option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange);
}

QColor ring(const QStyleOption& option)
{
    return option.palette.color(QPalette::Normal, QPalette::Link);
}

/// What lies over the ground of a control under the mouse, or of one that is held down.
void drawTouch(const QStyleOption& option, QPainter& painter, const QRectF& box, qreal radius, bool isDown)
{
    if (isEnabled(option) && (isDown || option.state.testFlag(QStyle::State_MouseOver))) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint(option, isDown ? style::pressedOpacity : style::hoverOpacity));
        painter.drawRoundedRect(box, radius, radius);
    }
}

} // namespace

void drawComboBox(const QStyleOptionComboBox& option, QPainter& painter)
{
    constexpr qreal radius = style::radius::control;
    const bool isDown = option.state.testFlag(QStyle::State_On) || option.state.testFlag(QStyle::State_Sunken);
    const QRectF box = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (option.frame) {
        painter.setPen(QPen(tint(option, 0.18F), 1));
        painter.setBrush(option.palette.color(option.editable ? QPalette::Base : QPalette::Button));
        painter.drawRoundedRect(box, radius, radius);
    }
    drawTouch(option, painter, box, radius, isDown);
    const QRectF place = comboBoxPart(option, QStyle::SC_ComboBoxArrow);
    const QColor color = option.palette.color(QPalette::ButtonText);
    icons::paint(painter, QStringLiteral("chevron.down"),
                 QRectF(place.center().x() - chevronSize / 2.0, place.center().y() - chevronSize / 2.0, chevronSize,
                        chevronSize),
                 color);
    if (showsKeyboard(option)) {
        drawFocusRing(painter, QRectF(option.rect), ring(option), radius);
    }
    painter.restore();
}

void drawComboBoxLabel(const QStyleOptionComboBox& option, QPainter& painter)
{
    QRect place = comboBoxPart(option, QStyle::SC_ComboBoxEditField);
    painter.save();
    if (!option.currentIcon.isNull()) {
        const QRect icon(place.left(), place.center().y() - option.iconSize.height() / 2 + 1, option.iconSize.width(),
                         option.iconSize.height());
        option.currentIcon.paint(&painter, icon, Qt::AlignCenter, isEnabled(option) ? QIcon::Normal : QIcon::Disabled);
        place.setLeft(icon.right() + 6);
    }
    if (!option.editable) {
        painter.setPen(option.palette.color(QPalette::ButtonText));
        const QString shown =
            QFontMetrics(painter.font()).elidedText(option.currentText, Qt::ElideRight, place.width());
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    }
    painter.restore();
}

QRect comboBoxPart(const QStyleOptionComboBox& option, QStyle::SubControl part)
{
    const QRect all = option.rect;
    QRect place = all;
    if (part == QStyle::SC_ComboBoxArrow) {
        place = QRect(all.right() - chevronPlace + 1, all.top(), chevronPlace, all.height());
    } else if (part == QStyle::SC_ComboBoxEditField) {
        place = all.adjusted(option.editable ? 4 : textInset, 2, -chevronPlace, -2);
    }
    return QStyle::visualRect(option.direction, all, place);
}

QSize comboBoxSize(const QSize& contents)
{
    return {contents.width() + textInset + chevronPlace + listExtra, std::max(comboBoxHeight, contents.height() + 8)};
}

void drawSlider(const QStyleOptionSlider& option, QPainter& painter)
{
    const bool isHorizontal = option.orientation == Qt::Horizontal;
    const QRectF groove = sliderPart(option, QStyle::SC_SliderGroove);
    const QRectF knob = QRectF(sliderPart(option, QStyle::SC_SliderHandle)).adjusted(1.5, 1.5, -1.5, -1.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled(option) ? 1 : disabledOpacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tint(option, 0.2F));
    painter.drawRoundedRect(groove, grooveWidth / 2, grooveWidth / 2);
    // The side that the values grow from.
    const bool isFromEnd = isHorizontal ? option.upsideDown : !option.upsideDown;
    QRectF filled = groove;
    if (isHorizontal) {
        isFromEnd ? filled.setLeft(knob.center().x()) : filled.setRight(knob.center().x());
    } else {
        isFromEnd ? filled.setTop(knob.center().y()) : filled.setBottom(knob.center().y());
    }
    painter.setBrush(option.palette.color(QPalette::Normal, QPalette::Link));
    painter.drawRoundedRect(filled, grooveWidth / 2, grooveWidth / 2);

    const bool isDown =
        option.state.testFlag(QStyle::State_Sunken) && option.activeSubControls.testFlag(QStyle::SC_SliderHandle);
    painter.setPen(QPen(QColor(0, 0, 0, 70), 1));
    painter.setBrush(isDown ? QColor(226, 226, 228) : QColor(Qt::white));
    painter.drawEllipse(knob);
    if (isEnabled(option) && !isDown && option.state.testFlag(QStyle::State_MouseOver)) {
        painter.setPen(QPen(QColor(0, 0, 0, 120), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(knob);
    }
    if (showsKeyboard(option)) {
        drawFocusRing(painter, QRectF(sliderPart(option, QStyle::SC_SliderHandle)), ring(option), knobSize / 2.0);
    }
    painter.restore();
}

QRect sliderPart(const QStyleOptionSlider& option, QStyle::SubControl part)
{
    const QRect all = option.rect;
    const bool isHorizontal = option.orientation == Qt::Horizontal;
    const int length = isHorizontal ? all.width() : all.height();
    const int middle = isHorizontal ? all.center().y() : all.center().x();
    if (part == QStyle::SC_SliderHandle) {
        const int start = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                          length - knobSize, option.upsideDown);
        const int across = middle - knobSize / 2 + 1;
        return isHorizontal ? QRect(all.left() + start, across, knobSize, knobSize)
                            : QRect(across, all.top() + start, knobSize, knobSize);
    }
    if (part == QStyle::SC_SliderGroove) {
        constexpr int thickness = static_cast<int>(grooveWidth);
        const int across = middle - thickness / 2 + 1;
        return isHorizontal ? QRect(all.left() + 2, across, length - 4, thickness)
                            : QRect(across, all.top() + 2, thickness, length - 4);
    }
    return {};
}

void drawTextFieldFrame(const QStyleOption& option, QPainter& painter)
{
    // The text's own ground is a rectangle, which hides no more of the corners than this.
    constexpr qreal radius = 3;
    const bool hasKeyboard = option.state.testFlag(QStyle::State_HasFocus);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(hasKeyboard ? ring(option) : tint(option, 0.18F), 1));
    painter.setBrush(option.palette.color(QPalette::Base));
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

void drawToolButtonGround(const QStyleOption& option, QPainter& painter)
{
    constexpr qreal radius = style::radius::chip;
    const QRectF box(option.rect);
    const bool isOn = option.state.testFlag(QStyle::State_On);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (isOn) {
        QColor ground = ring(option);
        ground.setAlphaF(0.22F);
        painter.setPen(QPen(ring(option), 1));
        painter.setBrush(ground);
        painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    } else if (!option.state.testFlag(QStyle::State_AutoRaise)) {
        painter.setPen(QPen(tint(option, 0.15F), 1));
        painter.setBrush(option.palette.color(QPalette::Button));
        painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }
    drawTouch(option, painter, box, radius, option.state.testFlag(QStyle::State_Sunken));
    if (showsKeyboard(option)) {
        drawFocusRing(painter, box, ring(option), radius);
    }
    painter.restore();
}

void drawRadioButton(const QStyleOption& option, QPainter& painter)
{
    const bool isChosen = option.state.testFlag(QStyle::State_On);
    const QRectF box = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled(option) ? 1 : disabledOpacity);
    const bool isHovered = isEnabled(option) && option.state.testFlag(QStyle::State_MouseOver);
    painter.setPen(isChosen ? QPen(Qt::NoPen) : QPen(tint(option, isHovered ? 0.5F : 0.3F), 1));
    painter.setBrush(option.palette.color(QPalette::Normal, isChosen ? QPalette::Highlight : QPalette::Base));
    painter.drawEllipse(isChosen ? QRectF(option.rect) : box);
    if (isChosen) {
        const qreal dot = box.width() / 5;
        painter.setBrush(Qt::white);
        painter.drawEllipse(box.center(), dot, dot);
    }
    painter.restore();
}

QStyleOptionButton pushButtonLabelOption(const QStyleOptionButton& option)
{
    QStyleOptionButton label(option);
    if (option.features.testFlag(QStyleOptionButton::DefaultButton) && isEnabled(option)) {
        label.palette.setColor(QPalette::ButtonText, option.palette.color(QPalette::HighlightedText));
    }
    return label;
}

} // namespace kelm
