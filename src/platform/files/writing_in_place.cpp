#include "platform/files/writing_in_place.h"

#include "platform/files/native_path.h"
#include "platform/files/open_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Sees to it that the disk has room for `size` bytes of the file. A file system that cannot say so is tried.
bool reserve(const OpenFile& file, qsizetype size)
{
#ifdef Q_OS_LINUX
    if (size > 0) {
        const int error = ::posix_fallocate(file.get(), 0, off_t(size));
        errno = error;
        return error == 0 || error == EINVAL || error == EOPNOTSUPP;
    }
#else
    Q_UNUSED(file)
    Q_UNUSED(size)
#endif
    return true;
}

bool writeFromStart(const OpenFile& file, QByteArrayView bytes)
{
    return ::lseek(file.get(), 0, SEEK_SET) == 0 && file.writeAll(bytes.data(), bytes.size()) &&
           ::ftruncate(file.get(), off_t(bytes.size())) == 0 && file.flushToDisk();
}

} // namespace

std::optional<FileError> writeInPlace(const QString& path, const QByteArray& nativePath, QByteArrayView bytes,
                                      const KeepOldContent& keep)
{
    const OpenFile file(::open(nativePath.constData(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    const std::optional<QByteArray> old = file.isOpen() ? file.readAll() : std::nullopt;
    if (!old) {
        return systemError(path, errno);
    }
    if (*old == bytes) {
        return std::nullopt;
    }
    if (!keep || !keep(*old)) {
        return FileError{u"%1: What it holds could not be put in a safe place first."_s.arg(shownPath(path)),
                         u"what it holds could not be put in a safe place first"_s};
    }
    if (reserve(file, bytes.size()) && writeFromStart(file, bytes)) {
        return std::nullopt;
    }
    const int reason = errno;
    writeFromStart(file, *old);
    return systemError(path, reason);
}

} // namespace kelm
