// One child together with all that it has started.
#pragma once

#include <QtGlobal>

#include <chrono>
#include <map>
#include <optional>

namespace kelm {

/// How long a process may take to end once it was asked to.
constexpr std::chrono::milliseconds timeToEnd{1000};

/// A process and what it has started, as far as that is of its session: all of its group where it leads one, and what
/// descends from it. Any thread, one at a time.
class ProcessTree
{
public:
    /// `root` is a child of this program that is still there.
    explicit ProcessTree(qint64 root);

    /// Looks again: what has lost its parent since the last look is still known.
    void look();
    /// Whether nothing of it was there at the last look.
    bool isGone() const { return known_.empty(); }
    /// Sends a signal to each that was there at the last look; to the group at once where it has one of its own.
    void signal(int number) const;

private:
    qint64 root_ = 0;
    /// Absent before the root was found. It is 0 where whoever leads it is out of sight, as in a container.
    std::optional<qint64> session_;
    bool hasGroup_ = false;
    /// When each was started, by its number.
    std::map<qint64, quint64> known_;
};

/// Ends a child with all that it has started: SIGTERM, and SIGKILL to what is still there after `grace`. Comes back at
/// once; a thread of its own looks after them. Any thread.
void endTree(qint64 root, std::chrono::milliseconds grace = timeToEnd);

} // namespace kelm
