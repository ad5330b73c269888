// What is brought to safety before the program ends.
#pragma once

#include <QObject>

#include <chrono>
#include <functional>

namespace kelm {

/// Finishes what is outstanding of something that must outlast the program, and comes back by the given time.
using Closer = std::function<void(std::chrono::steady_clock::time_point deadline)>;

/// Has `closer` called whenever the program is about to end, by whatever way it can still do something about it, for as
/// long as `owner` lives. It may be called several times, and the program may go on behind it, as after a logout that
/// somebody has called off: a closer leaves everything usable. Main thread only, and there it is called.
void onOrderlyEnd(QObject* owner, Closer closer);

/// Calls all closers in the order in which they were added; together they have a second. A call from inside a closer
/// does nothing. Main thread only.
void endInOrder();

} // namespace kelm
