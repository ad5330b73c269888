#include "git/service/git_worker.h"

#include "platform/events/main_queue.h"
#include "platform/files/utf8_file.h"

#include <QThreadPool>

namespace kelm {

GitService::Worker::Worker(GitService& service) : runner_(service.runner_), alive_(service.alive_), service_(&service)
{}

GitOpResult GitService::Worker::runProcess(const ProcessCommand& process) const
{
    const ProcessResult result = runner_->run(process);
    if (result.launchError) {
        return GitOpResult::failure(*result.launchError);
    }
    if (result.exit.isSuccess()) {
        return GitOpResult::success();
    }
    QString message = decodeUtf8Text(result.standardError).value_or(QString());
    if (message.isEmpty()) {
        message = decodeUtf8Text(result.standardOutput).value_or(QString());
    }
    if (message.isEmpty()) {
        message = QStringLiteral("git exited %1").arg(result.exit.status);
    }
    queueError({process.arguments, message});
    return GitOpResult::failure(message);
}

void GitService::Worker::queueError(const GitFailure& failure) const
{
    onMainQueue([service = service_, failure] {
        if (service) {
            service->takeError(failure);
        }
    });
}

void GitService::Worker::runInBackground(const ProcessCommand& process,
                                         std::function<void(GitService*, const GitOpResult&)> done) const
{
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->start([worker = *this, process, done = std::move(done), pool] {
        GitOpResult result = GitOpResult::failure(QStringLiteral("service deallocated"));
        if (!worker.alive_.expired()) {
            // A git that waits for the network must not take a place from those who compute.
            pool->releaseThread();
            result = worker.runProcess(process);
            pool->reserveThread();
        }
        onMainQueue([service = worker.service_, done, result] { done(service, result); });
    });
}

} // namespace kelm
