// Which parts of the window the keyboard goes round.
#pragma once

namespace kelm {

class MainWindow;
class PaneWalk;

/// The walk round a window whose parts are made: sidebar, a link's question, text, lesson, bottom panel, notices.
PaneWalk* makePaneWalk(MainWindow& window);

} // namespace kelm
