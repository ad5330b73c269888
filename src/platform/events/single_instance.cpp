#include "platform/events/single_instance.h"

#include "platform/events/local_socket.h"
#include "platform/events/main_queue.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <utility>

namespace kelm {

namespace {

/// How often to look whether a program that begins or ends has done so.
constexpr int pauseMilliseconds = 20;

} // namespace

SingleInstance::SingleInstance(InstancePlace place)
    : place_(std::move(place)),
      lock_(place_.lockPath),
      listener_(place_.socketPath, [this] { onMainQueue(this, [this] { tell(); }); })
{}

SingleInstance::Part SingleInstance::settle(const QStringList& urlTexts)
{
    const openRequest::Request request{QUuid::createUuid(), urlTexts};
    const QByteArray message = openRequest::encode(request);
    const QByteArray answer = openRequest::answerTo(request.id);
    const Clock::time_point end = Clock::now() + patience_;
    do {
        switch (lock_.tryLock()) {
        case InstanceLock::Result::taken:
            if (listener_.start()) {
                return Part::first;
            }
            // Others would wait for an answer that cannot come.
            lock_.unlock();
            return Part::alone;
        case InstanceLock::Result::impossible:
            return Part::alone;
        case InstanceLock::Result::held:
            break;
        }
        if (message.isEmpty()) {
            break;
        }
        if (ask(message, answer, end)) {
            return Part::handedOver;
        }
        ::poll(nullptr, 0, pauseMilliseconds);
    } while (Clock::now() < end);
    return Part::unanswered;
}

QList<QStringList> SingleInstance::stopListening()
{
    listener_.stop();
    return listener_.fetch();
}

bool SingleInstance::ask(const QByteArray& message, const QByteArray& answer, Clock::time_point end) const
{
    const OpenFile socket = localSocket::connectTo(place_.socketPath);
    if (!socket.isOpen()) {
        return false;
    }
    QByteArrayView unsent = message;
    QByteArray heard;
    while (heard.size() < answer.size()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd watched{socket.get(), short(unsent.isEmpty() ? POLLIN : POLLIN | POLLOUT), 0};
        if (left <= 0 || (::poll(&watched, 1, int(left)) < 0 && errno != EINTR)) {
            return false;
        }
        if ((watched.revents & POLLOUT) != 0) {
            const qsizetype count = localSocket::send(socket, unsent);
            if (count < 0 && errno != EAGAIN) {
                return false;
            }
            unsent = unsent.sliced(std::max<qsizetype>(count, 0));
        }
        if ((watched.revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
            std::array<char, 64> piece;
            const qsizetype count = socket.read(piece.data(), qsizetype(piece.size()));
            if (count == 0 || (count < 0 && errno != EAGAIN)) {
                return false;
            }
            heard.append(piece.data(), std::max<qsizetype>(count, 0));
        }
    }
    return heard == answer;
}

void SingleInstance::tell()
{
    for (const QStringList& urlTexts : listener_.fetch()) {
        Q_EMIT received(urlTexts);
    }
}

} // namespace kelm
