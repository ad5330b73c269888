// The bars of a minimap: one for each line of a text.
#pragma once

#include "editor/themes/editor_theme.h"
#include "text/storage/text_storage.h"

#include <QColor>
#include <QStringView>

#include <vector>

namespace kelm {

/// One line's bar, in points from the top left of the map. Bars begin at x 2.
struct MinimapBar
{
    qreal y = 0;
    qreal width = 0;
    QColor color;
    /// How much of the width, from the left, lies hidden under other bars and need not be painted.
    qreal hiddenWidth = 0;
};

/// Where everything in a minimap stands, from its size and the number of lines.
struct MinimapGeometry
{
    /// The height of a line at scale 1, and the width of a character; points.
    static constexpr qreal lineHeight = 3.0;
    static constexpr qreal charWidth = 1.2;
    /// The height of a row of the text that the map stands beside.
    static constexpr qreal textLineHeight = 17.0;
    static constexpr qreal topMargin = 5.0;
    static constexpr qreal barLeft = 2.0;

    qreal width = 0;
    qreal height = 0;
    qsizetype lineCount = 0;

    /// A map of 10 points or less has no room for anything.
    bool isDrawable() const { return lineCount > 0 && height > 10; }
    /// 1 for a short text; less where all lines have to be squeezed into the height.
    qreal scale() const;
    qreal barHeight() const;
    qreal barY(qsizetype line) const { return scale() * static_cast<qreal>(line) * lineHeight + topMargin; }
    qreal longestBar() const { return width - 4; }
    /// The box over what is on screen, from the text view's visible rectangle in points.
    QRectF viewportBox(const QRectF& visibleRect) const;
    /// The line at a y, from 1 to the number of lines.
    qsizetype lineAt(qreal y) const;

    friend bool operator==(const MinimapGeometry&, const MinimapGeometry&) = default;
};

/// The number of lines of a text that is split at its line feeds.
qsizetype minimapLineCount(const TextStorage& storage);

/// The tint of a line, told from a glance at its text; transparent for a blank one.
QColor minimapLineColor(QStringView line, const EditorTheme& theme);

/// The tint of one line of a text, given without its line feed. Looks at the whole of the line only where it must.
QColor minimapLineColor(const TextTree& text, TextRange line, const EditorTheme& theme);

/// The lines from `first` to before `end`, whose bars begin within one pixel.
struct MinimapPixel
{
    qsizetype first = 0;
    qsizetype end = 0;
};

/// The pixels of a map in which bars begin, from the top down to its height. `pixelRatio` is the number of pixels in a
/// point.
std::vector<MinimapPixel> minimapPixels(const MinimapGeometry& geometry, qreal pixelRatio);

/// The bars of one pixel. Where very many lines share it, those that others of at least their length hide are left out.
std::vector<MinimapBar> minimapBarsIn(const TextTree& text, MinimapPixel pixel, const MinimapGeometry& geometry,
                                      const EditorTheme& theme);

/// The bars of all lines from the top down to the map's height.
std::vector<MinimapBar> minimapBars(const TextStorage& storage, const MinimapGeometry& geometry,
                                    const EditorTheme& theme, qreal pixelRatio);

} // namespace kelm
