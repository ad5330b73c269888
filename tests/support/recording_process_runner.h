// A process runner that writes down what it is asked to run and answers without starting anything.
#pragma once

#include "platform/process/process.h"

#include <QList>

#include <functional>
#include <mutex>

namespace kelm::test {

/// Answers with `answer`, which succeeds with no output unless a test says otherwise. Any thread.
class RecordingProcessRunner final : public ProcessRunner
{
public:
    ProcessResult run(const ProcessCommand& command) override
    {
        std::function<ProcessResult(const ProcessCommand&)> answerNow;
        {
            const std::scoped_lock lock(mutex_);
            commands_.append(command);
            answerNow = answer_;
        }
        return answerNow ? answerNow(command) : ProcessResult{};
    }

    void setAnswer(std::function<ProcessResult(const ProcessCommand&)> answer)
    {
        const std::scoped_lock lock(mutex_);
        answer_ = std::move(answer);
    }

    /// What was run since the last call, in order.
    QList<ProcessCommand> takeCommands()
    {
        const std::scoped_lock lock(mutex_);
        return std::exchange(commands_, {});
    }

    /// The same, each command as its arguments.
    QList<QStringList> takeArguments()
    {
        QList<QStringList> arguments;
        for (const ProcessCommand& command : takeCommands()) {
            arguments.append(command.arguments);
        }
        return arguments;
    }

private:
    std::mutex mutex_;
    QList<ProcessCommand> commands_;
    std::function<ProcessResult(const ProcessCommand&)> answer_;
};

/// An output with a null character for each "#".
inline QByteArray withNulls(QByteArray text)
{
    return text.replace('#', '\0');
}

/// What came of a child that printed `output` and `error` and exited with `status`.
inline ProcessResult ended(int status, const QByteArray& output = {}, const QByteArray& error = {})
{
    return {.exit = {status, false}, .standardOutput = output, .standardError = error};
}

} // namespace kelm::test
