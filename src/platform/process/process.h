// Child processes: what to start, and running one to its end.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace kelm {

class ProcessStop;

/// A child process to be started. A plain value, so that a test can compare what would run.
struct ProcessCommand
{
    /// The path of the executable; it is not searched for.
    QString program = {};
    /// What follows the program's own name. No shell is involved and nothing is quoted.
    QStringList arguments = {};
    /// Where the child runs; empty for the application's own working directory.
    QString workingDirectory = {};
    /// The whole environment of the child; absent for the application's own, unchanged.
    std::optional<QMap<QString, QString>> environment = std::nullopt;
    /// What the child reads from its standard input; absent forwards the application's own standard input.
    std::optional<QByteArray> standardInput = std::nullopt;
    /// Whether the child leads a process group of its own, so that it can be ended with all that it started.
    bool ownGroup = false;
    /// Whether reading from a terminal fails for the child and all that it starts. Otherwise the system stops a group
    /// that reads there from the background, and nobody sees that it waits.
    bool readsNoTerminal = false;

    bool operator==(const ProcessCommand&) const = default;
};

/// How a child ended.
struct ProcessExit
{
    /// The exit status, or the number of the signal that ended the child.
    int status = 0;
    bool bySignal = false;

    bool isSuccess() const { return status == 0 && !bySignal; }
    bool operator==(const ProcessExit&) const = default;
};

/// What came of running a child to its end.
struct ProcessResult
{
    /// Present when the child could not be started; nothing else holds then.
    std::optional<QString> launchError = std::nullopt;
    /// Present when the child did not take all of its standard input; it was not waited for then.
    std::optional<QString> inputError = std::nullopt;
    ProcessExit exit = {};
    /// Whether it failed because somebody stopped it.
    bool isStopped = false;
    QByteArray standardOutput = {};
    QByteArray standardError = {};

    bool operator==(const ProcessResult&) const = default;
};

/// Runs children to their end, behind an interface so that a test can record and answer instead.
class ProcessRunner
{
public:
    virtual ~ProcessRunner() = default;

    /// Starts the child and blocks until it has ended, from any thread. Both outputs are read meanwhile, so the child
    /// never waits on a full pipe; what it wrote before it ended is in the result. A process that the child leaves
    /// behind with the pipes in its hands is not waited for.
    virtual ProcessResult run(const ProcessCommand& command) = 0;

    /// The same for a child that leads a group of its own and reads from no terminal, until it ends or `stop` ends it.
    /// A runner that starts no real process need not heed it.
    virtual ProcessResult runStoppable(const ProcessCommand& command, ProcessStop& stop);

    /// Does work for a caller that waits for it, such as reading a long output: on the caller's thread, or beside it
    /// for a runner whose callers paint meanwhile. The work is done when this comes back.
    virtual void compute(const std::function<void()>& work) { work(); }

    /// The runner that starts real processes.
    static ProcessRunner& system();
    /// The same for those that share theirs with work on other threads.
    static std::shared_ptr<ProcessRunner> sharedSystem() { return {std::shared_ptr<ProcessRunner>(), &system()}; }
};

} // namespace kelm
