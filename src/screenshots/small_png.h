// Pictures that take little room.
#pragma once

#include <QImage>

namespace kelm::screenshots {

/// The image with a table of at most 96 of its colours, and each other one as the nearest of them. The same image gives
/// the same table.
QImage withColorTable(const QImage& image);

/// Writes an image so. False when the file could not be written.
bool saveSmall(const QImage& image, const QString& file);

} // namespace kelm::screenshots
