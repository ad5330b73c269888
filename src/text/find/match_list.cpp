#include "text/find/match_list.h"

#include <algorithm>

namespace kelm {

std::vector<TextRange> MatchList::between(qsizetype first, qsizetype last) const
{
    std::vector<TextRange> ranges;
    ranges.reserve(static_cast<std::size_t>(std::max<qsizetype>(last - first, 0)));
    for (qsizetype index = first; index < last; ++index) {
        ranges.push_back(at(index));
    }
    return ranges;
}

qsizetype MatchList::firstEndingBehind(qsizetype offset) const
{
    // Of those that begin before it the last alone can end behind it.
    const qsizetype from = firstFrom(offset);
    if (from > 0 && at(from - 1).end() > offset) {
        return from - 1;
    }
    return from < size() && at(from) == TextRange{offset, 0} ? from + 1 : from;
}

void MatchList::replace(qsizetype first, qsizetype last, const std::vector<TextRange>& added)
{
    std::vector<qsizetype> starts;
    starts.reserve(added.size());
    for (const TextRange range : added) {
        starts.push_back(range.location);
    }
    starts_.replace(first, last - first, starts);
    const qsizetype common = std::min(last - first, qsizetype(added.size()));
    const auto place = lengths_.begin() + first;
    std::transform(added.begin(), added.begin() + common, place, [](TextRange range) { return range.length; });
    if (last - first > common) {
        lengths_.erase(place + common, lengths_.begin() + last);
        return;
    }
    std::vector<qsizetype> lengths;
    lengths.reserve(added.size());
    std::transform(added.begin() + common, added.end(), std::back_inserter(lengths),
                   [](TextRange range) { return range.length; });
    lengths_.insert(place + common, lengths.begin(), lengths.end());
}

} // namespace kelm
