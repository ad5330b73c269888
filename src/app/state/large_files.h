// Files that are read while the window goes on.
#pragma once

#include "app/state/notices.h"
#include "app/state/text_file.h"
#include "platform/events/background_task.h"

#include <QList>
#include <QUrl>

#include <functional>
#include <optional>

namespace kelm {

/// Reads files that take long, one after the other, on a worker. A notice names the one that is read and tells how far
/// it is; it can be ended, and then the next file begins. Main thread only.
class LargeFiles
{
public:
    /// From this size on, in bytes, a file takes so long that a person would think the window had stopped.
    static constexpr qint64 leastSize = 200'000'000;

    using Result = std::variant<TextTree, FileError>;
    /// Takes what a file holds, or why it could not be read; nothing for one that was ended.
    using Deliver = std::function<void(const QUrl& url, std::optional<Result> result)>;

    /// The notices outlive it.
    LargeFiles(Notices& notices, Deliver deliver);
    ~LargeFiles();

    /// `ended` is told of each file when what was read of it has been delivered, or nothing of it.
    void onEnded(std::function<void(const QUrl& url)> ended) { ended_ = std::move(ended); }

    /// Another bound than `leastSize`; for tests.
    void setLeastSize(qint64 size) { leastSize_ = size; }

    /// Whether a file is so large. One that cannot be looked at is not.
    bool isLarge(const QUrl& url) const;
    /// Whether a file is being read or waits for it.
    bool contains(const QUrl& url) const { return reading_ == url || waiting_.contains(url); }
    /// Reads a file after those that wait.
    void read(const QUrl& url);

private:
    void readNext();
    void stop();
    void finish(std::optional<Result> result);

    Notices& notices_;
    const Deliver deliver_;
    std::function<void(const QUrl& url)> ended_;
    qint64 leastSize_ = leastSize;
    QList<QUrl> waiting_;
    std::optional<QUrl> reading_;
    Notices::Id notice_ = 0;
    BackgroundTask task_;
};

} // namespace kelm
