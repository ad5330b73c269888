#include "search/project_scan.h"

#include "platform/files/native_path.h"
#include "search/ordered_results.h"
#include "search/project_walk.h"

#include <algorithm>
#include <mutex>
#include <thread>
#include <vector>

namespace kelm {

namespace {

/// So many files are taken at a time: few enough that the threads end together, and enough that taking them costs
/// nothing.
constexpr qsizetype filesOfPiece = 32;
/// More would wait for the disk, or take the machine from the person.
constexpr unsigned mostThreads = 4;

class Scan
{
public:
    Scan(const QString& root, const LocalizedNeedle& needle, const ProjectScanCallbacks& callbacks,
         FileSearch::Limits limits)
        : needle_(needle),
          callbacks_(callbacks),
          limits_(limits),
          walk_(nativePath(root.endsWith(u'/') ? root : root + u'/'), callbacks.isCancelled),
          results_(callbacks.onResult, callbacks.isCancelled)
    {}

    /// Searches pieces of the project until there is none left; on as many threads as like.
    void work()
    {
        FileSearch search(needle_, callbacks_.isCancelled, limits_);
        for (;;) {
            const auto [number, files] = take();
            if (files.isEmpty()) {
                return;
            }
            OrderedResults::Piece piece(results_, number);
            const auto add = [&piece](SearchResult result) { piece.add(std::move(result)); };
            for (const QByteArray& file : files) {
                if (callbacks_.isCancelled()) {
                    return;
                }
                if (search.search(file, add) == FileSearch::Outcome::tooLong && callbacks_.onTooLong) {
                    callbacks_.onTooLong();
                }
            }
            piece.finish();
        }
    }

private:
    std::pair<qint64, QList<QByteArray>> take()
    {
        const std::lock_guard lock(mutex_);
        return {nextNumber_++, walk_.next(filesOfPiece)};
    }

    const LocalizedNeedle& needle_;
    const ProjectScanCallbacks& callbacks_;
    FileSearch::Limits limits_;
    std::mutex mutex_;
    ProjectWalk walk_;
    qint64 nextNumber_ = 0;
    OrderedResults results_;
};

} // namespace

void scanProject(const QString& root, const LocalizedNeedle& needle, const ProjectScanCallbacks& callbacks,
                 FileSearch::Limits limits)
{
    Scan scan(root, needle, callbacks, limits);
    std::vector<std::thread> helpers;
    for (unsigned count = std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads); count > 1; --count) {
        helpers.emplace_back([&scan] { scan.work(); });
    }
    scan.work();
    for (std::thread& helper : helpers) {
        helper.join();
    }
}

} // namespace kelm
