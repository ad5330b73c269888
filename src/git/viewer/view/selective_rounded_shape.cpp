#include "git/viewer/view/selective_rounded_shape.h"

#include <algorithm>

namespace kelm {

QPainterPath SelectiveRoundedShape::path(const QRectF& rectangle) const
{
    const qreal most = std::min({radius, rectangle.width() / 2, rectangle.height() / 2});
    const auto radiusOf = [&](RectCorner corner) { return corners.contains(corner) ? most : 0; };
    const qreal topLeft = radiusOf(RectCorner::topLeft);
    const qreal topRight = radiusOf(RectCorner::topRight);
    const qreal bottomLeft = radiusOf(RectCorner::bottomLeft);
    const qreal bottomRight = radiusOf(RectCorner::bottomRight);
    const qreal left = rectangle.left();
    const qreal top = rectangle.top();
    const qreal right = left + rectangle.width();
    const qreal bottom = top + rectangle.height();

    QPainterPath path(QPointF(left + topLeft, top));
    path.lineTo(right - topRight, top);
    path.arcTo(right - 2 * topRight, top, 2 * topRight, 2 * topRight, 90, -90);
    path.lineTo(right, bottom - bottomRight);
    path.arcTo(right - 2 * bottomRight, bottom - 2 * bottomRight, 2 * bottomRight, 2 * bottomRight, 0, -90);
    path.lineTo(left + bottomLeft, bottom);
    path.arcTo(left, bottom - 2 * bottomLeft, 2 * bottomLeft, 2 * bottomLeft, 270, -90);
    path.lineTo(left, top + topLeft);
    path.arcTo(left, top, 2 * topLeft, 2 * topLeft, 180, -90);
    path.closeSubpath();
    return path;
}

} // namespace kelm
