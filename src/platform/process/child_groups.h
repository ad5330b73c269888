// What has become of the children of this program, at its end.
#pragma once

#include <QtGlobal>

#include <chrono>

namespace kelm {

/// Notes that a child leads a process group of its own, so that what it leaves behind there is still known when it has
/// ended itself. Any thread.
void noteChildGroup(qint64 group);

/// Ends what this program has started and what that has started in turn: SIGHUP, as when a terminal closes, and SIGKILL
/// to what is still there after `grace`. It comes back when all of it has gone, and with `grace` and a moment more at
/// the latest.
///
/// What a person has detached goes on: processes of a session of their own, and those that ignore SIGHUP, as `nohup`
/// has them do. To be called once nothing is started any more.
void endChildren(std::chrono::milliseconds grace = std::chrono::seconds(1));

} // namespace kelm
