#include "app/state/panel_start.h"

#include "app/state/app_state.h"
#include "platform/desktop/file_panels.h"
#include "platform/files/file_url.h"

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The path of the folder that a path lies in.
QString folderOf(const QString& path)
{
    return path.first(std::max(path.lastIndexOf(u'/'), qsizetype(0)));
}

} // namespace

QStringList panelStart(const AppState& appState)
{
    QStringList folders;
    const std::shared_ptr<Document> document = appState.currentDocument();
    if (document && document->fileURL() && document->fileURL()->isLocalFile()) {
        folders << folderOf(filePath(*document->fileURL())) + u'/';
    }
    if (appState.currentProject()) {
        folders << filePath(*appState.currentProject());
    }
    return folders;
}

bool chooseProject(AppState& appState, FilePanels& panels)
{
    const QList<ChosenURL> chosen = panels.showOpenPanel({.canChooseFiles = false,
                                                          .canChooseDirectories = true,
                                                          .kind = PanelKind::project,
                                                          .startFolders = panelStart(appState)});
    if (chosen.isEmpty()) {
        return false;
    }
    appState.setCurrentProject(chosen.first().url);
    return true;
}

QString suggestedName(const Document& document)
{
    const std::optional<QUrl>& url = document.fileURL();
    const QString name = url ? lastPathComponent(*url) : u"Untitled"_s;
    const bool isNamed = url && (!pathExtension(*url).isEmpty() || name.startsWith(u'.') ||
                                 document.language() == Language(Language::plainText));
    return isNamed ? name : name + u'.' + document.language().fileExtension();
}

} // namespace kelm
