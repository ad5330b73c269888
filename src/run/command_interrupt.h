// A command that was asked to stop.
#pragma once

#include "platform/events/scheduler.h"

#include <QObject>

#include <chrono>
#include <memory>

namespace kelm {

class ChildProcess;

/// Interrupts a command, and knows when it goes on in spite of that: programs may ignore an interrupt, and then they
/// can be ended. Main thread only.
class CommandInterrupt final : public QObject
{
    Q_OBJECT

public:
    /// How long an interrupted command may take to end before it counts as one that goes on.
    static constexpr std::chrono::seconds patience{2};

    explicit CommandInterrupt(Scheduler& scheduler) : scheduler_(scheduler) {}

    /// SIGINT to the command's group; nothing to one that has ended.
    void interrupt(ChildProcess& command);
    /// SIGTERM to the command and all that it has started, and SIGKILL to what is still there a second later.
    void end(const ChildProcess& command);
    /// The command has ended, or another one begins.
    void reset();

    /// Whether the command has been interrupted and was not seen to end since.
    bool isAsked() const { return patience_ != nullptr; }
    /// Whether it goes on in spite of that.
    bool isOutlasted() const { return isOutlasted_; }

Q_SIGNALS:
    void isOutlastedChanged();

private:
    void setIsOutlasted(bool isOutlasted);

    Scheduler& scheduler_;
    /// The context of the time that is left: dropping it cancels that.
    std::unique_ptr<QObject> patience_;
    bool isOutlasted_ = false;
};

} // namespace kelm
