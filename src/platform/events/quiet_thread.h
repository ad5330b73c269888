// A thread that is the program's own business.
#pragma once

#include <functional>
#include <optional>
#include <thread>

namespace kelm {

/// Starts a thread that takes none of the process's signals: they are for its other threads, even the one by which a
/// terminal stops who writes from the background. None when the system gives no more threads. From any thread.
std::optional<std::thread> startQuietThread(std::function<void()> work);

} // namespace kelm
