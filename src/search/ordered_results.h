// Results of several threads in one order.
#pragma once

#include "search/search_result.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <vector>

namespace kelm {

/// Takes in what threads find in numbered pieces of work, from 0 without a gap, and passes it on in the order of the
/// numbers, one result at a time, on the thread that comes by. The piece whose turn it is passes its results on as they
/// come; of the others a little is held, and whoever has more, or is far ahead, waits. Any thread.
class OrderedResults
{
public:
    /// Both are called from the threads that bring results, `isCancelled` also while they wait.
    OrderedResults(std::function<void(SearchResult)> onResult, std::function<bool()> isCancelled)
        : onResult_(std::move(onResult)), isCancelled_(std::move(isCancelled))
    {}

    /// One piece of work. The thread that made it ends it with `finish`.
    class Piece
    {
    public:
        Piece(OrderedResults& all, qint64 number) : all_(all), number_(number) {}

        void add(SearchResult result);
        void finish();

    private:
        OrderedResults& all_;
        qint64 number_;
        std::vector<SearchResult> held_;
        qsizetype heldUnits_ = 0;
        bool hasTurn_ = false;
        bool isCancelled_ = false;
    };

private:
    /// False when it was cancelled before.
    bool waitForTurn(qint64 number);
    void finish(qint64 number, std::vector<SearchResult> held);
    void passOn(std::vector<SearchResult> results);

    std::function<void(SearchResult)> onResult_;
    std::function<bool()> isCancelled_;
    std::mutex mutex_;
    std::condition_variable changed_;
    /// The piece whose turn it is.
    qint64 turn_ = 0;
    /// Those behind it that have ended.
    std::map<qint64, std::vector<SearchResult>> finished_;
    bool isPassingOn_ = false;
};

} // namespace kelm
