// Colours by their part in the picture.
#pragma once

#include "platform/desktop/named_colors.h"

#include <variant>

class QWidget;

namespace kelm {

/// A colour that is settled when it is painted: one that follows the appearance or a fixed one, at an opacity.
class Tint
{
public:
    constexpr Tint(SystemColor color) : color_(color) {}
    Tint(const QColor& color) : color_(color) {}

    static Tint primary() { return SystemColor::primaryLabel; }
    static Tint secondary() { return SystemColor::secondaryLabel; }
    static Tint accent() { return SystemColor::accent; }
    static Tint clear() { return QColor(Qt::transparent); }

    /// The same colour at an opacity from 0 to 1; the opacities of the label colours are multiplied with it.
    Tint at(double opacity) const;

    QColor in(Appearance appearance) const;
    /// The colour in the appearance that a widget's palette shows.
    QColor on(const QWidget& widget) const;

    friend bool operator==(const Tint& a, const Tint& b) = default;

private:
    std::variant<SystemColor, QColor> color_;
    double opacity_ = 1;
};

} // namespace kelm
