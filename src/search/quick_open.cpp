#include "search/quick_open.h"

#include "platform/files/file_url.h"
#include "search/localized_needle.h"

namespace kelm {

QList<QUrl> filteredFiles(const QList<QUrl>& recentFiles, const QString& searchText)
{
    if (searchText.isEmpty()) {
        return recentFiles;
    }
    const LocalizedNeedle needle(searchText);
    QList<QUrl> files;
    for (const QUrl& url : recentFiles) {
        if (needle.isIn(lastPathComponent(url))) {
            files.append(url);
        }
    }
    return files;
}

} // namespace kelm
