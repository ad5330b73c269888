// How the rows of a list look.
#pragma once

#include "platform/view/row.h"

#include <QRect>

class QPainter;

namespace kelm {

/// Draws a section's title, in capitals.
void paintSectionTitle(QPainter& painter, const QRect& rectangle, const QString& title, Appearance appearance);

/// Draws a row's symbol and lines. `trailingSpace` points at the right end are left free.
void paintRow(QPainter& painter, const QRect& rectangle, const Row& row, int trailingSpace, Appearance appearance);

/// The widths that the pieces of a line get in `width` points: what they need, or where that is too much, those that
/// give way share what the others leave.
QList<int> pieceWidths(const QList<RowText>& pieces, int width);

} // namespace kelm
