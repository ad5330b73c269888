// A child process whose output is read as it comes.
#pragma once

#include "platform/process/process.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>

namespace kelm {

class ChildProcessReader;

/// One child that runs beside the application. It belongs to the thread that starts it, which has an event loop: its
/// signals come there, each from the loop and none from inside `start`. Reading keeps pace with whoever receives the
/// signals, so a flood of output waits in the child and not in memory; and many small writes are gathered for a few
/// milliseconds, so that they cost no more than a few large ones.
///
/// An object that goes while its child runs leaves the child alone: what the child still writes is read and thrown
/// away. A command's text for the standard input is written from the loop too.
class ChildProcess final : public QObject
{
    Q_OBJECT

public:
    explicit ChildProcess(QObject* parent = nullptr);
    ~ChildProcess() override;

    /// Starts the child; the text says why it could not be started and is absent when it was. Each object starts one
    /// child.
    std::optional<QString> start(const ProcessCommand& command);

    /// Whether the child has been started and its end has not been reported yet.
    bool isRunning() const;
    /// The process number while the child runs, else 0.
    qint64 processId() const;

    /// Ask the child to stop (SIGINT, SIGTERM) or end it (SIGKILL), with its whole group if it leads one. A child that
    /// has ended is left in peace.
    void interrupt();
    void terminate();
    void kill();

Q_SIGNALS:
    /// What the child wrote, decoded from UTF-8: at most 64 KiB at a time, cut between characters. A chunk that is not
    /// valid UTF-8 is dropped.
    void outputRead(const QString& text);
    void errorRead(const QString& text);
    /// The child has ended, and all that it wrote before has been reported. What processes that it left behind write
    /// later is thrown away.
    void finished(const kelm::ProcessExit& exit);

private:
    QPointer<ChildProcessReader> reader_;
};

} // namespace kelm
