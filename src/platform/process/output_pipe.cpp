#include "platform/process/output_pipe.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kelm {

namespace {

/// The descriptor moved above the three standard ones: the child's own would overwrite it there.
OpenFile aboveStandard(OpenFile file)
{
    if (file.get() > STDERR_FILENO) {
        return file;
    }
    return OpenFile(::fcntl(file.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

} // namespace

bool OutputPipe::open()
{
    int ends[2] = {-1, -1};
#ifdef Q_OS_MACOS
    if (::pipe(ends) != 0) {
        return false;
    }
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
#else
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return false;
    }
#endif
    readEnd_ = aboveStandard(OpenFile(ends[0]));
    writeEnd_ = aboveStandard(OpenFile(ends[1]));
    return readEnd_.isOpen() && writeEnd_.isOpen() &&
           ::fcntl(readEnd_.get(), F_SETFL, ::fcntl(readEnd_.get(), F_GETFL) | O_NONBLOCK) == 0;
}

bool OutputPipe::readOnce(QByteArray& bytes, qsizetype limit) const
{
    const qsizetype size = bytes.size();
    bytes.resize(size + limit);
    const qsizetype count = readEnd_.read(bytes.data() + size, limit);
    const bool waits = count < 0 && errno == EAGAIN;
    bytes.resize(size + std::max<qsizetype>(count, 0));
    return count > 0 || waits;
}

void OutputPipe::readAvailable(QByteArray& bytes) const
{
    int available = 0;
    if (!readEnd_.isOpen() || ::ioctl(readEnd_.get(), FIONREAD, &available) != 0) {
        return;
    }
    const qsizetype end = bytes.size() + available;
    bytes.reserve(end);
    while (bytes.size() < end && readOnce(bytes, end - bytes.size())) {
    }
}

} // namespace kelm
