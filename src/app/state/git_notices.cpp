#include "app/state/git_notices.h"

#include "git/service/git_stop.h"
#include "git/service/git_transfers.h"

#include <algorithm>
#include <utility>

namespace kelm {

using namespace std::chrono_literals;

namespace {

constexpr auto tellingInterval = 1s;

} // namespace

GitNotices::GitNotices(Notices& notices, Scheduler& scheduler) : notices_(notices), scheduler_(scheduler) {}

PatientRunner::Signs GitNotices::signs()
{
    return {.began =
                [this](const ProcessCommand& command, std::function<void()> stop) {
                    Q_EMIT waitBegins();
                    // It stays until the child has gone, which may take a moment.
                    wait_ = notices_.add({.text = gitCommandName(command),
                                          .stop = std::move(stop),
                                          .holdsInput = true,
                                          .stopsAll = true,
                                          .time = 0s});
                },
            .lasted = [this](std::chrono::seconds time) { notices_.setTime(wait_, time); },
            .ended = [this] { notices_.remove(wait_); }};
}

void GitNotices::follow(GitTransfers& transfers)
{
    transfers_ = &transfers;
    connect(&transfers, &GitTransfers::began, this, &GitNotices::beginTransfer);
    connect(&transfers, &GitTransfers::ended, this, &GitNotices::endTransfer);
}

void GitNotices::beginTransfer(quint64 transfer)
{
    const auto& all = transfers_->all();
    const auto begun =
        std::find_if(all.begin(), all.end(), [transfer](const GitTransfer& each) { return each.id == transfer; });
    const NoticeOffer stop{tr("Stop"), [this, transfer] { transfers_->stop(transfer); }};
    shown_[transfer] = notices_.add({.text = begun->name, .time = 0s, .offers = {stop}});
    if (!std::exchange(isTelling_, true)) {
        scheduler_.after(tellingInterval, this, [this] { tellTimes(); });
    }
}

void GitNotices::endTransfer(quint64 transfer)
{
    const auto notice = shown_.extract(transfer);
    if (!notice.empty()) {
        notices_.remove(notice.mapped());
    }
}

void GitNotices::tellTimes()
{
    isTelling_ = !transfers_->all().empty();
    for (const GitTransfer& transfer : transfers_->all()) {
        const auto time = std::chrono::steady_clock::now() - transfer.begin;
        notices_.setTime(shown_[transfer.id], std::chrono::round<std::chrono::seconds>(time));
    }
    if (isTelling_) {
        scheduler_.after(tellingInterval, this, [this] { tellTimes(); });
    }
}

} // namespace kelm
