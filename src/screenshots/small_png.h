// Pictures that take little room.
#pragma once

#include <QImage>

namespace kelm::screenshots {

/// The image with a table of 96 colours, those that it has most of as they are and the rest as the nearest of them.
/// One of no more colours stays as it is to the eye and to the byte; the same image gives the same table.
QImage withColorTable(const QImage& image);

/// Writes an image so. False when the file could not be written.
bool saveSmall(const QImage& image, const QString& file);

} // namespace kelm::screenshots
