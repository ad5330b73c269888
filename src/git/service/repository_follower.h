// A snapshot that stays true without being asked.
#pragma once

#include "git/service/git_service.h"
#include "platform/events/background_task.h"
#include "platform/events/file_watch.h"
#include "platform/events/scheduler.h"

#include <QObject>
#include <QSet>
#include <QUrl>

#include <chrono>
#include <optional>

namespace kelm {

/// Reads the open repository anew when its index, its HEAD or its references change on the disk, and when somebody says
/// that its files may have changed; and opens the repository of a folder without making the window wait. Only while
/// somebody shows what is read, and never while a command of the service runs.
///
/// git is asked on a worker, without its optional locks, and what it said is taken in one go. It is dropped, and read
/// again, when the service has run a command or opened another repository meanwhile. Nobody asked for it, so that a
/// failure says nothing: the snapshot stays as it was. While nothing changes no git is started. Main thread only.
class RepositoryFollower final : public QObject
{
    Q_OBJECT

public:
    /// What changes at once is read at once, when git has had the time to end.
    static constexpr std::chrono::milliseconds readDelay{300};

    /// Both outlive it.
    RepositoryFollower(GitService& git, Scheduler& scheduler);
    ~RepositoryFollower() override;

    /// Whether `viewer` shows the snapshot, from now on until it says otherwise or is gone. Who begins to may see an
    /// old one for a moment.
    void setIsShownBy(const QObject& viewer, bool isShown);

    /// Files of the working tree may have changed.
    void noteChange();
    /// Opens the repository that holds a folder, or none if there is none. What has been opened there by then is not
    /// read once more. Without a folder what is open stays.
    void openProject(const std::optional<QUrl>& folder);

    /// Whether nothing is being read, nor waits for it.
    bool isSettled() const { return !task_.isRunning() && !watchTask_.isRunning() && !debounce_.isPending(); }

private:
    struct Reading;
    struct Found;

    /// Watches the files of the repository that is open now.
    void watchRepository();
    void watch(const QUrl& repository, const QList<QByteArray>& files);
    bool mayRead() const { return !viewers_.isEmpty() && !git_.isBusy(); }
    void readNow();
    void readSoon();
    void read();
    /// Takes what was read; false when it is too old.
    bool take(const Found& found);

    GitService& git_;
    FileWatch watch_;
    Debounce debounce_;
    BackgroundTask task_;
    BackgroundTask watchTask_;
    QSet<const QObject*> viewers_;
    /// The repository whose files are watched.
    std::optional<QUrl> watched_;
    /// The folder that was opened last.
    std::optional<QUrl> project_;
    /// Whether its repository is still to be opened.
    bool isProjectNew_ = false;
    /// Whether anything may have changed since the last reading began.
    bool isStale_ = false;
};

} // namespace kelm
