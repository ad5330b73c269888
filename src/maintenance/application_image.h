// The file that the program came in, where that is an image of the whole application.
#pragma once

#include <QString>

namespace kelm {

/// The path of the application image that this program runs from; empty where it runs from none. The environment's word
/// is taken only where it tells of this program: a program that another image has started inherits what that one was
/// told.
QString applicationImage();

} // namespace kelm
