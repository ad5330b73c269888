// One running program for each user.
#pragma once

#include <QObject>
#include <QStringList>

#include <chrono>
#include <memory>

class QLocalServer;
class QLocalSocket;

namespace kelm::openRequest {
class Reader;
}

namespace kelm {

/// The first start of the program listens on a local socket of its user; every other hands over what it was to open,
/// and ends. Only the same user can speak to it, and whatever else is said to it is dropped. Main thread only.
class SingleInstance final : public QObject
{
    Q_OBJECT

public:
    /// The socket's file; nothing happens yet.
    explicit SingleInstance(QString socketPath);
    ~SingleInstance() override;

    /// Hands `urlTexts` to the program that listens already, and waits until it has them, a few seconds at most. False
    /// when none does.
    bool handOver(const QStringList& urlTexts);

    /// Begins to listen; a file that a crash has left behind is replaced. False when that is not possible, in which
    /// case the program works all the same, on its own.
    bool listen();

    /// How long another program may take to say something whole before it is let go.
    void setPatience(std::chrono::milliseconds patience) { patience_ = patience; }

    /// The socket of the program's user, in the folder that the system gives for such files.
    static QString defaultSocketPath();

Q_SIGNALS:
    /// Another start of the program hands over what it was to open, perhaps nothing.
    void received(const QStringList& urlTexts);

private:
    void acceptConnections();
    void read(QLocalSocket& socket, openRequest::Reader& request);

    QString socketPath_;
    std::chrono::milliseconds patience_ = std::chrono::seconds(5);
    std::unique_ptr<QLocalServer> server_;
};

} // namespace kelm
