#include "editor/minimap/view/minimap_painter.h"

#include <QImage>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace kelm {

namespace {

/// How far the strip's colour is taken from the text's background.
constexpr qreal tintFraction = 0.04;

QColor blended(const QColor& color, qreal fraction, const QColor& with)
{
    const auto mix = [fraction](float from, float to) { return static_cast<float>(from + (to - from) * fraction); };
    return QColor::fromRgbF(mix(color.redF(), with.redF()), mix(color.greenF(), with.greenF()),
                            mix(color.blueF(), with.blueF()), mix(color.alphaF(), with.alphaF()));
}

QColor withAlpha(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

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
    return static_cast<uint>(qRound(std::clamp<qreal>(covered, 0, 1) * 255));
}

/// Lays a premultiplied colour over the pixels from `first` up to `last`: as `scaled` does it, but in steps of 16 bits
/// for one channel after the other, which the compiler makes into steps for several pixels at once.
void blendPixels(QRgb* pixels, int first, int last, QRgb color)
{
    std::array<uchar, sizeof(QRgb)> over;
    std::memcpy(over.data(), &color, sizeof color);
    const auto rest = static_cast<quint16>(255 - qAlpha(color));
    auto* under = reinterpret_cast<uchar*>(pixels + first);
    auto* const end = reinterpret_cast<uchar*>(pixels + last);
    for (; under < end; under += over.size()) {
        for (std::size_t channel = 0; channel < over.size(); ++channel) {
            const auto product = static_cast<quint16>(under[channel] * rest);
            const auto rounded = static_cast<quint16>(product + (product >> 8) + 128);
            under[channel] = static_cast<uchar>(over[channel] + (rounded >> 8));
        }
    }
}

/// Lays a premultiplied colour over the pixels between two edges of a row.
void blendRow(QRgb* pixels, int columns, qreal left, qreal right, QRgb color)
{
    const int first = std::clamp(static_cast<int>(std::floor(left)), 0, columns);
    const int last = std::clamp(static_cast<int>(std::ceil(right)), first, columns);
    const int firstWhole = std::clamp(static_cast<int>(std::ceil(left)), first, last);
    const int lastWhole = std::clamp(static_cast<int>(std::floor(right)), firstWhole, last);
    for (int x = first; x < firstWhole; ++x) {
        blendPixels(pixels, x, x + 1, scaled(color, coverage(left, right, x)));
    }
    blendPixels(pixels, firstWhole, lastWhole, color);
    for (int x = lastWhole; x < last; ++x) {
        blendPixels(pixels, x, x + 1, scaled(color, coverage(left, right, x)));
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
        const qreal start = left + bar.hiddenWidth * pixelRatio;
        const int first = static_cast<int>(std::floor(top));
        const int last = std::min(image.height(), static_cast<int>(std::ceil(top + height)));
        for (int y = first; y < last; ++y) {
            blendRow(reinterpret_cast<QRgb*>(image.scanLine(y)), image.width(), start, left + bar.width * pixelRatio,
                     scaled(color, coverage(top, top + height, y)));
        }
    }
    painter.drawImage(QPointF(0, 0), image);
}

MinimapGeometry minimapGeometry(const QWidget& map, const TextStorage* storage)
{
    const qsizetype lines = storage != nullptr ? minimapLineCount(*storage) : 0;
    return {static_cast<qreal>(map.width()), static_cast<qreal>(map.height()), lines};
}

void paintMinimap(QPainter& painter, const QWidget& map, const MinimapPicture& picture)
{
    const EditorTheme& theme = picture.theme;
    const QRectF leftEdge(0, 0, 1, map.height());
    painter.fillRect(map.rect(),
                     blended(theme.backgroundColor.toColor(), tintFraction, theme.isDark ? Qt::white : Qt::black));
    painter.fillRect(leftEdge, withAlpha(theme.lineNumberColor.toColor(), 0.4F));
    const MinimapGeometry geometry = minimapGeometry(map, picture.storage);
    if (geometry.isDrawable()) {
        const QColor box = theme.isDark ? QColor::fromRgbF(1, 1, 1, 0.1F) : QColor::fromRgbF(0, 0, 0, 0.08F);
        const qreal pixelRatio = map.devicePixelRatioF();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(geometry.viewportBox(picture.visibleRect), box);
        paintMinimapBars(painter, minimapBars(*picture.storage, geometry, theme, pixelRatio), geometry, pixelRatio);
        if (picture.cursorLine && *picture.cursorLine >= 1 && *picture.cursorLine <= geometry.lineCount) {
            const QRectF mark(0, geometry.barY(*picture.cursorLine - 1), geometry.width, geometry.barHeight());
            painter.fillRect(mark, withAlpha(theme.cursorColor.toColor(), 0.5F));
        }
        painter.fillRect(leftEdge, withAlpha(QColor(128, 128, 128), 0.3F));
    }
    // The layer's border lies over everything.
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.3F), 1));
    painter.drawRect(QRectF(map.rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

void applyMinimapBackground(QWidget& map, const EditorTheme& theme)
{
    QPalette colors = map.palette();
    colors.setColor(QPalette::Window, theme.backgroundColor.toColor());
    map.setPalette(colors);
}

} // namespace kelm
