#include "platform/events/single_instance.h"

#include "platform/events/open_request.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <QTimer>

#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace kelm {

namespace {

constexpr int connectMilliseconds = 1000;
constexpr int answerMilliseconds = 5000;
constexpr int mostWaiting = 4096;
constexpr QByteArrayView answer("ok\n");

/// Whether the other end belongs to this user, by what the system says of it.
bool isOfSameUser(qintptr descriptor)
{
#ifdef Q_OS_LINUX
    ucred credentials{};
    socklen_t size = sizeof credentials;
    const int result = getsockopt(static_cast<int>(descriptor), SOL_SOCKET, SO_PEERCRED, &credentials, &size);
    return result == 0 && credentials.uid == geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return getpeereid(static_cast<int>(descriptor), &user, &group) == 0 && user == geteuid();
#endif
}

} // namespace

SingleInstance::SingleInstance(QString socketPath) : socketPath_(std::move(socketPath)) {}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::defaultSocketPath()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) {
        folder = QDir::tempPath();
    }
    return folder + QStringLiteral("/com.kelm.KelmPane-%1.socket").arg(geteuid());
}

bool SingleInstance::handOver(const QStringList& urlTexts)
{
    const QByteArray message = openRequest::encode(urlTexts);
    if (message.isEmpty()) {
        return false;
    }
    QLocalSocket socket;
    socket.connectToServer(socketPath_);
    if (!socket.waitForConnected(connectMilliseconds) || !isOfSameUser(socket.socketDescriptor())) {
        return false;
    }
    socket.write(message);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(answerMilliseconds)) {
            return false;
        }
    }
    while (socket.bytesAvailable() < answer.size()) {
        if (!socket.waitForReadyRead(answerMilliseconds)) {
            return false;
        }
    }
    return socket.readAll() == answer;
}

bool SingleInstance::listen()
{
    // Two starts at the same moment do not take the file from each other.
    QLockFile lock(socketPath_ + QStringLiteral(".lock"));
    lock.setStaleLockTime(answerMilliseconds);
    if (!lock.tryLock(answerMilliseconds)) {
        return false;
    }
    QLocalSocket probe;
    probe.connectToServer(socketPath_);
    if (probe.waitForConnected(connectMilliseconds)) {
        return false;
    }
    QLocalServer::removeServer(socketPath_);
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    server_->setMaxPendingConnections(mostWaiting);
    // Many starts at once, as of a script, wait for their turn.
    server_->setListenBacklogSize(mostWaiting);
    connect(server_.get(), &QLocalServer::newConnection, this, &SingleInstance::acceptConnections);
    return server_->listen(socketPath_);
}

void SingleInstance::acceptConnections()
{
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (!isOfSameUser(socket->socketDescriptor())) {
            socket->abort();
            continue;
        }
        const auto request = std::make_shared<openRequest::Reader>(*socket);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket, request] { read(*socket, *request); });
        QTimer::singleShot(patience_, socket, [socket] { socket->abort(); });
        read(*socket, *request);
    }
}

void SingleInstance::read(QLocalSocket& socket, openRequest::Reader& request)
{
    switch (request.read()) {
    case openRequest::State::incomplete:
        return;
    case openRequest::State::invalid:
        socket.abort();
        return;
    case openRequest::State::complete:
        socket.disconnect(this);
        socket.write(answer.toByteArray());
        socket.disconnectFromServer();
        Q_EMIT received(request.texts());
    }
}

} // namespace kelm
