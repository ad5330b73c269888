#include "platform/events/instance_lock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

InstanceLock::Result InstanceLock::tryLock()
{
    const QByteArray path = QFile::encodeName(path_);
    // What stands there in the file's place, such as a pipe, does not hold the start.
    OpenFile file(::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    struct stat opened = {};
    if (!file.isOpen() || ::fstat(file.get(), &opened) != 0 || opened.st_uid != ::geteuid() ||
        !S_ISREG(opened.st_mode)) {
        return Result::impossible;
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? Result::held : Result::impossible;
    }
    // Who tidies such folders leaves alone what has this bit.
    ::fchmod(file.get(), S_ISVTX | 0600);
    // If somebody did so all the same since the file was opened, the lock is on a file that no other will find.
    struct stat there = {};
    if (::stat(path.constData(), &there) != 0 || there.st_ino != opened.st_ino || there.st_dev != opened.st_dev) {
        return Result::held;
    }
    file_ = std::move(file);
    return Result::taken;
}

} // namespace kelm
