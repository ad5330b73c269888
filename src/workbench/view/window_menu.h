// The menu of the window's tabs and panes.
#pragma once

class QMenuBar;

namespace kelm {

class WindowCommands;

/// Puts the platform's own "Window" menu behind the others of a bar. What a text view is composing is put into its text
/// before a command runs; a command that cannot be run leaves its key to others.
void addWindowMenu(QMenuBar& bar, WindowCommands& commands);

} // namespace kelm
