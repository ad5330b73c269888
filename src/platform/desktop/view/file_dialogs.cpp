#include "platform/desktop/view/file_dialogs.h"

#include "platform/desktop/view/file_and_folder_dialog.h"
#include "platform/desktop/view/save_dialog.h"

#include <QApplication>
#include <QFileInfo>

namespace kelm {

QList<ChosenURL> FileDialogs::showOpenPanel(const OpenPanelOptions& options)
{
    FileAndFolderDialog dialog(QApplication::activeWindow(), options,
                               places_.start(options.kind, options.startFolders));
    if (dialog.exec() != QDialog::Accepted || dialog.chosenURLs().isEmpty()) {
        return {};
    }
    const ChosenURL& last = dialog.chosenURLs().constLast();
    noteEnd(options.kind, last.url, last.isDirectory);
    return dialog.chosenURLs();
}

std::optional<QUrl> FileDialogs::showSavePanel(const SavePanelOptions& options)
{
    SaveDialog dialog(QApplication::activeWindow(), options, places_.start(PanelKind::save, options.startFolders));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty()) {
        return std::nullopt;
    }
    const QUrl url = dialog.selectedUrls().constFirst();
    if (!url.isValid() || url.isEmpty()) {
        return std::nullopt;
    }
    noteEnd(PanelKind::save, url, false);
    return url;
}

void FileDialogs::noteEnd(PanelKind kind, const QUrl& chosen, bool isFolder)
{
    if (chosen.isLocalFile()) {
        const QString path = chosen.toLocalFile();
        places_.noteEnd(kind, isFolder && kind != PanelKind::open ? path : QFileInfo(path).absolutePath());
    }
}

} // namespace kelm
