#include "platform/files/file_url.h"

#include <QFileInfo>

namespace kelm {

QString filePath(const QUrl& url)
{
    return url.isLocalFile() ? url.toLocalFile() : url.path(QUrl::FullyDecoded);
}

QString lastPathComponent(const QUrl& url)
{
    const QString path = filePath(url);
    QStringView rest = path;
    while (rest.size() > 1 && rest.endsWith(u'/')) {
        rest.chop(1);
    }
    if (rest == u"/") {
        return rest.toString();
    }
    return rest.sliced(rest.lastIndexOf(u'/') + 1).toString();
}

QString folderPrefix(const QUrl& folder)
{
    QString path = filePath(folder);
    while (path.endsWith(u'/')) {
        path.chop(1);
    }
    return path + u'/';
}

QString pathExtension(const QUrl& url)
{
    const QString name = lastPathComponent(url);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot <= 0 ? QString() : name.sliced(dot + 1);
}

bool hasDirectoryPath(const QUrl& url)
{
    if (filePath(url).endsWith(u'/')) {
        return true;
    }
    return url.isLocalFile() && QFileInfo(url.toLocalFile()).isDir();
}

} // namespace kelm
