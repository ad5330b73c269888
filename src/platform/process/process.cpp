#include "platform/process/process.h"

#include "platform/process/process_launch.h"
#include "platform/process/process_stop.h"

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
    ProcessResult run(const ProcessCommand& command) override { return run(command, nullptr); }

    ProcessResult runStoppable(const ProcessCommand& command, ProcessStop& stop) override
    {
        ProcessCommand leader = command;
        leader.ownGroup = true;
        leader.readsNoTerminal = true;
        ProcessResult result = run(leader, &stop);
        result.isStopped = stop.isAsked() && !result.launchError && (result.inputError || !result.exit.isSuccess());
        return result;
    }

private:
    static ProcessResult run(const ProcessCommand& command, ProcessStop* stop)
    {
        auto process = std::make_unique<QProcess>();
        if (const std::optional<QString> error = launch(*process, command)) {
            return {.launchError = error};
        }
        if (stop != nullptr) {
            stop->noteStart(process->processId());
        }
        ProcessResult result = runToEnd(std::move(process), command);
        if (stop != nullptr) {
            stop->noteEnd();
        }
        return result;
    }

    static ProcessResult runToEnd(std::unique_ptr<QProcess> process, const ProcessCommand& command)
    {
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

ProcessResult ProcessRunner::runStoppable(const ProcessCommand& command, ProcessStop& /*stop*/)
{
    return run(command);
}

ProcessRunner& ProcessRunner::system()
{
    static SystemProcessRunner runner;
    return runner;
}

} // namespace kelm
