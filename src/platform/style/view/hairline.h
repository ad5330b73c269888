// Thin lines that lie on whole pixels.
#pragma once

#include <QRectF>

class QPainter;

namespace kelm {

/// The middle of a line along the inside of a box, and how wide to draw it.
struct Hairline
{
    QRectF box;
    qreal width = 1;
};

/// The outline of `box`, a point wide, in whole device pixels: at one and a half pixels to a point an edge would be
/// half a pixel, and its line blurred. A turned painter gets the box as it is.
Hairline hairline(const QPainter& painter, const QRectF& box);

/// A point in whole device pixels of the painter, at least one, in points.
qreal hairlineWidth(const QPainter& painter);

} // namespace kelm
