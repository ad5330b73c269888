#include "platform/style/view/style.h"

#include "platform/desktop/named_colors.h"
#include "platform/style/view/control_painter.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/input_painter.h"
#include "platform/style/view/menu_painter.h"
#include "platform/style/view/motion.h"
#include "platform/style/view/standard_icons.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSlider>
#include <QStyleFactory>
#include <QStyleOptionComboBox>
#include <QStyleOptionSlider>
#include <QTextEdit>
#include <QToolButton>
#include <QToolTip>

namespace kelm::style {

namespace {

QColor withAlpha(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

/// The system's font where a desktop has chosen one. What the font matcher falls back on without a desktop is made for
/// documents, so a face made for screens goes before it where it is installed.
QStringList latinFamilies()
{
    const QString system = QFontInfo(QFontDatabase::systemFont(QFontDatabase::GeneralFont)).family();
    QStringList families;
    if (system.isEmpty() || system.startsWith(QLatin1String("DejaVu"))) {
        families.append(QStringLiteral("Inter"));
    }
    families.append(system);
    return families;
}

/// The families for Korean, those first whose strokes are as wide as the Latin ones beside them. In thousandths of the
/// size, Latin has 85 where it is regular and 130 semibold; of these families the first has 83 and 133, the second 86
/// and 124, and the last, which is made for print, 69 and 115. The first is also of the one format, as Latin is, in
/// which small letters are drawn stronger than their outlines.
const QStringList& interfaceFamilies()
{
    static const QStringList families =
        latinFamilies() + QStringList{QStringLiteral("Noto Sans CJK KR"), QStringLiteral("NanumBarunGothic"),
                                      QStringLiteral("NanumGothic"), QStringLiteral("Noto Color Emoji")};
    return families;
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
    QFont font(interfaceFamilies());
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

void drawFocusRing(QPainter& painter, const QRectF& box, qreal cornerRadius, const QWidget& widget)
{
    kelm::drawFocusRing(painter, box, widget.palette().color(QPalette::Active, QPalette::Link), cornerRadius);
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
    palette.setColor(QPalette::PlaceholderText, withAlpha(label, 0.6F));
    palette.setColor(QPalette::Highlight, accentGround);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent);
    // Every role, whether it is drawn or not: what is left out is the desktop's, which may be of the other appearance.
    palette.setColor(QPalette::LinkVisited, systemColor(SystemColor::purple, appearance));
    palette.setColor(QPalette::Midlight, isDark ? QColor(75, 75, 75) : QColor(228, 228, 228));
    palette.setColor(QPalette::Mid, isDark ? QColor(70, 70, 70) : QColor(200, 200, 200));
    palette.setColor(QPalette::Dark, isDark ? QColor(24, 24, 24) : QColor(170, 170, 170));
    palette.setColor(QPalette::Light, isDark ? QColor(80, 80, 80) : QColor(255, 255, 255));
    palette.setColor(QPalette::Shadow, QColor(0, 0, 0, 80));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, withAlpha(label, 0.42F));
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, withAlpha(label, 0.1F));
    return palette;
}

Appearance appearanceOf(const QWidget& widget)
{
    const bool isDark = widget.palette().color(QPalette::WindowText).lightness() > 127;
    return isDark ? Appearance::dark : Appearance::light;
}

namespace {

/// Of tooltips as well, for which a desktop may have colours of its own.
void setPaletteOfAll(Appearance appearance)
{
    const QPalette colors = palette(appearance);
    QApplication::setPalette(colors);
    QToolTip::setPalette(colors);
}

} // namespace

void installOn(QApplication& application)
{
    application.setStyle(new KelmStyle);
    application.setFont(interfaceFont(typeSize::body));
    setPaletteOfAll(Appearance::dark);
    installAppearance(setPaletteOfAll);
}

} // namespace kelm::style

namespace kelm {

namespace {

constexpr int scrollBarExtent = 12;
constexpr int sliderExtent = 18;
/// Beside the text of a field, whose corners are round.
constexpr int fieldMargin = 4;
constexpr int tabVerticalSpace = 16;
constexpr int messageBoxMargin = 20;

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
    } else if (element == CE_PushButtonLabel && button != nullptr) {
        const QStyleOptionButton label = pushButtonLabelOption(*button);
        QProxyStyle::drawControl(element, &label, painter, widget);
    } else if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
               element == CE_ComboBoxLabel && box != nullptr) {
        drawComboBoxLabel(*box, *painter);
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
    if (control == CC_Slider && slider != nullptr && slider->tickPosition == QSlider::NoTicks) {
        drawSlider(*slider, *painter);
        return;
    }
    const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control == CC_ComboBox && box != nullptr) {
        drawComboBox(*box, *painter);
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
    const bool isTextField =
        qobject_cast<const QPlainTextEdit*>(widget) != nullptr || qobject_cast<const QTextEdit*>(widget) != nullptr;
    if (element == PE_Frame && isTextField) {
        drawTextFieldFrame(*option, *painter);
        return;
    }
    if (element == PE_IndicatorCheckBox) {
        drawCheckBox(*option, *painter);
        return;
    }
    if (element == PE_IndicatorRadioButton) {
        drawRadioButton(*option, *painter);
        return;
    }
    if (element == PE_PanelButtonTool) {
        drawToolButtonGround(*option, *painter);
        return;
    }
    if (element == PE_FrameFocusRect) {
        drawFocusRing(*painter, QRectF(option->rect), option->palette.color(QPalette::Normal, QPalette::Link),
                      style::radius::chip);
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
    if (control == CC_Slider && slider != nullptr && slider->tickPosition == QSlider::NoTicks) {
        return sliderPart(*slider, part);
    }
    const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control == CC_ComboBox && box != nullptr && part != SC_ComboBoxListBoxPopup) {
        return comboBoxPart(*box, part);
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
    if (type == CT_ComboBox) {
        return comboBoxSize(contents);
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

int KelmStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return scrollBarExtent;
    case PM_SliderLength:
    case PM_SliderControlThickness:
    case PM_SliderThickness:
        return sliderExtent;
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
    case PM_MessageBoxIconSize:
        return 40;
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
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    case SH_MenuBar_AltKeyNavigation:
        return 1;
    case SH_Widget_Animation_Duration:
        return style::isAnimated() ? QProxyStyle::styleHint(hint, option, widget, returned) : 0;
    case SH_ToolTip_WakeUpDelay:
        return 500;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

QIcon KelmStyle::standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const
{
    const QIcon symbol = standardSymbol(picture, option);
    return symbol.isNull() ? QProxyStyle::standardIcon(picture, option, widget) : symbol;
}

QPixmap KelmStyle::standardPixmap(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const
{
    const QIcon symbol = standardSymbol(picture, option);
    const int size = pixelMetric(PM_LargeIconSize, option, widget);
    return symbol.isNull() ? QProxyStyle::standardPixmap(picture, option, widget) : symbol.pixmap(size);
}

void KelmStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QScrollBar*>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
        widget->setAttribute(Qt::WA_Hover);
    }
    if (qobject_cast<QMessageBox*>(widget) != nullptr && widget->layout() != nullptr) {
        widget->layout()->setContentsMargins(messageBoxMargin, messageBoxMargin, messageBoxMargin, messageBoxMargin);
    }
    if (auto* field = qobject_cast<QLineEdit*>(widget);
        field != nullptr && field->hasFrame() && field->textMargins().isNull()) {
        field->setTextMargins(fieldMargin, 0, fieldMargin, 0);
    }
    if (qobject_cast<QSlider*>(widget) != nullptr || qobject_cast<QToolButton*>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_Hover);
    }
}

} // namespace kelm
