#include "search/project_search.h"

#include "platform/events/main_queue.h"
#include "platform/events/worker_pool.h"
#include "platform/files/file_url.h"
#include "search/project_scan.h"

#include <QPointer>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace kelm {

namespace {

/// The results that may lie undelivered before the walk waits, and those that one turn of the event loop takes.
constexpr qsizetype mostUndelivered = 20'000;
constexpr qsizetype batchSize = 2'000;

} // namespace

/// What workers and object share. Either may end first.
struct ProjectSearch::Run
{
    std::atomic<bool> isCancelled = false;
    std::atomic<qsizetype> tooLongFiles = 0;
    std::mutex mutex;
    std::condition_variable hasRoom;
    QList<SearchResult> undelivered;
    bool isDeliveryQueued = false;
    bool isDone = false;
};

ProjectSearch::ProjectSearch(QObject* parent) : QObject(parent) {}

ProjectSearch::~ProjectSearch()
{
    stop();
}

void ProjectSearch::stop()
{
    if (run_) {
        {
            // Not between a look at it and the wait that follows the look: nobody would wake that up.
            const std::lock_guard lock(run_->mutex);
            run_->isCancelled = true;
        }
        run_->hasRoom.notify_all();
        run_ = nullptr;
    }
}

void ProjectSearch::start(const QUrl& project, const QString& searchText)
{
    const bool wasRunning = isRunning();
    stop();
    results_.clear();
    Q_EMIT resultsCleared();
    setTooLongFiles(0);
    run_ = std::make_shared<Run>();
    const auto deliver = [this, guard = QPointer<ProjectSearch>(this), run = run_] {
        // The guard is looked at on the main thread alone.
        onMainQueue([this, guard, run] {
            if (guard) {
                take(run);
            }
        });
    };
    const auto add = [run = run_, deliver](SearchResult result) {
        std::unique_lock lock(run->mutex);
        run->hasRoom.wait(lock, [&] { return run->isCancelled || run->undelivered.size() < mostUndelivered; });
        run->undelivered.append(std::move(result));
        if (!run->isDeliveryQueued) {
            run->isDeliveryQueued = true;
            deliver();
        }
    };
    backgroundWorkers().start(
        [run = run_, add, deliver, root = folderPrefix(project), needle = LocalizedNeedle(searchText)] {
            scanProject(root, needle,
                        {.onResult = add,
                         .isCancelled = [&run] { return run->isCancelled.load(); },
                         .onTooLong = [&run] { ++run->tooLongFiles; }});
            const std::lock_guard lock(run->mutex);
            run->isDone = true;
            deliver();
        });
    if (!wasRunning) {
        Q_EMIT isRunningChanged();
    }
}

void ProjectSearch::take(const std::shared_ptr<Run>& run)
{
    if (run != run_) {
        return;
    }
    QList<SearchResult> batch;
    bool isDone = false;
    {
        const std::lock_guard lock(run->mutex);
        const qsizetype count = std::min(batchSize, run->undelivered.size());
        batch = run->undelivered.mid(0, count);
        run->undelivered.remove(0, count);
        run->isDeliveryQueued = !run->undelivered.isEmpty();
        isDone = run->isDone && run->undelivered.isEmpty();
        if (run->isDeliveryQueued) {
            onMainQueue(this, [this, run] { take(run); });
        }
    }
    run->hasRoom.notify_all();
    if (!batch.isEmpty()) {
        results_.append(batch);
        Q_EMIT resultsAdded(batch.size());
    }
    if (run == run_) {
        setTooLongFiles(run->tooLongFiles);
    }
    if (isDone && run == run_) {
        run_ = nullptr;
        Q_EMIT isRunningChanged();
    }
}

void ProjectSearch::setTooLongFiles(qsizetype count)
{
    if (std::exchange(tooLongFiles_, count) != count) {
        Q_EMIT tooLongFilesChanged();
    }
}

} // namespace kelm
