#include "platform/style/view/tint.h"

#include "platform/style/view/style.h"

namespace kelm {

Tint Tint::at(double opacity) const
{
    Tint tint = *this;
    tint.opacity_ *= opacity;
    return tint;
}

QColor Tint::in(Appearance appearance) const
{
    const auto* const system = std::get_if<SystemColor>(&color_);
    QColor color = system != nullptr ? systemColor(*system, appearance) : std::get<QColor>(color_);
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity_));
    return color;
}

QColor Tint::on(const QWidget& widget) const
{
    return in(style::appearanceOf(widget));
}

} // namespace kelm
