#include "editor/view/minimap_painter.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

/// All four channels of a pixel times `factor` / 255, rounded, two channels at a time.
QRgb scaled(QRgb pixel, uint factor)
{
    constexpr uint twoChannels = 0x00ff00ff;
    constexpr uint half = 0x00800080;
    uint low = (pixel & twoChannels) * factor;
    low = ((low + ((low >> 8) & twoChannels) + half) >> 8) & twoChannels;
    uint high = ((pixel >> 8) & twoChannels) * factor;
    high = (high + ((high >> 8) & twoChannels) + half) & ~twoChannels;
    return high | low;
}

/// How much of a pixel's extent from `at` to `at + 1` lies between two edges, in 255 parts.
uint coverage(qreal from, qreal to, int at)
{
    const qreal covered = std::min<qreal>(to, at + 1) - std::max<qreal>(from, at);
    return static_cast<uint>(std::lround(std::clamp<qreal>(covered, 0, 1) * 255));
}

/// Lays a premultiplied colour over the pixels between two edges of a row.
void blendRow(QRgb* pixels, int columns, qreal left, qreal right, QRgb color)
{
    const int first = std::max(0, static_cast<int>(std::floor(left)));
    const int last = std::min(columns, static_cast<int>(std::ceil(right)));
    for (int x = first; x < last; ++x) {
        const bool isEdge = x < left || x + 1 > right;
        const QRgb over = isEdge ? scaled(color, coverage(left, right, x)) : color;
        pixels[x] = over + scaled(pixels[x], 255 - static_cast<uint>(qAlpha(over)));
    }
}

} // namespace

void paintMinimapBars(QPainter& painter, const std::vector<MinimapBar>& bars, const MinimapGeometry& geometry,
                      qreal pixelRatio)
{
    QImage image((QSizeF(geometry.width, geometry.height) * pixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setDevicePixelRatio(pixelRatio);
    const qreal height = geometry.barHeight() * pixelRatio;
    const qreal left = MinimapGeometry::barLeft * pixelRatio;
    for (const MinimapBar& bar : bars) {
        const qreal top = bar.y * pixelRatio;
        const QRgb color = qPremultiply(bar.color.rgba());
        const int first = static_cast<int>(std::floor(top));
        const int last = std::min(image.height(), static_cast<int>(std::ceil(top + height)));
        for (int y = first; y < last; ++y) {
            blendRow(reinterpret_cast<QRgb*>(image.scanLine(y)), image.width(), left, left + bar.width * pixelRatio,
                     scaled(color, coverage(top, top + height, y)));
        }
    }
    painter.drawImage(QPointF(0, 0), image);
}

} // namespace kelm
