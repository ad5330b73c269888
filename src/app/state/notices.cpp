#include "app/state/notices.h"

#include <algorithm>
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

void Notices::setProgress(Id id, double progress)
{
    const auto entry =
        std::find_if(entries_.begin(), entries_.end(), [id](const Entry& each) { return each.id == id; });
    if (entry == entries_.end() || entry->notice.progress == progress) {
        return;
    }
    entry->notice.progress = progress;
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
    const auto holding =
        std::find_if(entries_.begin(), entries_.end(), [](const Entry& each) { return each.notice.holdsInput; });
    if (holding != entries_.end()) {
        return &*holding;
    }
    return entries_.empty() ? nullptr : &entries_.front();
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

void Notices::tell(Id shownBefore, bool heldBefore)
{
    if (shown() != shownBefore) {
        Q_EMIT currentChanged();
    }
    if (holdsInput() != heldBefore) {
        Q_EMIT holdsInputChanged();
    }
}

} // namespace kelm
