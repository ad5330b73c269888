#include "platform/files/file_identity.h"

#include <cerrno>
#include <sys/stat.h>

namespace kelm {

std::optional<FileIdentity> identityOf(const QByteArray& nativePath)
{
    struct stat status = {};
    if (nativePath.contains('\0')) {
        errno = EINVAL;
        return std::nullopt;
    }
    if (::stat(nativePath.constData(), &status) != 0) {
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return std::nullopt;
    }
    constexpr qint64 nanosecondsPerSecond = 1'000'000'000;
#ifdef Q_OS_MACOS
    const timespec& written = status.st_mtimespec;
#else
    const timespec& written = status.st_mtim;
#endif
    return FileIdentity{quint64(status.st_dev), quint64(status.st_ino), qint64(status.st_size),
                        written.tv_sec * nanosecondsPerSecond + written.tv_nsec};
}

} // namespace kelm
