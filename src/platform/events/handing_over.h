// The order between two threads, one of which leaves something for the other.
#pragma once

#include <atomic>

namespace kelm {

/// All that was written before `leave` is there behind a `take` that comes later, on whichever thread. The toolkit's
/// queues see to that as well, but by means that a tool that looks for races does not see. Any thread; neither waits.
class HandingOver
{
public:
    void leave() { times_.fetch_add(1, std::memory_order_release); }
    void take() const { static_cast<void>(times_.load(std::memory_order_acquire)); }

private:
    std::atomic<unsigned> times_ = 0;
};

} // namespace kelm
