#include "platform/events/open_request_listener.h"

#include "platform/events/local_socket.h"
#include "platform/events/quiet_thread.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace kelm {

namespace {

/// As many starts at once, as of a script, wait for their turn.
constexpr int mostWaiting = 4096;
/// As many connections are read at a time: a program that may open 64 files has to do with them.
constexpr std::size_t mostConnections = 12;
/// When others wait for their turn, who has been silent for so long loses its own. A start that was only slow asks
/// again.
constexpr std::chrono::milliseconds longestSilence(200);
/// How often to look whether there are descriptors again.
constexpr std::chrono::milliseconds descriptorPause(50);
/// Asking again happens within seconds.
constexpr std::size_t mostKnown = 65'536;
constexpr std::size_t pieceSize = 65'536;
/// As many pieces of one connection in a row; then the others have their turn.
constexpr int piecesAtATime = 16;

bool isLackOfDescriptors(int error)
{
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

int millisecondsUntil(OpenRequestListener::Clock::time_point time)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - OpenRequestListener::Clock::now());
    return int(std::max<qint64>(left.count(), 0));
}

} // namespace

OpenRequestListener::OpenRequestListener(QString socketPath, std::function<void()> arrived)
    : socketPath_(std::move(socketPath)), arrived_(std::move(arrived))
{}

bool OpenRequestListener::start()
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        return false;
    }
    wakeReader_ = OpenFile(ends[0]);
    wakeWriter_ = OpenFile(ends[1]);
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    keepReserve();
    listening_ = localSocket::listenAt(socketPath_, mostWaiting);
    if (!listening_.isOpen()) {
        return false;
    }
    std::optional<std::thread> thread = startQuietThread([this] { run(); });
    if (!thread) {
        listening_.close();
        return false;
    }
    thread_ = std::move(*thread);
    return true;
}

void OpenRequestListener::stop()
{
    if (!thread_.joinable()) {
        return;
    }
    isStopping_ = true;
    wakeWriter_.close();
    thread_.join();
    ::unlink(QFile::encodeName(socketPath_).constData());
}

std::vector<ArrivedRequest> OpenRequestListener::fetch()
{
    const std::scoped_lock lock(mutex_);
    return std::exchange(waiting_, {});
}

void OpenRequestListener::run()
{
    while (wait()) {
        readAll();
        keepReserve();
        acceptAll();
        keepReserve();
    }
    // Who has not been answered by now asks whoever comes next.
    connections_.clear();
    listening_.close();
}

bool OpenRequestListener::wait()
{
    std::vector<pollfd> watched{{wakeReader_.get(), POLLIN, 0}};
    Clock::time_point next = Clock::time_point::max();
    const bool isFull = connections_.size() >= mostConnections || lacksDescriptors_;
    if (isFull) {
        next = Clock::now() + descriptorPause;
    } else {
        watched.push_back({listening_.get(), POLLIN, 0});
    }
    for (const Connection& connection : connections_) {
        watched.push_back({connection.socket.get(), POLLIN, 0});
        next = std::min(next, connection.end);
    }
    const int milliseconds = next == Clock::time_point::max() ? -1 : millisecondsUntil(next);
    ::poll(watched.data(), nfds_t(watched.size()), milliseconds);
    return !isStopping_;
}

void OpenRequestListener::acceptAll()
{
    lacksDescriptors_ = false;
    while (makeRoom()) {
        OpenFile socket = localSocket::acceptFrom(listening_);
        if (!socket.isOpen() && isLackOfDescriptors(errno) && reserve_.isOpen()) {
            reserve_.close();
            socket = localSocket::acceptFrom(listening_);
        }
        if (socket.isOpen()) {
            const Clock::time_point now = Clock::now();
            connections_.push_back({std::move(socket), {}, now + patience_, now});
        } else if (errno != EACCES && errno != ECONNABORTED && errno != EINTR) {
            lacksDescriptors_ = isLackOfDescriptors(errno);
            // Those that are silent may hold what is lacking.
            if (!lacksDescriptors_ || connections_.empty()) {
                return;
            }
            const auto silent = Clock::now() - longestSilence;
            if (std::erase_if(connections_, [&](const Connection& one) { return one.lastHeard < silent; }) == 0) {
                return;
            }
        }
    }
}

bool OpenRequestListener::makeRoom()
{
    if (connections_.size() < mostConnections) {
        return true;
    }
    pollfd waiting{listening_.get(), POLLIN, 0};
    const auto silent = Clock::now() - longestSilence;
    return ::poll(&waiting, 1, 0) == 1 &&
           std::erase_if(connections_, [&](const Connection& one) { return one.lastHeard < silent; }) > 0;
}

void OpenRequestListener::readAll()
{
    const Clock::time_point now = Clock::now();
    std::erase_if(connections_, [&](Connection& connection) { return !read(connection, now); });
}

bool OpenRequestListener::read(Connection& connection, Clock::time_point now)
{
    std::array<char, pieceSize> piece;
    for (int turn = 0; turn < piecesAtATime; ++turn) {
        const qsizetype count = connection.socket.read(piece.data(), qsizetype(piece.size()));
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            return now < connection.end;
        }
        if (count <= 0) {
            return false;
        }
        connection.lastHeard = now;
        switch (connection.reader.add(QByteArrayView(piece.data(), count))) {
        case openRequest::State::incomplete:
            break;
        case openRequest::State::invalid:
            return false;
        case openRequest::State::complete:
            take(connection);
            return false;
        }
    }
    return now < connection.end;
}

bool OpenRequestListener::isKnown(const QUuid& id)
{
    if (!known_.insert(id).second) {
        return true;
    }
    knownInOrder_.push_back(id);
    if (knownInOrder_.size() > mostKnown) {
        known_.erase(knownInOrder_.front());
        knownInOrder_.pop_front();
    }
    return false;
}

void OpenRequestListener::take(Connection& connection)
{
    const openRequest::Request& request = connection.reader.request();
    const QByteArray answer = openRequest::answerTo(request.id);
    const bool isRepeated = isKnown(request.id);
    const bool waits = request.waits;
    // It is kept before it is promised, but what goes on with the connection comes behind the promise. The answer has
    // room in any socket that is still empty.
    const std::scoped_lock lock(mutex_);
    if (!isRepeated || waits) {
        waiting_.push_back({request, {}, isRepeated});
    }
    localSocket::send(connection.socket, answer);
    if (waits) {
        waiting_.back().waiting = std::move(connection.socket);
    }
    if (!isRepeated || waits) {
        arrived_();
    }
}

void OpenRequestListener::keepReserve()
{
    if (!reserve_.isOpen()) {
        reserve_ = OpenFile(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
}

} // namespace kelm
