// The symbols of the interface, drawn in any size and colour. All of it belongs to the main thread.
#pragma once

#include "platform/desktop/named_colors.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QStringList>

class QPainter;
class QRectF;

namespace kelm::icons {

/// The names of all symbols, sorted.
QStringList names();

/// Whether there is a symbol of this name.
bool has(const QString& name);

/// A symbol in a square of `pointSize` points, all in `tint`, with `devicePixelRatio` pixels to a point. A null pixmap
/// when there is no such symbol, which is logged once for each name, or when nothing is left of the size.
QPixmap pixmap(const QString& name, qreal pointSize, const QColor& tint, qreal devicePixelRatio);

/// Draws a symbol into the middle of `rectangle`, as large as it takes a square, with the pixels of the painter's
/// device. An empty name draws nothing, as does one that `pixmap` does not know.
void paint(QPainter& painter, const QString& name, const QRectF& rectangle, const QColor& tint);

/// A symbol for controls that take an icon: in the colour that the application's palette has for the text of buttons,
/// and follows it; in that of disabled buttons, or of selected text, where it is asked for that.
QIcon icon(const QString& name);

/// The same in the shade that strokes of a hue have on the application's palette, which is pale while the control is
/// disabled.
QIcon icon(const QString& name, SystemColor hue);

/// The program's own icon, in colour, in the sizes that windows and task bars ask for.
QIcon application();

} // namespace kelm::icons
