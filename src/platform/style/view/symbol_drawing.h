// The pixels of a symbol.
#pragma once

#include <QByteArray>
#include <QImage>

namespace kelm {

/// Draws a symbol's file, an SVG on a grid of 24 units with strokes 1.75 wide, into a square of `extent` device pixels.
/// A null image when it is none.
///
/// Strokes are at least a pixel wide, and narrower than designed above 24 points. A symbol of up to 20 pixels is put
/// where its edges fall on those of pixels best: in the middle or half a pixel aside, in its size or in one beside it.
QImage drawSymbol(const QByteArray& drawing, qreal pointSize, int extent);

} // namespace kelm
