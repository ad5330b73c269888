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
    /// A turn of the event loop is on its way that runs the first of them.
    bool isRunNext = false;
    std::deque<Entry> entries;
};

/// Never taken down: statics may queue work while they go.
Kept& kept()
{
    static auto& all = *std::make_unique<Kept>().release();
    return all;
}

void runFirst();

void runFirstLater()
{
    if (!kept().isRunNext && !kept().entries.empty() && QCoreApplication::instance() != nullptr) {
        kept().isRunNext = true;
        QMetaObject::invokeMethod(QCoreApplication::instance(), runFirst, Qt::QueuedConnection);
    }
}

void runFirst()
{
    kept().isRunNext = false;
    if (kept().holds > 0 || kept().entries.empty()) {
        return;
    }
    const Entry first = std::move(kept().entries.front());
    kept().entries.pop_front();
    // The work may run an event loop of its own, in which the others have their turn.
    runFirstLater();
    if (first.context) {
        first.work();
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
        runFirstLater();
    }
}

bool HeldWork::isHolding()
{
    return kept().holds > 0;
}

void HeldWork::runOrKeep(QObject* context, std::function<void()> work)
{
    // What is kept goes first.
    if (isHolding() || !kept().entries.empty()) {
        kept().entries.push_back({context, std::move(work)});
        return;
    }
    work();
}

} // namespace kelm
