#include "platform/process/process.h"

#include "platform/process/process_launch.h"

#include <cerrno>
#include <poll.h>

namespace kelm {

namespace {

/// One child on its way to its end: the three pipes served in one loop, so that neither side waits for the other.
class Run
{
public:
    Run(LaunchedProcess child, const QByteArray& input) : child_(std::move(child)), input_(input) {}

    ProcessResult toEnd()
    {
        waitForQuickEnd();
        while (!ended_ && !result_.inputError) {
            step();
        }
        if (child_.standardInput.isOpen() && !result_.inputError) {
            failInput(EPIPE);
        }
        if (result_.inputError) {
            reapLater(child_.pid);
            return std::move(result_);
        }
        readAvailable(child_.standardOutput, result_.standardOutput);
        readAvailable(child_.standardError, result_.standardError);
        result_.exit = reap(child_.pid);
        return std::move(result_);
    }

private:
    /// Most commands end soon and write less than a pipe holds: looking at the pipes meanwhile would only wake this
    /// thread for each piece of output. A child that writes more waits this little while, once.
    void waitForQuickEnd()
    {
        constexpr int milliseconds = 10;
        pollfd exit{child_.exitNotice.number(), POLLIN, 0};
        ended_ = !child_.standardInput.isOpen() && ::poll(&exit, 1, milliseconds) > 0;
    }

    void step()
    {
        // A closed descriptor is -1, which the call passes over.
        pollfd waits[] = {{child_.standardInput.number(), POLLOUT, 0},
                          {child_.standardOutput.number(), POLLIN, 0},
                          {child_.standardError.number(), POLLIN, 0},
                          {child_.exitNotice.number(), POLLIN, 0}};
        if (::poll(waits, std::size(waits), -1) < 0) {
            return;
        }
        if (waits[0].revents != 0) {
            writeSome();
        }
        if (waits[1].revents != 0 && !readOnce(child_.standardOutput, result_.standardOutput)) {
            child_.standardOutput.close();
        }
        if (waits[2].revents != 0 && !readOnce(child_.standardError, result_.standardError)) {
            child_.standardError.close();
        }
        ended_ = waits[3].revents != 0;
    }

    void writeSome()
    {
        if (const int error = writeOnce(child_.standardInput, input_, written_)) {
            failInput(error);
        } else if (written_ == input_.size()) {
            child_.standardInput.close();
        }
    }

    void failInput(int error) { result_.inputError = qt_error_string(error); }

    LaunchedProcess child_;
    const QByteArray& input_;
    qsizetype written_ = 0;
    bool ended_ = false;
    ProcessResult result_;
};

class SystemProcessRunner final : public ProcessRunner
{
public:
    ProcessResult run(const ProcessCommand& command) override
    {
        auto launched = launch(command);
        if (const QString* error = std::get_if<QString>(&launched)) {
            return {.launchError = *error};
        }
        return Run(std::move(std::get<LaunchedProcess>(launched)), command.standardInput.value_or(QByteArray()))
            .toEnd();
    }
};

} // namespace

ProcessRunner& ProcessRunner::system()
{
    static SystemProcessRunner runner;
    return runner;
}

} // namespace kelm
