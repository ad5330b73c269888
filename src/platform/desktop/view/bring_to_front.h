// A window that comes to the front since a person has asked for it from outside.
#pragma once

#include "platform/events/open_request.h"

class QWidget;

namespace kelm {

/// Brings a window to the front for a start with these tokens: back if it was closed or minimized, and to the workspace
/// that is seen. Where the desktop does not let it come to the front, the window asks for attention a moment later.
/// Empty tokens leave it to the desktop whether a person wants the window.
void bringToFront(QWidget& window, const openRequest::Tokens& tokens);

/// Tells the desktop that a start is over, so that nothing shows any more that it goes on. Empty tokens do nothing.
void completeStart(const openRequest::Tokens& tokens);

} // namespace kelm
