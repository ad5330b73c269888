// Rectangles that are rounded at some corners only.
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace kelm {

/// A set of corners.
struct RectCorner
{
    int rawValue = 0;

    static const RectCorner topLeft;
    static const RectCorner topRight;
    static const RectCorner bottomLeft;
    static const RectCorner bottomRight;

    constexpr bool contains(RectCorner corners) const { return (rawValue & corners.rawValue) == corners.rawValue; }
    constexpr RectCorner operator|(RectCorner other) const { return {rawValue | other.rawValue}; }
    constexpr bool operator==(const RectCorner&) const = default;
};

inline constexpr RectCorner RectCorner::topLeft{1};
inline constexpr RectCorner RectCorner::topRight{2};
inline constexpr RectCorner RectCorner::bottomLeft{4};
inline constexpr RectCorner RectCorner::bottomRight{8};

/// A rectangle with a quarter circle at each of the named corners; the others are square.
struct SelectiveRoundedShape
{
    /// In points; at most half of each side is taken.
    qreal radius = 0;
    RectCorner corners;

    QPainterPath path(const QRectF& rectangle) const;
};

} // namespace kelm
