// The files that were opened last, as the state keeps them.
#include "app/state/app_state.h"
#include "app/state/recent_files.h"

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype mostRecentFiles = 10;

const QString recentFilesKey = u"recentFiles"_s;

} // namespace

void AppState::setRecentFiles(const QList<QUrl>& recentFiles)
{
    if (recentFiles_ == recentFiles) {
        return;
    }
    recentFiles_ = recentFiles;
    Q_EMIT recentFilesChanged();
}

void AppState::addToRecentFiles(const QUrl& url)
{
    putInRecentFiles({url});
}

void AppState::putInRecentFiles(const QList<QUrl>& urls)
{
    if (urls.isEmpty()) {
        return;
    }
    QList<QUrl> files = recentFiles_;
    for (const QUrl& url : urls) {
        files.removeAll(url);
        files.prepend(url);
        files.resize(std::min(files.size(), mostRecentFiles));
    }
    setRecentFiles(files);
    saveRecentFiles();
    for (const QUrl& url : urls) {
        Q_EMIT fileUsed(url);
    }
}

void AppState::loadRecentFiles()
{
    const std::optional<QByteArray> data = services_.userDefaults.data(recentFilesKey);
    setRecentFiles(data ? existingFiles(decodeURLs(*data).value_or(QList<QUrl>())) : QList<QUrl>());
}

void AppState::saveRecentFiles()
{
    services_.userDefaults.setData(recentFilesKey, encodeURLs(recentFiles_));
}

} // namespace kelm
