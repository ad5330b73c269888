// What the file panels begin with.
#pragma once

#include <QString>
#include <QStringList>

namespace kelm {

class AppState;
class Document;
class FilePanels;

/// Where a panel looks for its first folder: that of the current file, then the project.
QStringList panelStart(const AppState& appState);

/// Has a person choose the folder of the project. False when nothing was chosen.
bool chooseProject(AppState& appState, FilePanels& panels);

/// The name that a document is to be saved under. One with a file has its name already; a name without an extension
/// takes the one of the language that somebody has chosen for it. "Untitled" takes that of its language in any case.
QString suggestedName(const Document& document);

} // namespace kelm
