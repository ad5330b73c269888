#include "platform/files/file_url.h"

#include "platform/files/native_path.h"

namespace kelm {

using namespace Qt::Literals::StringLiterals;

QString filePath(const QUrl& url)
{
    QString path = url.isLocalFile() ? url.toLocalFile() : url.path(QUrl::FullyDecoded);
    // The toolkit puts this character in the place of what it cannot decode.
    if (!path.contains(QChar::ReplacementCharacter) || (url.isLocalFile() && !url.host().isEmpty())) {
        return path;
    }
    return pathOfNative(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

QUrl urlOfFile(const QString& path)
{
    if (!holdsRawBytes(path)) {
        return QUrl::fromLocalFile(path);
    }
    return QUrl(u"file://"_s + QString::fromLatin1(nativePath(path).toPercentEncoding("/")));
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
    return shownPath(rest.sliced(rest.lastIndexOf(u'/') + 1).toString());
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
    if (!url.isLocalFile()) {
        return false;
    }
    const QString path = filePath(url);
    return path.endsWith(u'/') || isFolder(path);
}

} // namespace kelm
