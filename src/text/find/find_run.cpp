#include "text/find/find_run.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

constexpr std::size_t matchesOfPortion = 1 << 15;
constexpr qsizetype unitsOfPortion = 1 << 22;

} // namespace

FindRun::FindRun(FindQuery query, TextTree text, qsizetype from)
    : query_(std::move(query)), text_(std::move(text)), searchedTo_(from)
{}

FindRun::Portion FindRun::next(const std::atomic<bool>& stop)
{
    return query_.isPattern() ? nextOfPattern(stop) : nextOfText();
}

FindRun::Portion FindRun::nextOfText()
{
    Portion portion;
    const qsizetype to = std::min(searchedTo_ + unitsOfPortion, text_.length());
    // A match that begins before the end of the stretch may end behind it.
    const qsizetype end = std::min(to + query_.reach() - 1, text_.length());
    const auto ending = query_.enumerate(text_, searchedTo_, end, [&](TextRange match) {
        portion.matches.push_back(match);
        searchedTo_ = match.end();
        return portion.matches.size() < matchesOfPortion;
    });
    if (ending == FindQuery::Ending::complete) {
        searchedTo_ = std::max(searchedTo_, to);
        portion.ending = to == text_.length() ? ending : FindQuery::Ending::stopped;
    }
    portion.searchedTo = searchedTo_;
    return portion;
}

FindRun::Portion FindRun::nextOfPattern(const std::atomic<bool>& stop)
{
    Portion portion;
    if (!search_) {
        whole_.reserve(text_.length());
        text_.forEachPiece({0, text_.length()}, [this, &stop](QStringView piece) {
            whole_ += piece;
            return !stop;
        });
        search_ = query_.patternSearch(whole_, searchedTo_);
    }
    search_->setInterruption([&stop](int, qsizetype) { return stop.load(); });
    const qsizetype to = searchedTo_ + unitsOfPortion;
    while (!stop && portion.matches.size() < matchesOfPortion && searchedTo_ < to) {
        const RegularExpressionMatch* const match = search_->next();
        if (match == nullptr) {
            portion.ending = search_->ending() == RegularExpression::Ending::complete ? FindQuery::Ending::complete
                                                                                      : FindQuery::Ending::gaveUp;
            searchedTo_ = portion.ending == FindQuery::Ending::complete ? text_.length() : searchedTo_;
            break;
        }
        portion.matches.push_back({match->location(), match->length()});
        searchedTo_ = FindQuery::behind(text_, portion.matches.back());
    }
    portion.searchedTo = searchedTo_;
    if (stop || portion.ending != FindQuery::Ending::stopped) {
        // Here rather than where the run goes: to give much memory back takes long.
        search_.reset();
        whole_ = QString();
    }
    return portion;
}

} // namespace kelm
