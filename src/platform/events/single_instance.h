// One running program for each user and session.
#pragma once

#include "platform/events/instance_lock.h"
#include "platform/events/instance_place.h"
#include "platform/events/open_request_listener.h"
#include "platform/events/waiting_start.h"

#include <QHash>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// Decides whether this start of the program is the first. The first holds a lock as long as its process lives, and
/// listens; every other hands over what it was to open, and ends. What the first has taken no other opens, and what it
/// has not taken when it ends the other opens itself. Main thread only; the first answers from a thread of its own, so
/// that nothing the main thread does keeps another start waiting.
class SingleInstance final : public QObject
{
    Q_OBJECT

public:
    enum class Part {
        /// This is the program that runs.
        first,
        /// Another has taken what was to be opened.
        handedOver,
        /// Another runs and does not answer, stopped perhaps; it may still have taken what was to be opened.
        unanswered,
        /// Locks or sockets are not to be had there: the program works all the same, and others beside it.
        alone,
    };

    /// Nothing happens yet.
    explicit SingleInstance(InstancePlace place);

    /// A request of another start.
    struct Received
    {
        openRequest::Request request;
        /// Told of what becomes of its tabs; null when nobody waits for them.
        std::shared_ptr<WaitingStart> waiting;
    };

    /// Finds this start's part. Waits for another program's answer, and for one that ends to have ended, as long as the
    /// patience lasts. The first has the lock then, and others wait for it to listen.
    Part claim(const openRequest::Request& request);
    /// Begins to answer others, for the first alone. False when that is not possible: others go their own way then.
    bool listen();
    /// Both of them.
    Part settle(const openRequest::Request& request);

    /// For a first that leaves its part to a program that it has started: hands over to that one as soon as it listens.
    /// Alone when nobody holds the lock and `isComing` says that nobody will.
    Part leaveTo(const openRequest::Request& request, const std::function<bool()>& isComing);

    /// Behind a request that waits and was handed over: waits until what it asked for is over. Absent when the other
    /// program died before. No event is handled meanwhile.
    std::optional<openRequest::Outcome> awaitOutcome();

    /// Ends listening and gives what has come and was not told of any more. The lock stays.
    std::vector<Received> stopListening();
    /// Lets another start be the first, behind `stopListening`.
    void leave();

    /// How long to wait for an answer. Ten seconds if not said.
    void setPatience(std::chrono::milliseconds patience) { patience_ = patience; }
    /// How long another program may take to say something whole before it is let go. To be said before it is settled.
    void setListenersPatience(std::chrono::milliseconds patience) { listener_.setPatience(patience); }

Q_SIGNALS:
    /// Another start of the program hands over what it was to open, perhaps nothing. From the event loop.
    void received(const kelm::SingleInstance::Received& received);

private:
    using Clock = OpenRequestListener::Clock;

    /// Whether the program that listens has taken the message and said the answer.
    bool ask(const QByteArray& message, const QByteArray& answer, Clock::time_point end);
    std::vector<Received> fetch();
    void tell();

    InstancePlace place_;
    InstanceLock lock_;
    OpenRequestListener listener_;
    /// The connection by which it is told what became of a request that waits.
    OpenFile outcome_;
    /// Those whose requests may come again.
    QHash<QUuid, std::weak_ptr<WaitingStart>> waiting_;
    std::chrono::milliseconds patience_ = std::chrono::seconds(10);
};

} // namespace kelm
