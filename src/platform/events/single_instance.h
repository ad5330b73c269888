// One running program for each user and session.
#pragma once

#include "platform/events/instance_lock.h"
#include "platform/events/instance_place.h"
#include "platform/events/open_request_listener.h"

#include <QObject>
#include <QStringList>

#include <chrono>

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

    /// Finds this start's part. Waits for another program's answer, and for one that ends to have ended, as long as the
    /// patience lasts.
    Part settle(const QStringList& urlTexts);

    /// Ends listening and gives what has come and was not told of any more, a list for each start. The lock stays.
    QList<QStringList> stopListening();

    /// How long to wait for an answer. Ten seconds if not said.
    void setPatience(std::chrono::milliseconds patience) { patience_ = patience; }
    /// How long another program may take to say something whole before it is let go. To be said before it is settled.
    void setListenersPatience(std::chrono::milliseconds patience) { listener_.setPatience(patience); }

Q_SIGNALS:
    /// Another start of the program hands over what it was to open, perhaps nothing. From the event loop.
    void received(const QStringList& urlTexts);

private:
    using Clock = OpenRequestListener::Clock;

    /// Whether the program that listens has taken the message and said the answer.
    bool ask(const QByteArray& message, const QByteArray& answer, Clock::time_point end) const;
    void tell();

    InstancePlace place_;
    InstanceLock lock_;
    OpenRequestListener listener_;
    std::chrono::milliseconds patience_ = std::chrono::seconds(10);
};

} // namespace kelm
