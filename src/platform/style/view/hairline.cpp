#include "platform/style/view/hairline.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

QRectF onPixels(const QRectF& box)
{
    return {QPointF(std::round(box.left()), std::round(box.top())),
            QPointF(std::round(box.right()), std::round(box.bottom()))};
}

} // namespace

qreal hairlineWidth(const QPainter& painter)
{
    const qreal scale = std::sqrt(std::abs(painter.deviceTransform().determinant()));
    // One and a half are one: a line of two beside text of that size is heavy.
    return scale > 0 ? std::max<qreal>(1, std::ceil(scale - 0.5)) / scale : 1;
}

Hairline hairline(const QPainter& painter, const QRectF& box)
{
    const QTransform toDevice = painter.deviceTransform();
    const qreal width = hairlineWidth(painter);
    const bool isUpright = toDevice.type() <= QTransform::TxScale;
    const QRectF edges = isUpright ? toDevice.inverted().mapRect(onPixels(toDevice.mapRect(box))) : box;
    return {edges.adjusted(width / 2, width / 2, -width / 2, -width / 2), width};
}

} // namespace kelm
