// The bars of a minimap, painted once and kept up with the text.
#pragma once

#include "editor/minimap/minimap_bars.h"

#include <QImage>

#include <vector>

namespace kelm {

/// An image of the bars alone, on clear ground. An edit that leaves the number of lines paints the pixels of its lines
/// anew; another number of lines moves all bars, as does another size or theme.
class BarLayer
{
public:
    /// The text was edited, and is now as given; the part of the map, in points, that has to be painted again.
    QRectF textEdited(const TextStorage& storage, const TextEdit& edit);

    /// The image for these, of the map's size.
    const QImage& image(const TextStorage& storage, const MinimapGeometry& geometry, const EditorTheme& theme,
                        qreal pixelRatio);
    void forget() { pixels_.clear(); }

private:
    struct Pixel
    {
        MinimapPixel lines;
        std::vector<MinimapBar> bars;
        bool isStale = true;
    };

    void paintPixels(std::size_t first, std::size_t end);
    QRectF placeOf(std::size_t first, std::size_t end) const;

    std::vector<Pixel> pixels_;
    MinimapGeometry geometry_;
    qreal pixelRatio_ = 1;
    EditorTheme theme_ = EditorTheme::monokai();
    QImage image_;
};

} // namespace kelm
