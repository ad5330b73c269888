// The part of running git that may happen on any thread.
#pragma once

#include "git/service/git_service.h"

#include <QPointer>

#include <functional>
#include <memory>

namespace kelm {

/// Runs processes for a service that it holds weakly. A copy may go to another thread; what is to be written to the
/// service is queued on the main thread.
class GitService::Worker
{
public:
    /// Main thread only.
    explicit Worker(GitService& service);

    /// Runs the process to its end and turns what came of it into a result.
    GitOpResult runProcess(const ProcessCommand& process) const;

    /// Queues the write of a failure's words.
    void queueError(const GitFailure& failure) const;

    /// Runs the process on the global thread pool, or does not when the service has gone by then, and calls `done` with
    /// the service, null if it has gone, and the result on the main thread.
    void runInBackground(const ProcessCommand& process,
                         std::function<void(GitService* service, const GitOpResult&)> done) const;

private:
    std::shared_ptr<ProcessRunner> runner_;
    std::weak_ptr<const bool> alive_;
    QPointer<GitService> service_;
};

} // namespace kelm
