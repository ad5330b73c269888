#include "git/service/git_worker.h"

#include "git/service/git_stop.h"
#include "git/service/git_transfers.h"
#include "platform/events/main_queue.h"
#include "platform/events/worker_pool.h"
#include "platform/files/utf8_file.h"
#include "platform/process/process_stop.h"

namespace kelm {

namespace {

/// Shorter outputs are read before another thread would begin with them. In UTF-16 units.
constexpr qsizetype longOutput = qsizetype(16) * 1024;

} // namespace

GitService::Worker::Worker(GitService& service) : runner_(service.runner_), alive_(service.alive_), service_(&service)
{}

ProcessResult GitService::Worker::run(const ProcessCommand& process, ProcessStop& stop) const
{
    const auto begin = std::chrono::system_clock::now();
    return wordedStop(runner_->runStoppable(process, stop), process, begin);
}

ProcessResult GitService::Worker::run(const ProcessCommand& process) const
{
    ProcessStop stop;
    return run(process, stop);
}

std::optional<QString> GitService::Worker::text(const QByteArray& output) const
{
    if (output.size() < longOutput) {
        return decodeUtf8Text(output);
    }
    std::optional<QString> text;
    runner_->compute([&] { text = decodeUtf8Text(output); });
    return text;
}

void GitService::Worker::parse(const QString& output, const std::function<void(const QString&)>& read) const
{
    if (output.size() < longOutput) {
        read(output);
    } else {
        runner_->compute([&] { read(output); });
    }
}

GitOpResult GitService::Worker::resultOf(const ProcessResult& result, const QStringList& arguments) const
{
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
    queueError({arguments, message});
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
    const auto stop = std::make_shared<ProcessStop>();
    const quint64 transfer = service_->transfers().add(gitCommandName(process), stop);
    commonWorkers().start([worker = *this, process, done = std::move(done), stop, transfer] {
        GitOpResult result = GitOpResult::failure(QStringLiteral("service deallocated"));
        if (!worker.alive_.expired()) {
            // A git that waits for the network must not take a place from those who compute.
            commonWorkers().releaseThread();
            result = worker.resultOf(worker.run(process, *stop), process.arguments);
            commonWorkers().reserveThread();
        }
        onMainQueue([service = worker.service_, done, result, transfer] {
            if (service) {
                service->transfers().remove(transfer);
            }
            done(service, result);
        });
    });
}

} // namespace kelm
