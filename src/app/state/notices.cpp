#include "app/state/notices.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kelm {

Notices::Id Notices::add(Notice notice)
{
    const Id shownBefore = shown();
    const bool heldBefore = holdsInput();
    entries_.push_back({++lastId_, std::move(notice)});
    const Id added = lastId_;
    tell(shownBefore, heldBefore);
    return added;
}

Notices::Id Notices::report(const QString& text, std::vector<NoticeOffer> offers)
{
    const auto same = std::find_if(entries_.begin(), entries_.end(), [&text](const Entry& each) {
        return each.notice.isNews && each.notice.offers.empty() && each.notice.text == text;
    });
    if (offers.empty() && same != entries_.end()) {
        return same->id;
    }
    return add({.text = text, .isNews = true, .offers = std::move(offers)});
}

Notice* Notices::find(Id id)
{
    const auto entry =
        std::find_if(entries_.begin(), entries_.end(), [id](const Entry& each) { return each.id == id; });
    return entry != entries_.end() ? &entry->notice : nullptr;
}

void Notices::setProgress(Id id, double progress)
{
    Notice* const notice = find(id);
    if (notice == nullptr || notice->progress == progress) {
        return;
    }
    notice->progress = progress;
    if (shown() == id) {
        Q_EMIT progressChanged();
    }
}

void Notices::setTime(Id id, std::chrono::seconds time)
{
    Notice* const notice = find(id);
    if (notice == nullptr || notice->time == time) {
        return;
    }
    notice->time = time;
    if (shown() == id) {
        Q_EMIT progressChanged();
    }
}

void Notices::remove(Id id)
{
    const Id shownBefore = shown();
    const bool heldBefore = holdsInput();
    std::erase_if(entries_, [id](const Entry& each) { return each.id == id; });
    tell(shownBefore, heldBefore);
}

const Notices::Entry* Notices::currentEntry() const
{
    const auto rank = [](const Notice& notice) {
        if (notice.holdsInput) {
            return 0;
        }
        if (!notice.isNews) {
            return 2;
        }
        return notice.offers.empty() ? 1 : 3;
    };
    const Entry* best = nullptr;
    for (const Entry& entry : entries_) {
        const int ranked = rank(entry.notice);
        if (best == nullptr || ranked < rank(best->notice) || (ranked == 3 && rank(best->notice) == 3)) {
            best = &entry;
        }
    }
    return best;
}

const Notice* Notices::current() const
{
    const Entry* const entry = currentEntry();
    return entry != nullptr ? &entry->notice : nullptr;
}

void Notices::stop()
{
    if (canStop()) {
        // It goes with its notice.
        const std::function<void()> stop = current()->stop;
        stop();
    }
}

void Notices::accept(qsizetype offer)
{
    const Entry* const entry = currentEntry();
    if (entry == nullptr || offer < 0 || offer >= std::ssize(entry->notice.offers)) {
        return;
    }
    const std::function<void()> accept = entry->notice.offers[static_cast<std::size_t>(offer)].accept;
    remove(entry->id);
    accept();
}

void Notices::putAway()
{
    if (current() != nullptr && current()->isNews) {
        remove(shown());
    }
}

void Notices::beginTime()
{
    time_.reset();
    const Entry* const entry = currentEntry();
    if (entry == nullptr || !entry->notice.isNews || !entry->notice.offers.empty()) {
        return;
    }
    time_ = std::make_unique<QObject>();
    scheduler_.after(newsTime, time_.get(), [this, id = entry->id] { remove(id); });
}

void Notices::tell(Id shownBefore, bool heldBefore)
{
    if (shown() != shownBefore) {
        beginTime();
        Q_EMIT currentChanged();
    }
    if (holdsInput() != heldBefore) {
        Q_EMIT holdsInputChanged();
    }
}

} // namespace kelm
