// The commands of the window's own menu: its tabs and panes.
#pragma once

#include "app/commands/command.h"
#include "app/state/app_state.h"

#include <QKeyCombination>
#include <QObject>

namespace kelm {

class ClosedTabs;
class PaneWalk;
class TabUse;

/// The key of one of these commands; all are keys that the command table leaves free.
QKeyCombination windowKey(Command command);

/// Goes to tabs by their use, their place and their number, closes them and opens them again, and takes the keyboard
/// round the panes. None of that can be done while an overlay lies over the window. Main thread only.
class WindowCommands final : public QObject
{
    Q_OBJECT

public:
    WindowCommands(AppState& appState, PaneWalk& panes, QObject* parent);

    bool canRun(Command command) const;
    /// Does nothing for what cannot be done now.
    void run(Command command);

Q_SIGNALS:
    /// Other commands can be run than before.
    void changed();

private:
    void goToTab(qsizetype index);
    void stepTab(qsizetype step);

    AppState& appState_;
    PaneWalk& panes_;
    TabUse* tabUse_;
    ClosedTabs* closedTabs_;
};

} // namespace kelm
