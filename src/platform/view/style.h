// The look of the program in one place: fonts, palettes and the drawing of controls.
#pragma once

#include "platform/appearance.h"

#include <QFont>
#include <QPalette>
#include <QProxyStyle>

class QApplication;

namespace kelm::style {

/// The monospaced system font at a pixel size, with families behind it that cover Korean and emoji.
QFont monospaced(int pixelSize);

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
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    void polish(QWidget* widget) override;
    using QProxyStyle::polish;
};

} // namespace kelm
