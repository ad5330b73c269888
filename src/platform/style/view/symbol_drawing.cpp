#include "platform/style/view/symbol_drawing.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <cmath>

namespace kelm {

namespace {

/// The files are drawn on a square of so many units a side, with strokes so wide.
constexpr qreal grid = 24;
constexpr qreal designedStroke = 1.75;

/// How wide to draw strokes, in units of the grid, on so many pixels. A small symbol would be pale with the strokes of
/// the design, as they do not fill a pixel there, and a large one heavy beside the text that it stands with.
qreal strokeWidth(qreal pointSize, qreal pixels)
{
    constexpr qreal narrowest = 1.25;
    constexpr qreal largestAsDesigned = 24;
    constexpr qreal sizeOfNarrowest = 60;
    // Of a pixel or less, the toolkit draws hair lines of its own, whose slopes are pale.
    constexpr qreal leastPixels = 1.04;
    constexpr qreal widest = 3.5;
    const qreal growth =
        std::clamp((pointSize - largestAsDesigned) / (sizeOfNarrowest - largestAsDesigned), qreal(0), qreal(1));
    const qreal stroke = designedStroke - growth * (designedStroke - narrowest);
    return std::max(stroke, std::min(grid / pixels * leastPixels, widest));
}

QByteArray withStroke(QByteArray drawing, qreal stroke)
{
    return drawing.replace("stroke-width=\"1.75\"", "stroke-width=\"" + QByteArray::number(stroke) + '"');
}

QImage drawIn(QSvgRenderer& renderer, int extent, const QRectF& box)
{
    QImage image(extent, extent, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, box);
    return image;
}

/// How much of the ink lies in pixels that are covered whole, from 0 to 1: what has edges between pixels has less.
qreal sharpnessOf(const QImage& image)
{
    qint64 ink = 0;
    qint64 squares = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const qint64 alpha = qAlpha(line[x]);
            ink += alpha;
            squares += alpha * alpha;
        }
    }
    return ink == 0 ? 0 : static_cast<qreal>(squares) / static_cast<qreal>(ink * 255);
}

/// The part of its square that a drawing needs, with the square's side as the unit.
QRectF boundsOf(QSvgRenderer& renderer)
{
    constexpr int extent = 72;
    const QImage image = drawIn(renderer, extent, QRectF(0, 0, extent, extent));
    QRect bounds;
    for (int y = 0; y < extent; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < extent; ++x) {
            if (qAlpha(line[x]) > 0) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return QTransform::fromScale(1.0 / extent, 1.0 / extent).mapRect(QRectF(bounds));
}

/// `extent` and the sizes beside it in which the outlines, which go from 3 to 21 on the grid, are whole pixels apart.
QVarLengthArray<qreal, 3> sizesNear(int extent)
{
    constexpr qreal step = grid / (21 - 3);
    // With less, what stands close runs together.
    constexpr qreal least = 0.92;
    const qreal smaller = std::floor(extent / step) * step;
    QVarLengthArray<qreal, 3> sizes{static_cast<qreal>(extent)};
    for (const qreal size : {smaller, smaller + step}) {
        if (size >= extent * least && size != extent) {
            sizes.append(size);
        }
    }
    return sizes;
}

} // namespace

QImage drawSymbol(const QByteArray& drawing, qreal pointSize, int extent)
{
    // Where strokes are wide, an edge between pixels does not show.
    constexpr int largestFitted = 20;
    constexpr std::array shifts{QPointF(0, 0), QPointF(0.5, 0.5), QPointF(0.5, 0), QPointF(0, 0.5)};
    // What is not as it was drawn has to be worth it.
    constexpr qreal gainOfShift = 1.02;
    constexpr qreal gainOfSize = 1.04;
    if (drawing.isEmpty()) {
        return {};
    }
    QSvgRenderer designed(withStroke(drawing, strokeWidth(pointSize, extent)));
    if (!designed.isValid()) {
        return {};
    }
    const QRectF paper(0, 0, extent, extent);
    QImage best = drawIn(designed, extent, paper);
    if (extent > largestFitted) {
        return best;
    }
    // As exact as the bounds are.
    constexpr qreal slack = 0.15;
    const QRectF room = paper.adjusted(-slack, -slack, slack, slack);
    const QRectF bounds = boundsOf(designed);
    qreal sharpest = sharpnessOf(best);
    for (const qreal size : sizesNear(extent)) {
        QSvgRenderer renderer(withStroke(drawing, strokeWidth(pointSize, size)));
        qreal least = sharpest * (size == extent ? gainOfShift : gainOfSize);
        for (const QPointF& shift : shifts) {
            const QRectF box(QPointF(extent - size, extent - size) / 2 + shift, QSizeF(size, size));
            const QRectF ink(box.topLeft() + bounds.topLeft() * size, bounds.size() * size);
            if (!room.contains(ink)) {
                continue;
            }
            QImage image = drawIn(renderer, extent, box);
            if (const qreal sharpness = sharpnessOf(image); sharpness > least) {
                least = sharpness;
                sharpest = sharpness;
                best = std::move(image);
            }
        }
    }
    return best;
}

} // namespace kelm
