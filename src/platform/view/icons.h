// The symbols of the interface, drawn in any size and colour.
#pragma once

#include <QColor>
#include <QStringList>

class QPainter;
class QRectF;

namespace kelm::icons {

/// The names of all symbols, sorted.
QStringList names();

/// Whether there is a symbol of this name.
bool has(const QString& name);

/// Draws a symbol into `rectangle`, in the painter's points, crisp at its device pixel ratio and all in `tint`. An
/// empty name and an unknown one draw nothing. Main thread only.
void paint(QPainter& painter, const QString& name, const QRectF& rectangle, const QColor& tint);

} // namespace kelm::icons
