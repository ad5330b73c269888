#include "platform/files/symbolic_links.h"

#include <cerrno>
#include <climits>
#include <unistd.h>

namespace kelm {

namespace {

constexpr int mostLinks = 40;

/// What the symbolic link at `nativePath` says, or nothing when it is none.
std::optional<QByteArray> linkTarget(const QByteArray& nativePath)
{
    char target[PATH_MAX];
    const ssize_t length = ::readlink(nativePath.constData(), target, sizeof target);
    return length < 0 ? std::nullopt : std::optional(QByteArray(target, length));
}

} // namespace

QByteArray folderOf(const QByteArray& nativePath)
{
    const qsizetype slash = nativePath.lastIndexOf('/');
    return slash < 0 ? QByteArray("./") : nativePath.left(slash + 1);
}

std::optional<QList<QByteArray>> linksFrom(const QByteArray& nativePath)
{
    QList<QByteArray> paths{nativePath};
    while (paths.size() <= mostLinks) {
        const QByteArray& path = paths.constLast();
        const std::optional<QByteArray> target = linkTarget(path);
        if (!target) {
            return paths;
        }
        paths.append(target->startsWith('/') ? *target : folderOf(path) + *target);
    }
    errno = ELOOP;
    return std::nullopt;
}

std::optional<QByteArray> followLinks(const QByteArray& nativePath)
{
    const std::optional<QList<QByteArray>> paths = linksFrom(nativePath);
    return paths ? std::optional(paths->constLast()) : std::nullopt;
}

} // namespace kelm
