#include "platform/view/style.h"

#include "platform/named_colors.h"
#include "platform/view/menu_painter.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QPainter>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOptionSlider>

#include <algorithm>

namespace kelm::style {

namespace {

QColor withAlpha(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

/// The system's font where a desktop has chosen one. What the font matcher falls back on without a desktop is made for
/// documents, so a face made for screens goes before it where it is installed.
QStringList interfaceFamilies()
{
    const QString system = QFontInfo(QFontDatabase::systemFont(QFontDatabase::GeneralFont)).family();
    QStringList families;
    if (system.isEmpty() || system.startsWith(QLatin1String("DejaVu"))) {
        families.append(QStringLiteral("Inter"));
    }
    families.append(system);
    for (const char* family : {"NanumGothic", "Noto Sans CJK KR", "Noto Color Emoji"}) {
        families.append(QString::fromLatin1(family));
    }
    return families;
}

void drawRing(QPainter& painter, const QRectF& box, QColor color, qreal radius)
{
    constexpr qreal stroke = 2;
    color.setAlphaF(0.8F);
    painter.setPen(QPen(color, stroke));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(stroke / 2, stroke / 2, -stroke / 2, -stroke / 2), radius, radius);
}

} // namespace

QFont monospaced(int pixelSize)
{
    // The system's answer may be an alias, which counts for nothing in a list of families.
    QStringList families{QFontInfo(QFontDatabase::systemFont(QFontDatabase::FixedFont)).family()};
    for (const char* family : {"D2Coding", "NanumGothicCoding", "Noto Sans Mono CJK KR", "Noto Color Emoji"}) {
        families.append(QString::fromLatin1(family));
    }
    QFont font(families);
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(pixelSize);
    return font;
}

QFont interfaceFont(int pixelSize, QFont::Weight weight)
{
    static const QStringList families = interfaceFamilies();
    QFont font(families);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

void drawFocusRing(QPainter& painter, const QRectF& box, qreal cornerRadius, const QWidget& widget)
{
    drawRing(painter, box, widget.palette().color(QPalette::Active, QPalette::Highlight), cornerRadius);
}

QPalette palette(Appearance appearance)
{
    const bool isDark = appearance == Appearance::dark;
    const QColor label = isDark ? Qt::white : Qt::black;
    const QColor window = systemColor(SystemColor::windowBackground, appearance);
    const QColor control = systemColor(SystemColor::controlBackground, appearance);
    const QColor accent = systemColor(SystemColor::accent, appearance);
    const QColor text = systemColor(SystemColor::primaryLabel, appearance);

    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, control);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, isDark ? QColor(70, 70, 70) : QColor(250, 250, 250));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, label);
    palette.setColor(QPalette::ToolTipBase, isDark ? QColor(64, 64, 64) : QColor(246, 246, 246));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, withAlpha(label, 0.45F));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::Mid, isDark ? QColor(70, 70, 70) : QColor(200, 200, 200));
    palette.setColor(QPalette::Dark, isDark ? QColor(24, 24, 24) : QColor(170, 170, 170));
    palette.setColor(QPalette::Light, isDark ? QColor(80, 80, 80) : QColor(255, 255, 255));
    palette.setColor(QPalette::Shadow, QColor(0, 0, 0, 80));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, withAlpha(label, 0.27F));
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, withAlpha(label, 0.1F));
    return palette;
}

Appearance appearanceOf(const QWidget& widget)
{
    const bool isDark = widget.palette().color(QPalette::WindowText).lightness() > 127;
    return isDark ? Appearance::dark : Appearance::light;
}

void installOn(QApplication& application)
{
    application.setStyle(new KelmStyle);
    application.setFont(interfaceFont(typeSize::body));
    QApplication::setPalette(palette(Appearance::dark));
    installAppearance([](Appearance appearance) { QApplication::setPalette(palette(appearance)); });
}

} // namespace kelm::style

namespace kelm {

namespace {

constexpr int scrollBarExtent = 12;
constexpr int shortestThumb = 28;
constexpr int tabVerticalSpace = 16;
/// The close cross: half its extent and the width of its lines.
constexpr qreal crossArm = 3;
constexpr qreal crossStroke = 1.4;

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

/// A rounded box, filled with the accent colour and ticked when it is checked.
void drawCheckBox(const QStyleOption& option, QPainter& painter)
{
    constexpr qreal radius = 3.5;
    const bool isChecked = option.state.testFlag(QStyle::State_On);
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    QColor line = option.palette.color(QPalette::Normal, QPalette::WindowText);
    line.setAlphaF(option.state.testFlag(QStyle::State_MouseOver) && isEnabled ? 0.5F : 0.3F);
    const QRectF box = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled ? 1 : 0.4);
    painter.setPen(isChecked ? QPen(Qt::NoPen) : QPen(line, 1));
    painter.setBrush(option.palette.color(QPalette::Normal, isChecked ? QPalette::Highlight : QPalette::Base));
    painter.drawRoundedRect(isChecked ? QRectF(option.rect) : box, radius, radius);
    if (isChecked) {
        const auto at = [&](qreal x, qreal y) { return box.topLeft() + QPointF(box.width() * x, box.height() * y); };
        painter.setPen(QPen(Qt::white, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF{at(0.24, 0.53), at(0.43, 0.72), at(0.77, 0.3)});
    }
    painter.restore();
}

/// A small cross, on a round ground while the mouse is over it.
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

/// The label's colour, thinned: for grounds and lines that have to show on dark and light alike.
QColor tint(const QStyleOption& option, float alpha)
{
    QColor color = option.palette.color(QPalette::Normal, QPalette::WindowText);
    color.setAlphaF(alpha);
    return color;
}

/// The ground of a field with round corners, and the ring of one that is typed into; a field without a frame is its
/// text alone.
void drawField(const QStyleOptionFrame& option, QPainter& painter)
{
    if (option.lineWidth <= 0) {
        return;
    }
    constexpr qreal radius = style::radius::control;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(tint(option, 0.18F), 1));
    painter.setBrush(option.palette.color(QPalette::Base));
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        style::drawRing(painter, QRectF(option.rect), option.palette.color(QPalette::Normal, QPalette::Highlight),
                        radius);
    }
    painter.restore();
}

/// A hairline under the bar, which the selected tab interrupts with its ground.
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
        style::drawRing(painter, QRectF(option.rect).adjusted(0, 0, -1, 0),
                        option.palette.color(QPalette::Normal, QPalette::Highlight), 0);
    }
    painter.restore();
}

/// The labels of tabs that are not selected stand back.
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
    const QRectF box = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!option.features.testFlag(QStyleOptionButton::Flat) || isDown) {
        painter.setPen(QPen(tint(option, 0.15F), 1));
        painter.setBrush(option.palette.color(isDefault ? QPalette::Highlight : QPalette::Button));
        painter.drawRoundedRect(box, radius, radius);
    }
    if (isEnabled && (isDown || option.state.testFlag(QStyle::State_MouseOver))) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint(option, isDown ? 0.16F : 0.07F));
        painter.drawRoundedRect(box, radius, radius);
    }
    if (option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        style::drawRing(painter, QRectF(option.rect), option.palette.color(QPalette::Normal, QPalette::Highlight),
                        radius);
    }
    painter.restore();
}

/// Without arrows at the ends, the thumb runs along the whole bar.
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

} // namespace

KelmStyle::KelmStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void KelmStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const
{
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (element == CE_TabBarTabShape && tab != nullptr) {
        drawTab(*tab, *painter);
    } else if (element == CE_TabBarTabLabel && tab != nullptr) {
        const QStyleOptionTab label = tabLabelOption(*tab);
        QProxyStyle::drawControl(element, &label, painter, widget);
    } else if (element == CE_MenuBarItem && item != nullptr) {
        drawMenuBarItem(*item, *painter);
    } else if (element == CE_Splitter) {
        painter->fillRect(option->rect, tint(*option, 0.15F));
    } else if (element == CE_MenuItem && item != nullptr) {
        drawMenuItem(*item, *painter);
    } else if (element == CE_MenuBarEmptyArea) {
        painter->fillRect(option->rect, option->palette.window());
    } else if (element == CE_PushButtonBevel && button != nullptr) {
        drawPushButton(*button, *painter);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void KelmStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                   const QWidget* widget) const
{
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && slider != nullptr) {
        drawScrollBar(*slider, *painter, subControlRect(control, option, SC_ScrollBarSlider, widget));
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void KelmStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    if (element == PE_IndicatorTabClose) {
        drawCloseCross(*option, *painter);
        return;
    }
    if (element == PE_PanelMenu || element == PE_PanelTipLabel) {
        const auto role = element == PE_PanelMenu ? QPalette::Window : QPalette::ToolTipBase;
        painter->fillRect(option->rect, option->palette.color(role));
        painter->setPen(tint(*option, 0.18F));
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        return;
    }
    if (element == PE_FrameMenu) {
        return;
    }
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == PE_PanelLineEdit && frame != nullptr) {
        drawField(*frame, *painter);
        return;
    }
    if (element == PE_IndicatorCheckBox) {
        drawCheckBox(*option, *painter);
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

QRect KelmStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const
{
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && slider != nullptr) {
        return visualRect(option->direction, option->rect, scrollBarPart(*slider, part));
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QSize KelmStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                  const QWidget* widget) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type == CT_MenuItem && item != nullptr) {
        return menuItemSize(*item);
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

int KelmStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return scrollBarExtent;
    case PM_ScrollBarSliderMin:
        return shortestThumb;
    case PM_SplitterWidth:
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuVMargin:
        return 4;
    case PM_MenuHMargin:
        return 0;
    case PM_ToolTipLabelFrameWidth:
        return 5;
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabOverlap:
        return 0;
    case PM_TabBarTabVSpace:
        return tabVerticalSpace;
    case PM_ButtonIconSize:
    case PM_SmallIconSize:
        return 16;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int KelmStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returned) const
{
    switch (hint) {
    case SH_ScrollBar_Transient:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
        return 0;
    case SH_ToolTip_WakeUpDelay:
        return 500;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

void KelmStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QScrollBar*>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
        widget->setAttribute(Qt::WA_Hover);
    }
}

} // namespace kelm
