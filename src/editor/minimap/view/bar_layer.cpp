#include "editor/minimap/view/bar_layer.h"

#include "editor/minimap/view/minimap_painter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kelm {

QRectF BarLayer::textEdited(const TextStorage& storage, const TextEdit& edit)
{
    const QRectF all(0, 0, geometry_.width, geometry_.height);
    const TextTree& text = storage.tree();
    if (pixels_.empty() || text.lineFeeds() + 1 != geometry_.lineCount) {
        forget();
        return all;
    }
    const qsizetype firstLine = text.lineFeedsBefore(edit.range.location);
    const qsizetype lastLine = text.lineFeedsBefore(edit.newRange().end());
    const auto first = std::partition_point(pixels_.begin(), pixels_.end(),
                                            [=](const Pixel& pixel) { return pixel.lines.end <= firstLine; });
    const auto end =
        std::partition_point(first, pixels_.end(), [=](const Pixel& pixel) { return pixel.lines.first <= lastLine; });
    if (first == end) {
        return {};
    }
    std::for_each(first, end, [](Pixel& pixel) { pixel.isStale = true; });
    return placeOf(static_cast<std::size_t>(first - pixels_.begin()), static_cast<std::size_t>(end - pixels_.begin()));
}

const QImage& BarLayer::image(const TextStorage& storage, const MinimapGeometry& geometry, const EditorTheme& theme,
                              qreal pixelRatio)
{
    if (pixels_.empty() || geometry != geometry_ || pixelRatio != pixelRatio_ || !(theme == theme_)) {
        geometry_ = geometry;
        theme_ = theme;
        pixelRatio_ = pixelRatio;
        image_ = QImage((QSizeF(geometry.width, geometry.height) * pixelRatio).toSize(),
                        QImage::Format_ARGB32_Premultiplied);
        image_.setDevicePixelRatio(pixelRatio);
        image_.fill(Qt::transparent);
        pixels_.clear();
        for (const MinimapPixel lines : minimapPixels(geometry, pixelRatio)) {
            pixels_.push_back({lines, minimapBarsIn(storage.tree(), lines, geometry, theme), false});
        }
        paintPixels(0, pixels_.size());
        return image_;
    }
    for (std::size_t first = 0; first < pixels_.size();) {
        std::size_t end = first;
        for (; end < pixels_.size() && pixels_[end].isStale; ++end) {
            pixels_[end].bars = minimapBarsIn(storage.tree(), pixels_[end].lines, geometry, theme);
            pixels_[end].isStale = false;
        }
        if (end > first) {
            paintPixels(first, end);
        }
        first = end + 1;
    }
    return image_;
}

void BarLayer::paintPixels(std::size_t first, std::size_t end)
{
    QPainter painter(&image_);
    const QRectF place = placeOf(first, end);
    painter.setClipRect(place);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(place, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    // Those that reach into the place from above, and those below it that its last bars lie under.
    const auto reach = static_cast<std::size_t>(std::ceil(geometry_.barHeight() * pixelRatio_)) + 1;
    const std::size_t last = std::min(pixels_.size(), end + reach);
    for (std::size_t pixel = first > reach ? first - reach : 0; pixel < last; ++pixel) {
        paintMinimapBars(painter, pixels_[pixel].bars, geometry_);
    }
}

QRectF BarLayer::placeOf(std::size_t first, std::size_t end) const
{
    const qreal top = geometry_.barY(pixels_[first].lines.first);
    const qreal bottom = geometry_.barY(pixels_[end - 1].lines.end - 1) + geometry_.barHeight();
    // Whole pixels: the edges of bars are smoothed.
    const qreal firstPixel = std::floor(top * pixelRatio_);
    const qreal lastPixel = std::ceil(bottom * pixelRatio_);
    return {0, firstPixel / pixelRatio_, geometry_.width, (lastPixel - firstPixel) / pixelRatio_};
}

} // namespace kelm
