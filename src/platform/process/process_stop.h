// Ending a child that another thread runs to its end.
#pragma once

#include <QtGlobal>

#include <chrono>
#include <mutex>

namespace kelm {

/// The way to stop one child together with all that it has started: SIGTERM to its process group, and SIGKILL to what
/// is still there of the group two seconds later, whether or not the child itself has ended by then. Any thread.
class ProcessStop final
{
public:
    /// How long the group has to end by itself.
    static constexpr std::chrono::seconds grace{2};

    /// Asks the child to stop, also one that starts later. Comes back at once; a second call does nothing.
    void stop();
    /// Whether somebody has asked.
    bool isAsked() const;

    /// To be called by who runs the child, with the number of its group, before the child's exit is collected.
    void noteStart(qint64 group);
    /// To be called when it has: from then on there may be no such group.
    void noteEnd();

private:
    mutable std::mutex mutex_;
    bool isAsked_ = false;
    /// 0 while no child runs.
    qint64 group_ = 0;
};

} // namespace kelm
