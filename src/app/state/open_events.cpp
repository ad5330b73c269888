#include "app/state/open_events.h"

#include "app/state/app_state.h"
#include "learning/lesson_link.h"
#include "platform/files/file_url.h"

#include <QUrl>

#include <utility>

namespace kelm {

void openURLs(const QStringList& urlTexts, AppState& appState, const LinkHandler& handleLink)
{
    QList<QUrl> files;
    const auto openFiles = [&] { appState.openFiles(std::exchange(files, {})); };
    for (const QString& urlText : urlTexts) {
        const QUrl url(urlText);
        if (handleLink && isLessonLink(urlText)) {
            openFiles();
            handleLink(urlText);
        } else if (hasDirectoryPath(url)) {
            openFiles();
            appState.setCurrentProject(url);
        } else {
            files.append(url);
        }
    }
    openFiles();
}

} // namespace kelm
