#include "platform/events/held_work.h"

#include <QCoreApplication>
#include <QPointer>

#include <deque>
#include <memory>
#include <utility>

namespace kelm {

namespace {

struct Entry
{
    QPointer<QObject> context;
    std::function<void()> work;
};

struct Kept
{
    int holds = 0;
    /// How many turns of the event loop are on their way, each of which runs the first of the entries. While nothing is
    /// held there is one for each, so that whoever turns the queue once has run them all.
    std::size_t turns = 0;
    std::deque<Entry> entries;
};

/// Never taken down: statics may queue work while they go.
Kept& kept()
{
    static auto& all = *std::make_unique<Kept>().release();
    return all;
}

void runFirst()
{
    --kept().turns;
    if (kept().holds > 0 || kept().entries.empty()) {
        return;
    }
    const Entry first = std::move(kept().entries.front());
    kept().entries.pop_front();
    if (first.context) {
        first.work();
    }
}

void orderTurns()
{
    while (kept().turns < kept().entries.size() && QCoreApplication::instance() != nullptr) {
        ++kept().turns;
        QMetaObject::invokeMethod(QCoreApplication::instance(), runFirst, Qt::QueuedConnection);
    }
}

} // namespace

HeldWork::HeldWork()
{
    ++kept().holds;
}

HeldWork::~HeldWork()
{
    if (--kept().holds == 0) {
        orderTurns();
    }
}

bool HeldWork::isHolding()
{
    return kept().holds > 0;
}

void HeldWork::runOrKeep(QObject* context, std::function<void()> work)
{
    // What is kept goes first.
    if (!isHolding() && kept().entries.empty()) {
        work();
        return;
    }
    kept().entries.push_back({context, std::move(work)});
    if (!isHolding()) {
        orderTurns();
    }
}

} // namespace kelm
