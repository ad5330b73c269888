#include "text/find/find_scan.h"

#include "text/find/near_matches.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kelm {

namespace {

/// How far behind an edit a plain text is searched at once for the place from which the matches are the old ones.
constexpr qsizetype longestJoining = 1 << 18;

} // namespace

FindScan::FindScan(FindQuery query)
    : query_(std::move(query)), state_(query_.isEmpty() ? State::complete : State::searching)
{}

FindScan::State FindScan::advance(const TextTree& text, qsizetype units)
{
    if (state_ != State::searching) {
        return state_;
    }
    const qsizetype stop =
        searchedTo_ + std::clamp<qsizetype>(units, 1, std::max<qsizetype>(text.length() - searchedTo_, 1));
    // A match that begins before the stop may end behind it.
    const qsizetype end = std::min(stop + std::max<qsizetype>(query_.reach() - 1, 0), text.length());
    std::vector<TextRange> found;
    qsizetype searchedTo = searchedTo_;
    const auto ending = query_.enumerate(text, searchedTo_, end, [&](TextRange match) {
        found.push_back(match);
        searchedTo = FindQuery::behind(text, match);
        return known_ + qsizetype(found.size()) < mostMatches && (searchedTo < stop || stop >= text.length());
    });
    const bool isThrough = ending == FindQuery::Ending::complete;
    if (isThrough) {
        // A pattern was searched to the end of the text, a plain text to the stop.
        searchedTo = std::max(searchedTo, query_.isPattern() ? text.length() : stop);
    }
    add(found, searchedTo);
    if (ending == FindQuery::Ending::gaveUp) {
        endAs(State::gaveUp);
    } else if (searchedTo > text.length() || (isThrough && searchedTo == text.length())) {
        endAs(State::complete);
    }
    return state_;
}

FindScan::State FindScan::finish(const TextTree& text)
{
    while (state_ == State::searching) {
        advance(text, std::numeric_limits<qsizetype>::max());
    }
    return state_;
}

FindScan::State FindScan::tryPattern(const TextTree& text, qsizetype mostPlaces)
{
    if (state_ != State::searching) {
        return state_;
    }
    const auto search = query_.patternSearch(text, searchedTo_);
    search->setInterruption([&mostPlaces](int work, qsizetype) { return (mostPlaces -= work) < 0; });
    std::vector<TextRange> found;
    qsizetype searchedTo = searchedTo_;
    auto ending = RegularExpression::Ending::stopped;
    while (mostPlaces-- > 0 && known_ + qsizetype(found.size()) < mostMatches) {
        const RegularExpressionMatch* const match = search->next();
        if (match == nullptr) {
            ending = search->ending();
            break;
        }
        found.push_back({match->location(), match->length()});
        searchedTo = FindQuery::behind(text, found.back());
    }
    add(found, searchedTo);
    // Behind an empty match at the end there is none; a search that began there would find that one again.
    if (ending == RegularExpression::Ending::complete || searchedTo > text.length()) {
        endAs(State::complete);
    } else if (ending == RegularExpression::Ending::gaveUp) {
        endAs(State::gaveUp);
    }
    return state_;
}

void FindScan::take(const FindRun::Portion& portion)
{
    if (state_ != State::searching) {
        return;
    }
    add(portion.matches, portion.searchedTo);
    if (portion.ending != FindQuery::Ending::stopped) {
        endAs(portion.ending == FindQuery::Ending::complete ? State::complete : State::gaveUp);
    }
}

void FindScan::add(const std::vector<TextRange>& found, qsizetype searchedTo)
{
    const qsizetype presumed = std::max(matches_.firstFrom(searchedTo), known_);
    if (known_ + qsizetype(found.size()) < mostMatches) {
        matches_.replace(known_, presumed, found);
        known_ += qsizetype(found.size());
        searchedTo_ = searchedTo;
        return;
    }
    matches_.replace(known_, presumed, {found.begin(), found.begin() + (mostMatches - known_)});
    forgetFrom(mostMatches, matches_.at(mostMatches - 1).end());
    state_ = State::tooMany;
}

void FindScan::endAs(State state)
{
    if (state_ == State::searching) {
        state_ = state;
        matches_.cutTo(known_);
    }
}

void FindScan::forgetFrom(qsizetype index, qsizetype searchedTo)
{
    matches_.cutTo(index);
    known_ = index;
    searchedTo_ = searchedTo;
}

void FindScan::presume(TextRange range, const std::vector<TextRange>& matches)
{
    if (state_ != State::searching) {
        return;
    }
    const qsizetype from = std::max(range.location, searchedTo_);
    std::vector<TextRange> unknown;
    std::copy_if(matches.begin(), matches.end(), std::back_inserter(unknown),
                 [from](TextRange match) { return match.location >= from; });
    // One that was presumed before may run over into those.
    const qsizetype end = unknown.empty() ? range.end() : std::max(range.end(), unknown.back().end());
    const qsizetype first = std::max(matches_.firstEndingBehind(from), known_);
    matches_.replace(first, std::max(matches_.firstFrom(end), first), unknown);
}

void FindScan::edited(const TextTree& text, const TextEdit& edit)
{
    if (query_.isEmpty()) {
        return;
    }
    if (!query_.isPattern()) {
        editedPlainText(text, edit);
        return;
    }
    const qsizetype first = matches_.firstEndingBehind(edit.range.location);
    const qsizetype last = std::max(matches_.firstFrom(edit.range.end()), first);
    matches_.replace(first, last, {});
    matches_.shift(first, edit.changeInLength());
    known_ = 0;
    searchedTo_ = 0;
    state_ = State::searching;
}

void FindScan::editedPlainText(const TextTree& text, const TextEdit& edit)
{
    constexpr qsizetype context = LiteralSearch::context;
    const qsizetype length = query_.reach();
    const qsizetype start = edit.range.location;
    if (start >= searchedTo_ + length + context) {
        return;
    }
    // The last match that the edit cannot have changed, and the first place at which it can have made one.
    const qsizetype first = matches_.firstEndingBehind(start - context);
    qsizetype at = std::max(first > 0 ? matches_.at(first - 1).end() : 0, start - context - length);
    const qsizetype giveUpAt = at + edit.newLength + longestJoining + 2 * length;
    const qsizetype searchedTo = std::exchange(searchedTo_, at);
    const State before = std::exchange(state_, State::searching);
    std::vector<TextRange> found;
    while (edit.newLength <= longestJoining && at <= giveUpAt) {
        // Where no match that stood there goes over and no match that stands there now begins before, both go on alike.
        qsizetype joint = std::max(at - edit.changeInLength(), edit.range.end() + context);
        qsizetype last = matches_.firstEndingBehind(joint);
        if (last < matches_.size() && matches_.at(last).location < joint) {
            joint = matches_.at(last++).end();
        }
        if (joint > searchedTo) {
            break;
        }
        std::optional<TextRange> next;
        const qsizetype end = joint + edit.changeInLength() + length - 1;
        query_.literal()->enumerate(text, TextRange::between(at, end), [&next](TextRange match) {
            next = match;
            return false;
        });
        if (!next) {
            matches_.replace(first, last, found);
            matches_.shift(first + qsizetype(found.size()), edit.changeInLength());
            known_ = matches_.size();
            searchedTo_ = searchedTo + edit.changeInLength();
            if (known_ >= mostMatches) {
                forgetFrom(mostMatches, matches_.at(mostMatches - 1).end());
                state_ = State::tooMany;
            } else if (before == State::complete) {
                state_ = before;
            }
            return;
        }
        found.push_back(*next);
        at = next->end();
    }
    // What stands further on is found by the steps that follow.
    forgetFrom(first, searchedTo_);
    add(found, at);
}

std::vector<TextRange> FindScan::matchesIn(const TextTree& text, TextRange range) const
{
    const qsizetype first = matches_.firstEndingBehind(range.location - 1);
    std::vector<TextRange> matches = matches_.between(first, matches_.firstFrom(range.end() + 1));
    if (state_ == State::searching && !query_.isPattern() && range.end() >= searchedTo_) {
        for (const TextRange match : matchesNear(*query_.literal(), text, range)) {
            if (match.location >= searchedTo_) {
                matches.push_back(match);
            }
        }
    }
    return matches;
}

bool FindScan::knowsNextFrom(qsizetype offset) const
{
    return state_ != State::searching || matches_.firstFrom(offset) < known_;
}

bool FindScan::knowsPreviousFrom(qsizetype offset) const
{
    return state_ != State::searching || (searchedTo_ >= offset && lastBefore(offset));
}

std::optional<qsizetype> FindScan::nextFrom(const TextTree& text, qsizetype offset)
{
    constexpr qsizetype step = 1 << 20;
    while (!knowsNextFrom(offset)) {
        advance(text, std::max(step, offset - searchedTo_));
    }
    if (known_ == 0) {
        return {};
    }
    const qsizetype next = matches_.firstFrom(offset);
    return next < known_ ? next : 0;
}

std::optional<qsizetype> FindScan::previousFrom(const TextTree& text, qsizetype offset)
{
    while (state_ == State::searching && searchedTo_ < offset) {
        advance(text, offset - searchedTo_);
    }
    if (const auto found = lastBefore(offset)) {
        return found;
    }
    finish(text);
    return known_ == 0 ? std::nullopt : std::optional(known_ - 1);
}

std::optional<qsizetype> FindScan::lastBefore(qsizetype offset) const
{
    // All that begin before the offset, but for one that ends behind it.
    qsizetype behind = std::min(matches_.firstFrom(offset), known_);
    if (behind > 0 && matches_.at(behind - 1).end() > offset) {
        --behind;
    }
    return behind > 0 ? std::optional(behind - 1) : std::nullopt;
}

std::optional<qsizetype> FindScan::indexOf(TextRange match) const
{
    const qsizetype index = matches_.firstFrom(match.location);
    return index < matches_.size() && matches_.at(index) == match ? std::optional(index) : std::nullopt;
}

} // namespace kelm
