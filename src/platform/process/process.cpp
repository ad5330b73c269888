#include "platform/process/process.h"

#include "platform/process/process_launch.h"

#include <QProcess>

#include <cerrno>

namespace kelm {

namespace {

/// False when the child does not take all of it.
bool writeAll(QProcess& process, const QByteArray& input)
{
    process.write(input);
    while (process.bytesToWrite() > 0) {
        if (!process.waitForBytesWritten(-1)) {
            return false;
        }
    }
    process.closeWriteChannel();
    return true;
}

class SystemProcessRunner final : public ProcessRunner
{
public:
    ProcessResult run(const ProcessCommand& command) override
    {
        auto process = std::make_unique<QProcess>();
        if (const std::optional<QString> error = launch(*process, command)) {
            return {.launchError = error};
        }
        if (command.standardInput && !writeAll(*process, *command.standardInput)) {
            leaveRunning(std::move(process));
            return {.inputError = qt_error_string(EPIPE)};
        }
        process->waitForFinished(-1);
        return {.exit = exitOf(*process),
                .standardOutput = process->readAllStandardOutput(),
                .standardError = process->readAllStandardError()};
    }
};

} // namespace

ProcessRunner& ProcessRunner::system()
{
    static SystemProcessRunner runner;
    return runner;
}

} // namespace kelm
