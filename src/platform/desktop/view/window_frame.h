// The frame that the system puts around a window.
#pragma once

class QWidget;

namespace kelm {

/// Lets the window's content reach under its title bar, which shows nothing but its buttons then. Where the system has
/// no such windows nothing happens. For a window that has been shown.
void hideTitleBar(QWidget& window);

} // namespace kelm
