// Paints a minimap.
#pragma once

#include "editor/minimap/view/bar_layer.h"

#include <QRectF>

#include <optional>
#include <vector>

class QPainter;
class QWidget;

namespace kelm {

/// Paints bars, one over the other, with their edges smoothed. The painter's origin is the map's top left.
void paintMinimapBars(QPainter& painter, const std::vector<MinimapBar>& bars, const MinimapGeometry& geometry);

/// What a map shows.
struct MinimapPicture
{
    /// The text; none is drawn where it is gone.
    const TextStorage* storage;
    /// The bars of that text.
    BarLayer& bars;
    const EditorTheme& theme;
    /// The part of the page on screen, in the text's points.
    QRectF visibleRect;
    /// The line, from 1, that is marked.
    std::optional<qsizetype> cursorLine;
};

/// Where everything stands in a map of the widget's size.
MinimapGeometry minimapGeometry(const QWidget& map, const TextStorage* storage);

/// Paints the whole map: ground, box over what is on screen, bars, edges. False where very many lines have still to be
/// looked at, and it is to be painted again soon.
[[nodiscard]] bool paintMinimap(QPainter& painter, const QWidget& map, const MinimapPicture& picture);

/// Gives the widget the theme's background.
void applyMinimapBackground(QWidget& map, const EditorTheme& theme);

} // namespace kelm
