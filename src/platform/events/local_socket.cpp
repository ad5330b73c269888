#include "platform/events/local_socket.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kelm::localSocket {

namespace {

/// Where a system cannot make sockets so at once.
[[maybe_unused]] bool keepToItself(const OpenFile& socket)
{
    return socket.isOpen() && ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC) == 0 &&
           ::fcntl(socket.get(), F_SETFL, O_NONBLOCK) == 0;
}

OpenFile newSocket()
{
#ifdef Q_OS_LINUX
    return OpenFile(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
#else
    OpenFile socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    return keepToItself(socket) ? std::move(socket) : OpenFile();
#endif
}

/// The address of a path. A longer one than addresses have room for is named from its folder, which has to stay open
/// meanwhile; where the system knows no such names it is not reached.
struct Address
{
    OpenFile folder;
    sockaddr_un value = {};
    bool isValid = false;

    explicit Address(const QString& path)
    {
        QByteArray name = QFile::encodeName(path);
#ifdef Q_OS_LINUX
        if (name.size() >= qsizetype(sizeof value.sun_path)) {
            const QFileInfo info(path);
            folder = OpenFile(::open(QFile::encodeName(info.path()).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
            name = "/proc/self/fd/" + QByteArray::number(folder.get()) + '/' + QFile::encodeName(info.fileName());
        }
#endif
        isValid = name.size() < qsizetype(sizeof value.sun_path);
        if (!isValid) {
            errno = ENAMETOOLONG;
            return;
        }
        value.sun_family = AF_UNIX;
        std::copy(name.begin(), name.end(), value.sun_path);
    }

    const sockaddr* get() const
    {
        return reinterpret_cast<const sockaddr*>(&value);
    }
};

/// Whether the other end belongs to this user, by what the system says of it.
bool isOfSameUser(const OpenFile& socket)
{
#ifdef Q_OS_LINUX
    ucred credentials{};
    socklen_t size = sizeof credentials;
    const int result = getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size);
    return result == 0 && credentials.uid == geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return getpeereid(socket.get(), &user, &group) == 0 && user == geteuid();
#endif
}

OpenFile ofSameUser(OpenFile socket)
{
    if (socket.isOpen() && !isOfSameUser(socket)) {
        socket.close();
        errno = EACCES;
    }
    return socket;
}

} // namespace

OpenFile listenAt(const QString& path, int mostWaiting)
{
    OpenFile socket = newSocket();
    const Address address(path);
    if (!socket.isOpen() || !address.isValid) {
        return {};
    }
    ::unlink(address.value.sun_path);
    // Nobody can connect before it listens.
    if (::bind(socket.get(), address.get(), sizeof address.value) != 0 || ::chmod(address.value.sun_path, 0600) != 0 ||
        ::listen(socket.get(), mostWaiting) != 0) {
        return {};
    }
    return socket;
}

OpenFile connectTo(const QString& path)
{
    OpenFile socket = newSocket();
    const Address address(path);
    if (!socket.isOpen() || !address.isValid || ::connect(socket.get(), address.get(), sizeof address.value) != 0) {
        return {};
    }
    return ofSameUser(std::move(socket));
}

OpenFile acceptFrom(const OpenFile& listening)
{
#ifdef Q_OS_LINUX
    return ofSameUser(OpenFile(::accept4(listening.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)));
#else
    OpenFile socket(::accept(listening.get(), nullptr, nullptr));
    return keepToItself(socket) ? ofSameUser(std::move(socket)) : OpenFile();
#endif
}

qsizetype send(const OpenFile& socket, QByteArrayView bytes)
{
#ifdef MSG_NOSIGNAL
    constexpr int flags = MSG_NOSIGNAL;
#else
    constexpr int flags = 0;
#endif
    for (;;) {
        const ssize_t count = ::send(socket.get(), bytes.data(), std::size_t(bytes.size()), flags);
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

} // namespace kelm::localSocket
