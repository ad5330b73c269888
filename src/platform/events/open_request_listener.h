// What other starts of the program ask for, taken by a thread of its own.
#pragma once

#include "platform/events/open_request.h"
#include "platform/files/open_file.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace kelm {

/// A request that has come. Who waits for the end of what it asked for stays connected, and the connection is here; of
/// such a request that comes again only the connection is new.
struct ArrivedRequest
{
    openRequest::Request request;
    OpenFile waiting;
    bool isRepeated = false;
};

/// Listens at a socket, answers each request at once, whatever the main thread is busy with, and keeps it until it is
/// fetched. A request that comes again is answered again and not kept twice. Whatever else is said is dropped, and so
/// is who says nothing whole in time; a few connections are read at a time, and the others wait for their turn. A lack
/// of descriptors lasts no longer than others hold them: one is kept in reserve.
///
/// Made, started and stopped by one thread.
class OpenRequestListener
{
public:
    using Clock = std::chrono::steady_clock;

    /// `arrived` is called by the listener's thread when there is something to fetch.
    OpenRequestListener(QString socketPath, std::function<void()> arrived);
    ~OpenRequestListener() { stop(); }
    OpenRequestListener(const OpenRequestListener&) = delete;
    OpenRequestListener& operator=(const OpenRequestListener&) = delete;

    /// Begins to listen, in the place of a socket that a crash has left behind. False when that is not possible.
    bool start();

    /// Takes no more requests; the socket's file goes. What has come can still be fetched.
    void stop();

    /// All requests that have come since the last call, in their order. From any thread.
    std::vector<ArrivedRequest> fetch();

    /// How long another program may take to say something whole before it is let go; before `start` only.
    void setPatience(std::chrono::milliseconds patience) { patience_ = patience; }

private:
    struct Connection
    {
        OpenFile socket;
        openRequest::Reader reader;
        Clock::time_point end;
        Clock::time_point lastHeard;
    };

    void run();
    /// Waits until there is something to do. False when it is time to stop.
    bool wait();
    void acceptAll();
    /// Makes room for one more connection where that is possible.
    bool makeRoom();
    void readAll();
    /// False when nothing more is to be read.
    bool read(Connection& connection, Clock::time_point now);
    /// Keeps what a connection has said, and the connection of one that waits.
    void take(Connection& connection);
    bool isKnown(const QUuid& id);
    void keepReserve();

    QString socketPath_;
    std::function<void()> arrived_;
    std::chrono::milliseconds patience_ = std::chrono::seconds(5);
    std::thread thread_;
    std::atomic<bool> isStopping_ = false;
    OpenFile wakeReader_;
    OpenFile wakeWriter_;

    // Of the thread alone, once it runs.
    OpenFile listening_;
    OpenFile reserve_;
    bool lacksDescriptors_ = false;
    std::vector<Connection> connections_;
    std::set<QUuid> known_;
    std::deque<QUuid> knownInOrder_;

    std::mutex mutex_;
    std::vector<ArrivedRequest> waiting_;
};

} // namespace kelm
