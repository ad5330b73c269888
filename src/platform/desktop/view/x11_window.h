// What window managers of the X Window System are told of a window beside what the toolkit says.
#pragma once

#include <QString>
#include <QStringView>

class QWidget;

namespace kelm::x11 {

/// The server's time of what a person did to start a program, from the end of the startup notification's number:
/// "…_TIME123". 0 for a number that tells none.
quint32 timeOfStartupId(QStringView id);

/// Each does nothing, and says so with false, where the toolkit does not show its windows by the X Window System.

/// Moves a window to the workspace that is seen, unless it is on all of them.
bool moveToCurrentWorkspace(QWidget& window);
/// Asks for a window to have the keyboard, since a person has asked for it at `time`.
bool activate(QWidget& window, quint32 time);
/// Tells all who show that a program is being started that it has been.
bool endStartup(const QString& id);

} // namespace kelm::x11
