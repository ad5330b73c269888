#include "platform/text/regular_expression_search.h"

#include <unicode/uregex.h>
#include <unicode/utext.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace kelm {

namespace {

constexpr qsizetype longestSearched = std::numeric_limits<int32_t>::max();
/// To how many places one of ICU's steps of going back comes, by the time that it takes.
constexpr int workOfStep = 500;

} // namespace

struct RegularExpressionSearch::State
{
    struct Close
    {
        void operator()(URegularExpression* expression) const { uregex_close(expression); }
        void operator()(UText* text) const { utext_close(text); }
    };
    PiecedText pieces;
    std::unique_ptr<UText, Close> opened;
    std::unique_ptr<URegularExpression, Close> search;
    RegularExpressionMatch match;
    RegularExpression::Effort effort;
    RegularExpression::Ending ending = RegularExpression::Ending::complete;
    std::function<bool(int, qsizetype)> isEnough;
    qsizetype from = 0;
    qsizetype reached = 0;
    qsizetype unitsOfEffort = 0;
    qsizetype stretch = 0;
    UErrorCode status = U_ZERO_ERROR;
    bool hasBegun = false;
    bool hasEnded = false;

    /// ICU counts the steps of the whole search, so that another stretch allows so many more.
    void limitEffort()
    {
        const qsizetype steps = (stretch + 1) * effort.steps;
        uregex_setTimeLimit(search.get(), int32_t(std::min<qsizetype>(steps, std::numeric_limits<int32_t>::max())),
                            &status);
    }

    /// Whether to go on.
    bool comesTo(qsizetype place, int work)
    {
        reached = std::max(reached, place);
        if (unitsOfEffort > 0 && (reached - from) / unitsOfEffort > stretch) {
            stretch = (reached - from) / unitsOfEffort;
            limitEffort();
        }
        return !isEnough || !isEnough(work, reached);
    }

    static UBool U_CALLCONV tried(const void* context, int64_t place)
    {
        return static_cast<State*>(const_cast<void*>(context))->comesTo(place, 1);
    }

    static UBool U_CALLCONV wentBack(const void* context, int32_t /*steps*/)
    {
        return static_cast<State*>(const_cast<void*>(context))->comesTo(0, workOfStep);
    }

    void finish(RegularExpression::Ending how)
    {
        ending = how;
        hasEnded = true;
    }
};

RegularExpressionSearch::RegularExpressionSearch(const RegularExpression& expression, QStringView text, qsizetype from)
    : state_(std::make_unique<State>())
{
    if (text.size() > longestSearched) {
        state_->finish(RegularExpression::Ending::gaveUp);
        return;
    }
    state_->search.reset(uregex_clone(expression.compiled_.get(), &state_->status));
    const char16_t* units = text.isEmpty() ? u"" : text.utf16();
    uregex_setText(state_->search.get(), units, static_cast<int32_t>(text.size()), &state_->status);
    begin(expression, std::clamp<qsizetype>(from, 0, text.size()));
}

RegularExpressionSearch::RegularExpressionSearch(const RegularExpression& expression, PiecedText text, qsizetype from)
    : state_(std::make_unique<State>())
{
    state_->pieces = std::move(text);
    state_->opened.reset(openForIcu(state_->pieces));
    if (state_->pieces.length > longestSearched || !state_->opened) {
        state_->finish(RegularExpression::Ending::gaveUp);
        return;
    }
    state_->search.reset(uregex_clone(expression.compiled_.get(), &state_->status));
    uregex_setUText(state_->search.get(), state_->opened.get(), &state_->status);
    begin(expression, std::clamp<qsizetype>(from, 0, state_->pieces.length));
}

RegularExpressionSearch::~RegularExpressionSearch() = default;

void RegularExpressionSearch::begin(const RegularExpression& expression, qsizetype from)
{
    state_->match.ranges_.resize(static_cast<std::size_t>(expression.groupCount_) + 1);
    state_->effort = expression.effort_;
    state_->from = from;
    state_->reached = from;
    state_->limitEffort();
    uregex_setStackLimit(state_->search.get(), state_->effort.stackBytes, &state_->status);
}

void RegularExpressionSearch::setInterruption(std::function<bool(int work, qsizetype reached)> isEnough)
{
    state_->isEnough = std::move(isEnough);
    if (!state_->hasEnded) {
        uregex_setFindProgressCallback(state_->search.get(), &State::tried, state_.get(), &state_->status);
        uregex_setMatchCallback(state_->search.get(), &State::wentBack, state_.get(), &state_->status);
    }
}

void RegularExpressionSearch::renewEffortEach(qsizetype units)
{
    state_->unitsOfEffort = units;
    if (!state_->hasEnded) {
        uregex_setFindProgressCallback(state_->search.get(), &State::tried, state_.get(), &state_->status);
    }
}

const RegularExpressionMatch* RegularExpressionSearch::next()
{
    State& state = *state_;
    if (state.hasEnded) {
        return nullptr;
    }
    const bool another = std::exchange(state.hasBegun, true)
                             ? uregex_findNext(state.search.get(), &state.status)
                             : uregex_find64(state.search.get(), state.from, &state.status);
    if (!another || U_FAILURE(state.status)) {
        const bool isStopped = state.status == U_REGEX_STOPPED_BY_CALLER;
        state.finish(isStopped                 ? RegularExpression::Ending::stopped
                     : U_SUCCESS(state.status) ? RegularExpression::Ending::complete
                                               : RegularExpression::Ending::gaveUp);
        return nullptr;
    }
    for (std::size_t group = 0; group < state.match.ranges_.size(); ++group) {
        const int64_t location = uregex_start64(state.search.get(), int32_t(group), &state.status);
        const int64_t end = uregex_end64(state.search.get(), int32_t(group), &state.status);
        state.match.ranges_[group] = {qsizetype(location), qsizetype(end - location)};
    }
    state.comesTo(state.match.end(), 0);
    return &state.match;
}

RegularExpression::Ending RegularExpressionSearch::ending() const
{
    return state_->ending;
}

qsizetype RegularExpressionSearch::reached() const
{
    return state_->reached;
}

} // namespace kelm
