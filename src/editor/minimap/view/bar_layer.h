// The bars of a minimap, painted once and kept up with the text.
#pragma once

#include "editor/minimap/minimap_bars.h"

#include <QImage>

#include <vector>

namespace kelm {

/// An image of the bars alone, on clear ground. An edit that leaves the number of lines paints the pixels of its lines
/// anew; another number of lines moves all bars, as does another size or theme. Of very many lines some are looked at
/// each time the image is asked for, and the rest keeps the bars it had until then.
class BarLayer
{
public:
    /// The text was edited, and is now as given; the part of the map, in points, that has to be painted again.
    QRectF textEdited(const TextStorage& storage, const TextEdit& edit);

    /// The image for these, of the map's size.
    const QImage& image(const TextStorage& storage, const MinimapGeometry& geometry, const EditorTheme& theme,
                        qreal pixelRatio);
    /// Whether the image shows all lines as they are. Otherwise it is to be asked for again soon.
    bool isWhole() const { return !isOutdated_ && stale_ == 0; }
    void forget();

private:
    struct Pixel
    {
        MinimapPixel lines;
        std::vector<MinimapBar> bars;
        bool isStale = true;
    };

    void layOut(const MinimapGeometry& geometry, const EditorTheme& theme, qreal pixelRatio);
    void paintStale(const TextTree& text);
    std::size_t nextStale() const;
    void paintPixels(std::size_t first, std::size_t end);
    QRectF placeOf(std::size_t first, std::size_t end) const;

    std::vector<Pixel> pixels_;
    /// How many of them are stale, and with which to go on.
    std::size_t stale_ = 0;
    std::size_t next_ = 0;
    /// Whether the bars stand elsewhere by now.
    bool isOutdated_ = true;
    MinimapGeometry geometry_;
    qreal pixelRatio_ = 1;
    EditorTheme theme_ = EditorTheme::monokai();
    QImage image_;
};

} // namespace kelm
