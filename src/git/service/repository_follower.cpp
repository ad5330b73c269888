#include "git/service/repository_follower.h"

#include "git/service/repository_places.h"
#include "platform/events/main_queue.h"
#include "platform/events/worker_pool.h"
#include "platform/files/file_url.h"

#include <utility>

namespace kelm {

/// What a worker is to find out, and all that it looks at.
struct RepositoryFollower::Reading
{
    std::shared_ptr<ProcessRunner> runner;
    quint64 age = 0;
    std::optional<QUrl> repository;
    /// The folder whose repository is to be opened.
    std::optional<QUrl> project;
    bool isStale = false;
    RepositorySnapshot before;

    Found operator()(const BackgroundTask::StopFlag& stop) const;
};

struct RepositoryFollower::Found
{
    quint64 age = 0;
    bool isProject = false;
    std::optional<QUrl> repository = std::nullopt;
    /// Absent where nothing was to be read, or could be.
    std::optional<RepositorySnapshot> snapshot = std::nullopt;
    QList<QByteArray> files = {};
};

namespace {

QList<QByteArray> filesOf(const QUrl& repository)
{
    return filesOfState(repositoryPlaces(filePath(repository)));
}

} // namespace

RepositoryFollower::Found RepositoryFollower::Reading::operator()(const BackgroundTask::StopFlag& stop) const
{
    Found found{.age = age, .isProject = project.has_value(), .repository = repository};
    if (project) {
        const std::optional<QString> folder = findRepository(filePath(*project));
        found.repository = folder ? std::optional(urlOfFile(*folder)) : std::nullopt;
    }
    if (!found.repository) {
        return found;
    }
    const bool isOpen = found.repository == repository;
    if (!isOpen || isStale) {
        // A git that takes long takes no place from those who compute.
        backgroundWorkers().releaseThread();
        found.snapshot =
            readSnapshot(*runner, filePath(*found.repository), isOpen ? before : RepositorySnapshot{}, stop);
        backgroundWorkers().reserveThread();
    }
    found.files = filesOf(*found.repository);
    return found;
}

RepositoryFollower::RepositoryFollower(GitService& git, Scheduler& scheduler)
    : git_(git), debounce_(scheduler, readDelay, [this] { read(); })
{
    connect(&watch_, &FileWatch::changed, this, &RepositoryFollower::noteChange);
    // The branch is the first thing that is written when a repository is opened or closed.
    connect(&git_, &GitService::branchChanged, this, &RepositoryFollower::watchRepository);
    connect(&git_, &GitService::isBusyChanged, this, [this] {
        if (isStale_) {
            readSoon();
        }
    });
}

RepositoryFollower::~RepositoryFollower() = default;

// ---- What is followed -----------------------------------------------------------------------------------------------

void RepositoryFollower::setIsShownBy(const QObject& viewer, bool isShown)
{
    if (!isShown) {
        viewers_.remove(&viewer);
        return;
    }
    if (!viewers_.contains(&viewer)) {
        viewers_.insert(&viewer);
        connect(&viewer, &QObject::destroyed, this, [this, gone = &viewer] { viewers_.remove(gone); });
    }
    if (isProjectNew_) {
        readNow();
    } else if (isStale_) {
        readSoon();
    }
}

void RepositoryFollower::watchRepository()
{
    if (watched_ == git_.repoURL()) {
        return;
    }
    watchTask_.stop();
    watch_.setFiles({});
    watched_ = git_.repoURL();
    if (!watched_) {
        return;
    }
    watchTask_.start([this, repository = *watched_](const BackgroundTask::StopFlag&) -> BackgroundTask::Delivery {
        return [this, repository, files = filesOf(repository)] { watch(repository, files); };
    });
}

void RepositoryFollower::watch(const QUrl& repository, const QList<QByteArray>& files)
{
    watchTask_.stop();
    watched_ = repository;
    watch_.setFiles(files);
}

void RepositoryFollower::noteChange()
{
    isStale_ = true;
    // Where there was no repository one may have come.
    isProjectNew_ = isProjectNew_ || (project_ && !git_.repoURL());
    readSoon();
}

void RepositoryFollower::openProject(const std::optional<QUrl>& folder)
{
    project_ = folder && folder->isLocalFile() ? folder : std::nullopt;
    isProjectNew_ = project_.has_value();
    if (task_.isRunning()) {
        // What is read of the project that was left is for nobody.
        isStale_ = true;
        task_.stop();
    }
    readNow();
}

// ---- Reading --------------------------------------------------------------------------------------------------------

void RepositoryFollower::readNow()
{
    // Whoever else opens the repository now does so first.
    onMainQueue(this, [this] { read(); });
}

void RepositoryFollower::readSoon()
{
    // Not put off by what comes meanwhile, or a busy repository would never be read.
    if (mayRead() && !debounce_.isPending()) {
        debounce_.restart();
    }
}

void RepositoryFollower::read()
{
    const bool hasWork = isProjectNew_ || (isStale_ && git_.repoURL());
    if (!hasWork || !mayRead() || task_.isRunning()) {
        return;
    }
    Reading reading{.runner = git_.runner(),
                    .age = git_.age(),
                    .repository = git_.repoURL(),
                    .project = std::exchange(isProjectNew_, false) ? project_ : std::nullopt,
                    .isStale = std::exchange(isStale_, false),
                    .before = git_.snapshot()};
    task_.start([this, reading = std::move(reading)](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        return [this, found = reading(stop)] {
            if (!take(found)) {
                isStale_ = true;
                isProjectNew_ = isProjectNew_ || found.isProject;
            }
            if (isStale_ || isProjectNew_) {
                readSoon();
            }
        };
    });
}

bool RepositoryFollower::take(const Found& found)
{
    if (found.age != git_.age() || git_.isBusy()) {
        return false;
    }
    if (!found.repository) {
        if (git_.repoURL()) {
            git_.clearState();
        }
        return true;
    }
    if (found.snapshot || found.repository == git_.repoURL()) {
        watch(*found.repository, found.files);
    }
    if (found.snapshot) {
        git_.take(*found.repository, *found.snapshot);
    }
    return true;
}

} // namespace kelm
