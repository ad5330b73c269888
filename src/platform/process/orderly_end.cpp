#include "platform/process/orderly_end.h"

#include <QPointer>

#include <utility>
#include <vector>

namespace kelm {

namespace {

constexpr std::chrono::seconds timeToEnd(1);

struct Entry
{
    QPointer<QObject> owner;
    Closer close;
};

/// Never taken down: the program may end while its statics go.
std::vector<Entry>& entries()
{
    static auto& all = *std::make_unique<std::vector<Entry>>().release();
    return all;
}

} // namespace

void onOrderlyEnd(QObject* owner, Closer closer)
{
    std::erase_if(entries(), [](const Entry& entry) { return entry.owner.isNull(); });
    entries().push_back({owner, std::move(closer)});
}

void endInOrder()
{
    static bool isEnding = false;
    if (std::exchange(isEnding, true)) {
        return;
    }
    const auto deadline = std::chrono::steady_clock::now() + timeToEnd;
    // A closer may add and remove others.
    const std::vector<Entry> now = entries();
    for (const Entry& entry : now) {
        if (entry.owner) {
            entry.close(deadline);
        }
    }
    isEnding = false;
}

} // namespace kelm
