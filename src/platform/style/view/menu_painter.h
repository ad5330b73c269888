// How the lines of menus look.
#pragma once

#include <QSize>

class QPainter;
class QStyleOptionMenuItem;

namespace kelm {

/// The extent of one line, in points.
QSize menuItemSize(const QStyleOptionMenuItem& option);

/// Draws a command with its check mark and key, a separator, or a submenu's line.
void drawMenuItem(const QStyleOptionMenuItem& option, QPainter& painter);

} // namespace kelm
