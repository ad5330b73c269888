#include "editor/folding/line_set.h"

#include <algorithm>
#include <iterator>

namespace kelm {

void LineSet::insert(qsizetype first, qsizetype end)
{
    if (first >= end) {
        return;
    }
    auto run = runs_.upper_bound(first);
    if (run != runs_.begin() && std::prev(run)->second >= first) {
        --run;
        first = run->first;
    }
    while (run != runs_.end() && run->first <= end) {
        end = std::max(end, run->second);
        run = runs_.erase(run);
    }
    runs_.emplace_hint(run, first, end);
}

void LineSet::remove(qsizetype first, qsizetype end)
{
    if (first >= end) {
        return;
    }
    auto run = runs_.upper_bound(first);
    if (run != runs_.begin() && std::prev(run)->second > first) {
        --run;
    }
    while (run != runs_.end() && run->first < end) {
        const auto [runFirst, runEnd] = *run;
        run = runs_.erase(run);
        if (runFirst < first) {
            runs_.emplace(runFirst, first);
        }
        if (runEnd > end) {
            runs_.emplace(end, runEnd);
        }
    }
}

bool LineSet::contains(qsizetype line) const
{
    const auto run = runs_.upper_bound(line);
    return run != runs_.begin() && line < std::prev(run)->second;
}

qsizetype LineSet::count() const
{
    qsizetype count = 0;
    for (const auto& [first, end] : runs_) {
        count += end - first;
    }
    return count;
}

} // namespace kelm
