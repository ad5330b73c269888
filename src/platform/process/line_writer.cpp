#include "platform/process/line_writer.h"

#include "platform/events/quiet_thread.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace kelm {

namespace {

constexpr std::chrono::milliseconds momentToLeave(250);

void writeWaiting(int descriptor, const QByteArray& bytes)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.constData() + written, std::size_t(bytes.size() - written));
        if (count > 0) {
            written += count;
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            // Another process may have made it one that does not wait.
            pollfd watched{descriptor, POLLOUT, 0};
            ::poll(&watched, 1, -1);
        } else if (errno != EINTR) {
            return;
        }
    }
}

} // namespace

LineWriter::LineWriter(int descriptor) : descriptor_(descriptor) {}

LineWriter::~LineWriter()
{
    finish(momentToLeave);
    const std::scoped_lock lock(shared_->mutex);
    shared_->isStopping = true;
    shared_->changed.notify_all();
}

void LineWriter::write(QByteArray line)
{
    const std::scoped_lock lock(shared_->mutex);
    if (!shared_->hasThread) {
        if (auto thread = startQuietThread([shared = shared_, descriptor = descriptor_] { run(shared, descriptor); })) {
            thread->detach();
            shared_->hasThread = true;
        }
    }
    if (shared_->size + line.size() > mostWaiting) {
        ++shared_->leftOut;
        return;
    }
    if (const qint64 leftOut = std::exchange(shared_->leftOut, 0)) {
        shared_->lines.push_back("(" + QByteArray::number(leftOut) + " lines were left out here)\n");
        shared_->size += shared_->lines.back().size();
    }
    shared_->size += line.size();
    shared_->lines.push_back(std::move(line));
    shared_->changed.notify_all();
}

bool LineWriter::finish(std::chrono::milliseconds patience)
{
    std::unique_lock lock(shared_->mutex);
    return shared_->changed.wait_for(lock, patience, [this] { return shared_->lines.empty() && !shared_->isWriting; });
}

void LineWriter::run(const std::shared_ptr<Shared>& shared, int descriptor)
{
    std::unique_lock lock(shared->mutex);
    for (;;) {
        shared->changed.wait(lock, [&] { return shared->isStopping || !shared->lines.empty(); });
        if (shared->lines.empty()) {
            return;
        }
        const QByteArray line = std::move(shared->lines.front());
        shared->lines.pop_front();
        shared->isWriting = true;
        lock.unlock();
        writeWaiting(descriptor, line);
        lock.lock();
        shared->size -= line.size();
        shared->isWriting = false;
        shared->changed.notify_all();
    }
}

} // namespace kelm
