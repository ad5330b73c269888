#include "text/find/find_scan.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kelm {

FindScan::FindScan(FindQuery query)
    : query_(std::move(query)), state_(query_.isEmpty() ? State::complete : State::searching)
{}

FindScan::State FindScan::advance(QStringView text, qsizetype units)
{
    if (state_ != State::searching) {
        return state_;
    }
    const qsizetype stop =
        searchedTo_ + std::clamp<qsizetype>(units, 1, std::max<qsizetype>(text.size() - searchedTo_, 1));
    // A match that begins before the stop may end behind it.
    const qsizetype end = std::min(stop + std::max<qsizetype>(query_.reach() - 1, 0), text.size());
    const auto ending = query_.enumerate(text, searchedTo_, end, [&](TextRange match) {
        matches_.push_back(match);
        searchedTo_ = FindQuery::behind(text, match);
        return qsizetype(matches_.size()) < mostMatches && searchedTo_ < stop;
    });
    if (qsizetype(matches_.size()) >= mostMatches) {
        state_ = State::tooMany;
    } else if (ending == FindQuery::Ending::gaveUp) {
        state_ = State::gaveUp;
    } else if (ending == FindQuery::Ending::complete) {
        // A pattern was searched to the end of the text, a plain text to the stop.
        searchedTo_ = std::max(searchedTo_, query_.reach() > 0 ? stop : text.size());
        state_ = query_.reach() == 0 || stop >= text.size() ? State::complete : State::searching;
    } else if (searchedTo_ > text.size()) {
        state_ = State::complete;
    }
    return state_;
}

FindScan::State FindScan::finish(QStringView text)
{
    while (state_ == State::searching) {
        advance(text, std::numeric_limits<qsizetype>::max());
    }
    return state_;
}

std::optional<qsizetype> FindScan::nextFrom(QStringView text, qsizetype offset)
{
    const auto firstBehind = [&] {
        return std::lower_bound(matches_.begin(), matches_.end(), offset,
                                [](TextRange match, qsizetype wanted) { return match.location < wanted; });
    };
    constexpr qsizetype step = 1 << 20;
    while (state_ == State::searching && firstBehind() == matches_.end()) {
        advance(text, std::max(step, offset - searchedTo_));
    }
    if (matches_.empty()) {
        return {};
    }
    const auto next = firstBehind();
    return next == matches_.end() ? 0 : next - matches_.begin();
}

std::optional<qsizetype> FindScan::previousFrom(QStringView text, qsizetype offset)
{
    while (state_ == State::searching && searchedTo_ < offset) {
        advance(text, offset - searchedTo_);
    }
    const auto lastBefore = [&]() -> std::optional<qsizetype> {
        auto behind = std::partition_point(matches_.begin(), matches_.end(), [offset](TextRange match) {
            return match.end() <= offset && match.location < offset;
        });
        return behind == matches_.begin() ? std::nullopt : std::optional(behind - matches_.begin() - 1);
    };
    if (const auto found = lastBefore()) {
        return found;
    }
    finish(text);
    return matches_.empty() ? std::nullopt : std::optional(qsizetype(matches_.size()) - 1);
}

std::optional<qsizetype> FindScan::indexOf(TextRange match) const
{
    const auto found = std::lower_bound(matches_.begin(), matches_.end(), match.location,
                                        [](TextRange other, qsizetype wanted) { return other.location < wanted; });
    return found != matches_.end() && *found == match ? std::optional(found - matches_.begin()) : std::nullopt;
}

} // namespace kelm
