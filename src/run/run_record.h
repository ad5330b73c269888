// What is told of a run beside its output.
#pragma once

#include "platform/process/process.h"

#include <QString>

#include <chrono>
#include <optional>

namespace kelm {

/// One run that has begun.
struct RunRecord
{
    /// The file, or the text without one, by the name that the person knows.
    QString name = {};
    std::chrono::steady_clock::time_point began = {};
    /// How it ended, and how long it lasted; absent while it goes on.
    std::optional<ProcessExit> exit = std::nullopt;
    std::chrono::milliseconds lasted{0};
    /// It failed, and complained that there was nothing to read.
    bool missedInput = false;
};

/// "12 s", "3 min 5 s" or "1 h 0 min".
QString durationText(std::chrono::seconds duration);

/// "Running hello.py … 12 s".
QString runningText(const RunRecord& run, std::chrono::seconds duration);

/// "hello.py ended with 3 after 1.2 s", or "hello.py was ended by SIGTERM after 1.2 s", of a run that has ended.
QString endedText(const RunRecord& run);

} // namespace kelm
