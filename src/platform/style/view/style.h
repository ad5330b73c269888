// The look of the program in one place: fonts, palettes and the drawing of controls.
#pragma once

#include "platform/desktop/appearance.h"

#include <QFont>
#include <QPalette>
#include <QProxyStyle>

class QApplication;
class QPainter;

namespace kelm::style {

/// The monospaced system font at a pixel size, with families behind it that cover Korean and emoji.
QFont monospaced(int pixelSize);

/// The interface's font at a pixel size. Korean beside Latin has its weight, as far as what is installed allows.
QFont interfaceFont(int pixelSize, QFont::Weight weight = QFont::Normal);

/// The sizes of the interface's type, in points.
namespace typeSize {
inline constexpr int largeTitle = 26;
inline constexpr int title = 20;
inline constexpr int headline = 13;
inline constexpr int body = 13;
inline constexpr int subheadline = 11;
inline constexpr int caption = 10;
} // namespace typeSize

/// Bold at the size of the body: what names a section.
inline QFont headlineFont()
{
    return interfaceFont(typeSize::headline, QFont::DemiBold);
}

/// The radii of corners, in points: of chips and hovered icons, of buttons and fields, of cards above the window.
namespace radius {
inline constexpr qreal chip = 4;
inline constexpr qreal control = 6;
inline constexpr qreal card = 10;
} // namespace radius

/// The opacities of the primary colour behind a control under the mouse, and of one that is held down.
inline constexpr double hoverOpacity = 0.08;
inline constexpr double pressedOpacity = 0.15;

/// Draws the ring of a control that has the keyboard, along the inner edge of `box`.
void drawFocusRing(QPainter& painter, const QRectF& box, qreal cornerRadius, const QWidget& widget);

/// The palette of all controls.
QPalette palette(Appearance appearance);

/// The appearance that a widget's palette shows.
Appearance appearanceOf(const QWidget& widget);

/// Gives the application its style, its font and a palette that follows the appearance that is set for it.
void installOn(QApplication& application);

} // namespace kelm::style

namespace kelm {

/// One style for all controls in both appearances: flat, with thin scroll bars that show a thumb only where there is
/// something to scroll, and a focus ring in the accent colour. A selected tab takes the ground of what it belongs to,
/// which is its bar's `Base` colour.
class KelmStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    KelmStyle();

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const override;
    QPixmap standardPixmap(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const override;
    void polish(QWidget* widget) override;
    using QProxyStyle::polish;
};

} // namespace kelm
