// The type of a shown diff.
#pragma once

#include "platform/style/view/style.h"

namespace kelm {

/// Sizes are in points.
struct DiffFonts
{
    QFont body = style::monospaced(12);
    QFont sign = bold(12, QFont::Bold);
    QFont lineNumber = style::monospaced(10);
    QFont hunkHeader = style::monospaced(11);
    QFont path = bold(13, QFont::DemiBold);
    QFont hunkCount = style::interfaceFont(style::typeSize::body);

private:
    static QFont bold(int size, QFont::Weight weight)
    {
        QFont font = style::monospaced(size);
        font.setWeight(weight);
        return font;
    }
};

/// The paddings of the two headers.
namespace diffSizes {
inline constexpr int fileHeaderHorizontal = 10;
inline constexpr int fileHeaderVertical = 8;
inline constexpr int hunkHeaderHorizontal = 10;
inline constexpr int hunkHeaderVertical = 4;
inline constexpr int headerSpacing = 8;
inline constexpr int fileSymbol = 14;
inline constexpr int toggleSymbol = 10;
inline constexpr int blockRadius = 6;
} // namespace diffSizes

} // namespace kelm
