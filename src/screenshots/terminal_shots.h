// Pictures of the terminal.
#pragma once

#include "screenshots/shots.h"

namespace kelm::screenshots {

/// Some commands with their output, and one that is being typed.
void useTerminal(Stage& stage);

/// A program that goes on though it was interrupted, and what was typed meanwhile. The picture is taken while it runs.
void interruptInVain(Stage& stage, const std::function<void()>& takePicture);

} // namespace kelm::screenshots
