// The look of the program: one place for the names of its sizes and shades.
#pragma once

#include <QFont>

namespace kelm::style {

/// The monospaced system font at a pixel size, with families behind it that cover Korean and emoji.
QFont monospaced(int pixelSize);

} // namespace kelm::style
