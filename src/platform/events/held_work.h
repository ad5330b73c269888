// Work of the main thread that has to wait while the thread itself waits.
#pragma once

#include <QObject>

#include <functional>

namespace kelm {

/// While one of these lives, the main thread waits for something and only paints: what the main queue and the system's
/// scheduler bring meanwhile is kept, and runs in its order once the last of them has gone, each piece from the event
/// loop. So nothing of the program is entered a second time from inside the wait. Main thread only.
class HeldWork final
{
public:
    HeldWork();
    ~HeldWork();
    HeldWork(const HeldWork&) = delete;
    HeldWork& operator=(const HeldWork&) = delete;

    static bool isHolding();
    /// Runs `work` at once, or later if it has to wait, unless `context` is gone by then.
    static void runOrKeep(QObject* context, std::function<void()> work);
};

} // namespace kelm
