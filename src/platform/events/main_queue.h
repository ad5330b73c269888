// The main queue: work that is to run on the main thread, later.
#pragma once

#include <QObject>

#include <functional>

namespace kelm {

/// Queues `work` to run on the main thread after the event in hand; from any thread, in the order of the calls. Work
/// that is still queued when the application object goes is dropped. While the thread waits for a child, the work waits
/// as well (see `HeldWork`).
void onMainQueue(std::function<void()> work);

/// As `onMainQueue`, but drops the work when `context` is gone by then. `context` lives on the main thread.
void onMainQueue(QObject* context, std::function<void()> work);

/// As `onMainQueue`, but does not wait while the thread waits: for what brings the program to its end.
void onMainQueueInAnyCase(std::function<void()> work);

} // namespace kelm
