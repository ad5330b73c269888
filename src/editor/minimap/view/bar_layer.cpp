#include "editor/minimap/view/bar_layer.h"

#include "editor/minimap/view/minimap_painter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

/// How many lines are looked at for one image; some two milliseconds.
constexpr qsizetype mostLinesAtOnce = 1 << 15;

} // namespace

void BarLayer::forget()
{
    image_ = {};
    isOutdated_ = true;
}

QRectF BarLayer::textEdited(const TextStorage& storage, const TextEdit& edit)
{
    const QRectF all(0, 0, geometry_.width, geometry_.height);
    const TextTree& text = storage.tree();
    if (isOutdated_ || text.lineFeeds() + 1 != geometry_.lineCount) {
        isOutdated_ = true;
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
    std::for_each(first, end, [this](Pixel& pixel) {
        stale_ += pixel.isStale ? 0 : 1;
        pixel.isStale = true;
    });
    return placeOf(static_cast<std::size_t>(first - pixels_.begin()), static_cast<std::size_t>(end - pixels_.begin()));
}

const QImage& BarLayer::image(const TextStorage& storage, const MinimapGeometry& geometry, const EditorTheme& theme,
                              qreal pixelRatio)
{
    if (isOutdated_ || geometry != geometry_ || pixelRatio != pixelRatio_ || !(theme == theme_)) {
        layOut(geometry, theme, pixelRatio);
    }
    paintStale(storage.tree());
    return image_;
}

void BarLayer::layOut(const MinimapGeometry& geometry, const EditorTheme& theme, qreal pixelRatio)
{
    // Where bars begin in each pixel, each is painted over in its turn.
    const auto isDense = [](const MinimapGeometry& each, qreal ratio) {
        return each.scale() * MinimapGeometry::lineHeight * ratio <= 1;
    };
    const QSize size = (QSizeF(geometry.width, geometry.height) * pixelRatio).toSize();
    const bool keepsImage = image_.size() == size && pixelRatio == pixelRatio_ &&
                            geometry.lineCount > mostLinesAtOnce && isDense(geometry, pixelRatio) &&
                            isDense(geometry_, pixelRatio);
    geometry_ = geometry;
    theme_ = theme;
    pixelRatio_ = pixelRatio;
    if (!keepsImage) {
        image_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
        image_.setDevicePixelRatio(pixelRatio);
        image_.fill(Qt::transparent);
    }
    pixels_.clear();
    for (const MinimapPixel lines : minimapPixels(geometry, pixelRatio)) {
        pixels_.push_back({lines, {}, true});
    }
    stale_ = pixels_.size();
    next_ = next_ < pixels_.size() ? next_ : 0;
    isOutdated_ = false;
}

void BarLayer::paintStale(const TextTree& text)
{
    for (qsizetype looked = 0; stale_ > 0 && looked < mostLinesAtOnce;) {
        const std::size_t first = nextStale();
        std::size_t end = first;
        for (; end < pixels_.size() && pixels_[end].isStale && looked < mostLinesAtOnce; ++end) {
            Pixel& pixel = pixels_[end];
            pixel.bars = minimapBarsIn(text, pixel.lines, geometry_, theme_);
            pixel.isStale = false;
            --stale_;
            looked += pixel.lines.end - pixel.lines.first;
        }
        paintPixels(first, end);
        next_ = end < pixels_.size() ? end : 0;
    }
}

std::size_t BarLayer::nextStale() const
{
    const auto isStale = [](const Pixel& pixel) { return pixel.isStale; };
    const auto from = pixels_.begin() + static_cast<std::ptrdiff_t>(next_);
    const auto behind = std::find_if(from, pixels_.end(), isStale);
    const auto found = behind != pixels_.end() ? behind : std::find_if(pixels_.begin(), from, isStale);
    return static_cast<std::size_t>(found - pixels_.begin());
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
