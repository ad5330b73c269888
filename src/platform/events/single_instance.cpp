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

SingleInstance::Part SingleInstance::claim(const openRequest::Request& request)
{
    const QByteArray message = openRequest::encode(request);
    const QByteArray answer = openRequest::answerTo(request.id);
    const Clock::time_point end = Clock::now() + patience_;
    do {
        switch (lock_.tryLock()) {
        case InstanceLock::Result::taken:
            return Part::first;
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

bool SingleInstance::listen()
{
    if (lock_.isTaken() && listener_.start()) {
        return true;
    }
    // Others would wait for an answer that cannot come.
    lock_.unlock();
    return false;
}

SingleInstance::Part SingleInstance::settle(const openRequest::Request& request)
{
    const Part part = claim(request);
    return part == Part::first && !listen() ? Part::alone : part;
}

SingleInstance::Part SingleInstance::leaveTo(const openRequest::Request& request, const std::function<bool()>& isComing)
{
    lock_.unlock();
    const QByteArray message = openRequest::encode(request);
    const QByteArray answer = openRequest::answerTo(request.id);
    const Clock::time_point end = Clock::now() + patience_;
    do {
        if (ask(message, answer, end)) {
            return Part::handedOver;
        }
        if (!isComing() && lock_.tryLock() != InstanceLock::Result::held) {
            lock_.unlock();
            return Part::alone;
        }
        ::poll(nullptr, 0, pauseMilliseconds);
    } while (Clock::now() < end);
    return Part::unanswered;
}

std::optional<openRequest::Outcome> SingleInstance::awaitOutcome()
{
    pollfd watched{outcome_.get(), POLLIN, 0};
    for (;;) {
        char said = 0;
        const qsizetype count = outcome_.read(&said, 1);
        if (count > 0) {
            return static_cast<openRequest::Outcome>(said);
        }
        if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            return std::nullopt;
        }
        ::poll(&watched, 1, -1);
    }
}

void SingleInstance::leave()
{
    lock_.unlock();
}

std::vector<SingleInstance::Received> SingleInstance::stopListening()
{
    listener_.stop();
    return fetch();
}

std::vector<SingleInstance::Received> SingleInstance::fetch()
{
    std::vector<Received> all;
    for (ArrivedRequest& arrived : listener_.fetch()) {
        std::shared_ptr<WaitingStart> waiting = waiting_.value(arrived.request.id).lock();
        if (arrived.isRepeated) {
            if (waiting) {
                waiting->add(std::move(arrived.waiting));
            }
            continue;
        }
        if (arrived.request.waits) {
            waiting_.removeIf([](const auto& each) { return each.value().expired(); });
            waiting = std::make_shared<WaitingStart>(std::move(arrived.waiting));
            waiting_.insert(arrived.request.id, waiting);
        }
        all.push_back({std::move(arrived.request), std::move(waiting)});
    }
    return all;
}

bool SingleInstance::ask(const QByteArray& message, const QByteArray& answer, Clock::time_point end)
{
    OpenFile socket = localSocket::connectTo(place_.socketPath);
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
            // Not beyond the answer: what may follow it is for later.
            std::array<char, 64> piece;
            const qsizetype count =
                socket.read(piece.data(), std::min(qsizetype(piece.size()), answer.size() - heard.size()));
            if (count == 0 || (count < 0 && errno != EAGAIN)) {
                return false;
            }
            heard.append(piece.data(), std::max<qsizetype>(count, 0));
        }
    }
    outcome_ = std::move(socket);
    return heard == answer;
}

void SingleInstance::tell()
{
    for (const Received& each : fetch()) {
        Q_EMIT received(each);
    }
}

} // namespace kelm
