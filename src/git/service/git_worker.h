// The part of running git that may happen on any thread.
#pragma once

#include "git/service/git_service.h"

#include <QPointer>

#include <functional>
#include <memory>

namespace kelm {

class ProcessStop;

/// Runs processes for a service that it holds weakly. A copy may go to another thread; what is to be written to the
/// service is queued on the main thread.
class GitService::Worker
{
public:
    /// Main thread only.
    explicit Worker(GitService& service);

    /// Runs the process to its end, or until `stop` ends it, in which case its words say so.
    ProcessResult run(const ProcessCommand& process, ProcessStop& stop) const;
    ProcessResult run(const ProcessCommand& process) const;
    /// The text of an output, absent where it is not UTF-8; for a long one the window is painted meanwhile.
    std::optional<QString> text(const QByteArray& output) const;
    /// Has an output read, a long one in such a way that the window is painted meanwhile.
    void parse(const QString& output, const std::function<void(const QString&)>& read) const;
    /// Turns what came of git with these arguments into a result.
    GitOpResult resultOf(const ProcessResult& result, const QStringList& arguments) const;

    /// Queues the write of a failure's words.
    void queueError(const GitFailure& failure) const;

    /// Runs the process on the global thread pool, or does not when the service has gone by then, and calls `done` with
    /// the service, null if it has gone, and the result on the main thread. It is one of the service's transfers
    /// meanwhile.
    void runInBackground(const ProcessCommand& process,
                         std::function<void(GitService* service, const GitOpResult&)> done) const;

private:
    std::shared_ptr<ProcessRunner> runner_;
    std::weak_ptr<const bool> alive_;
    QPointer<GitService> service_;
};

} // namespace kelm
