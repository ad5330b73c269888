#include "run/path_names.h"

#include "platform/files/native_path.h"

#include <QDir>

#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The home folder of another user; null when there is no such user.
QString homeOfUser(const QString& name)
{
    std::vector<char> buffer(16384);
    passwd entry = {};
    passwd* found = nullptr;
    const QByteArray encoded = name.toLocal8Bit();
    if (::getpwnam_r(encoded.constData(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) {
        return {};
    }
    return pathOfNative(found->pw_dir);
}

QStringView withoutSlashesAtEnd(QStringView path)
{
    while (path.size() > 1 && path.endsWith(u'/')) {
        path.chop(1);
    }
    return path;
}

} // namespace

QString expandingTilde(const QString& path)
{
    if (!path.startsWith(u'~')) {
        return path;
    }
    const qsizetype slash = path.indexOf(u'/');
    const qsizetype end = slash < 0 ? path.size() : slash;
    const QString name = path.sliced(1, end - 1);
    const QString home = name.isEmpty() ? QDir::homePath() : homeOfUser(name);
    if (home.isNull()) {
        return path;
    }
    return home == u"/" && end < path.size() ? path.sliced(end) : home + path.sliced(end);
}

QString appendingPathComponent(const QString& path, QStringView component)
{
    QString result = withoutSlashesAtEnd(path).toString();
    while (component.startsWith(u'/')) {
        component = component.sliced(1);
    }
    if (!result.endsWith(u'/')) {
        result += u'/';
    }
    return result.append(component);
}

QString deletingLastPathComponent(QStringView path)
{
    path = withoutSlashesAtEnd(path);
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash < 0 ? QString() : withoutSlashesAtEnd(path.first(slash + 1)).toString();
}

QString lastPathComponent(QStringView path)
{
    path = withoutSlashesAtEnd(path);
    return path == u"/" ? path.toString() : path.sliced(path.lastIndexOf(u'/') + 1).toString();
}

QString standardizedPath(const QString& path)
{
    QString clean = QDir::cleanPath(path);
    while (clean.startsWith(u"/../")) {
        clean.remove(0, 3);
    }
    return clean == u"/.." ? u"/"_s : clean;
}

} // namespace kelm
