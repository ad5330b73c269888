#include "search/ordered_results.h"

#include <chrono>
#include <utility>

namespace kelm {

namespace {

/// What a piece holds that has to wait for its turn, and how far ahead of it others may be.
constexpr std::size_t mostHeld = 500;
constexpr qsizetype mostHeldUnits = qsizetype(1) << 19;
constexpr qint64 mostAhead = 32;

/// Nobody who cancels knows who waits.
constexpr std::chrono::milliseconds cancelInterval{10};

template <typename Seen>
void waitUntil(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
               const std::function<bool()>& isCancelled, Seen seen)
{
    while (!seen() && !isCancelled()) {
        changed.wait_for(lock, cancelInterval);
    }
}

} // namespace

void OrderedResults::Piece::add(SearchResult result)
{
    heldUnits_ += result.matchLine.size();
    if (isCancelled_) {
        return;
    }
    if (!hasTurn_ && (held_.size() >= mostHeld || heldUnits_ > mostHeldUnits)) {
        hasTurn_ = all_.waitForTurn(number_);
        isCancelled_ = !hasTurn_;
        all_.passOn(std::exchange(held_, {}));
    }
    if (hasTurn_) {
        all_.onResult_(std::move(result));
    } else if (!isCancelled_) {
        held_.push_back(std::move(result));
    }
}

void OrderedResults::Piece::finish()
{
    all_.finish(number_, std::exchange(held_, {}));
}

bool OrderedResults::waitForTurn(qint64 number)
{
    std::unique_lock lock(mutex_);
    waitUntil(changed_, lock, isCancelled_, [&] { return turn_ == number; });
    return turn_ == number;
}

void OrderedResults::finish(qint64 number, std::vector<SearchResult> held)
{
    std::unique_lock lock(mutex_);
    finished_.emplace(number, std::move(held));
    if (!isPassingOn_) {
        isPassingOn_ = true;
        for (auto next = finished_.find(turn_); next != finished_.end(); next = finished_.find(turn_)) {
            std::vector<SearchResult> results = std::move(next->second);
            finished_.erase(next);
            if (!results.empty()) {
                lock.unlock();
                passOn(std::move(results));
                lock.lock();
            }
            ++turn_;
        }
        isPassingOn_ = false;
        changed_.notify_all();
    }
    waitUntil(changed_, lock, isCancelled_, [&] { return number < turn_ + mostAhead; });
}

void OrderedResults::passOn(std::vector<SearchResult> results)
{
    for (SearchResult& result : results) {
        if (isCancelled_()) {
            return;
        }
        onResult_(std::move(result));
    }
}

} // namespace kelm
