#include "platform/files/open_file.h"

#include "platform/files/file_step.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

bool OpenFile::close()
{
    const int descriptor = std::exchange(descriptor_, -1);
    // The descriptor is gone even when the call is interrupted: a second try could close another thread's file.
    return descriptor < 0 || ((::close(descriptor) == 0 || errno == EINTR) && mayTake(FileStep::close));
}

qsizetype OpenFile::read(char* bytes, qsizetype size) const
{
    for (;;) {
        const ssize_t count = ::read(descriptor_, bytes, std::size_t(size));
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

qsizetype OpenFile::readAt(qint64 offset, char* bytes, qsizetype size) const
{
    for (;;) {
        const ssize_t count = ::pread(descriptor_, bytes, std::size_t(size), off_t(offset));
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

std::optional<QByteArray> OpenFile::readAll() const
{
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0) {
        return std::nullopt;
    }
    try {
        // One more than the stated size, so that the end shows at once. Some files say a size of 0 whatever they hold.
        QByteArray bytes(qsizetype(status.st_size) + 1, Qt::Uninitialized);
        qsizetype used = 0;
        while (const qsizetype count = read(bytes.data() + used, bytes.size() - used)) {
            if (count < 0) {
                return std::nullopt;
            }
            used += count;
            if (used == bytes.size()) {
                bytes.resize(std::max(2 * used, qsizetype(4096)));
            }
        }
        bytes.truncate(used);
        return bytes;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return std::nullopt;
    }
}

bool OpenFile::writeAll(const char* bytes, qsizetype size) const
{
    // In parts, so that a disk that becomes full is met with some of them written.
    constexpr qsizetype part = 1 << 20;
    while (size > 0) {
        if (!mayTake(FileStep::write)) {
            return false;
        }
        const ssize_t count = ::write(descriptor_, bytes, std::size_t(std::min(size, part)));
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count > 0) {
            bytes += count;
            size -= count;
        }
    }
    return true;
}

bool OpenFile::flushToDisk() const
{
    if (!mayTake(FileStep::flush)) {
        return false;
    }
#ifdef F_FULLFSYNC
    if (::fcntl(descriptor_, F_FULLFSYNC) == 0) {
        return true;
    }
#endif
    return ::fsync(descriptor_) == 0;
}

OpenFile OpenFile::openForReading(const QByteArray& nativePath)
{
    // Without O_NONBLOCK the opening of a pipe would wait for its other end.
    OpenFile file(::open(nativePath.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return {};
    }
    if (!S_ISREG(status.st_mode)) {
        file.close();
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return {};
    }
    return file;
}

} // namespace kelm
