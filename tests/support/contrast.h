// How well one colour stands out from another.
#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace kelm::test {

/// The light that a colour gives, from 0 to 1, as the guidelines for accessible content count it.
inline double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// From 1, which is no difference, to 21, which is black on white. Both colours are opaque.
inline double contrast(const QColor& a, const QColor& b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace kelm::test
