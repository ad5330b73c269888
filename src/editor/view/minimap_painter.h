// Paints the bars of a minimap.
#pragma once

#include "editor/minimap/minimap_bars.h"

#include <vector>

class QPainter;

namespace kelm {

/// Paints bars, one over the other, with their edges smoothed: the same picture as one filled rectangle after the
/// other, in a fraction of the time. The painter's origin is the map's top left; `pixelRatio` its pixels in a point.
void paintMinimapBars(QPainter& painter, const std::vector<MinimapBar>& bars, const MinimapGeometry& geometry,
                      qreal pixelRatio);

} // namespace kelm
