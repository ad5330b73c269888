// What a git that somebody has stopped leaves behind.
#pragma once

#include "platform/process/process.h"

#include <QString>

#include <chrono>

namespace kelm {

/// What a person calls a command of git, such as "git commit".
QString gitCommandName(const ProcessCommand& command);

/// The result with words that say so when the child was stopped, and with no output then: what it printed until then
/// is no answer. A lock on the index that has come since `begin`, and that nobody else will take away, is named.
/// A result of another kind stays as it is. Any thread.
ProcessResult wordedStop(ProcessResult result, const ProcessCommand& command,
                         std::chrono::system_clock::time_point begin);

} // namespace kelm
