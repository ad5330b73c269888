// Starting a child process: the one place where the toolkit's process is set up.
#pragma once

#include "platform/process/process.h"

#include <QString>

#include <memory>
#include <optional>

class QProcess;

namespace kelm {

/// Where a child's outputs go in place of the toolkit's own pipes: descriptors, -1 for none.
struct ChildOutputs
{
    int standardOutput = -1;
    int standardError = -1;
};

/// Starts the child and waits until it runs; says why it could not be started. The standard input's text is not yet
/// written then. Any thread, which keeps the process.
std::optional<QString> launch(QProcess& process, const ProcessCommand& command, const ChildOutputs& outputs = {});

/// Why a child could not be started, for a person. The system does not say whether it was the folder or the program
/// that failed.
QString launchErrorText(const ProcessCommand& command, const QString& reason);

/// How a child that has ended did so.
ProcessExit exitOf(const QProcess& process);

/// Leaves the child to itself: its exit is collected when it comes. Without that, it would be killed together with
/// its object.
void leaveRunning(std::unique_ptr<QProcess> process);

} // namespace kelm
