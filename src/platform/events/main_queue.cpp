#include "platform/events/main_queue.h"

#include "platform/events/handing_over.h"
#include "platform/events/held_work.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <memory>
#include <utility>

namespace kelm {

namespace {

HandingOver queued;

/// Work on its way to the main thread.
class QueuedWork final : public QEvent
{
public:
    /// How work is run once its turn has come.
    using Manner = void (*)(QObject* context, std::function<void()> work);

    QueuedWork(QObject* context, std::function<void()> work, Manner manner)
        : QEvent(kind()), context_(context), work_(std::move(work)), manner_(manner)
    {}

    static Type kind()
    {
        static const auto registered = static_cast<Type>(registerEventType());
        return registered;
    }

    void run()
    {
        if (context_) {
            manner_(context_, std::move(work_));
        }
    }

private:
    QPointer<QObject> context_;
    std::function<void()> work_;
    Manner manner_;
};

/// Stands on the main thread and runs what is sent to it.
class MainQueue final : public QObject
{
public:
    MainQueue() { moveToThread(QCoreApplication::instance()->thread()); }

    /// Nothing without an application.
    static void add(QObject* context, std::function<void()> work, QueuedWork::Manner manner)
    {
        if (QCoreApplication::instance() == nullptr) {
            return;
        }
        auto event = std::make_unique<QueuedWork>(context, std::move(work), manner);
        queued.leave();
        QCoreApplication::postEvent(&shared(), event.release());
    }

protected:
    void customEvent(QEvent* event) override
    {
        queued.take();
        if (event->type() == QueuedWork::kind()) {
            static_cast<QueuedWork*>(event)->run();
        }
    }

private:
    /// Never taken down: statics may queue work while they go.
    static MainQueue& shared()
    {
        static auto& queue = *std::make_unique<MainQueue>().release();
        return queue;
    }
};

void runAtOnce(QObject*, std::function<void()> work)
{
    std::exchange(work, nullptr)();
}

} // namespace

void onMainQueue(std::function<void()> work)
{
    onMainQueue(QCoreApplication::instance(), std::move(work));
}

void onMainQueue(QObject* context, std::function<void()> work)
{
    MainQueue::add(context, std::move(work), HeldWork::runOrKeep);
}

void onMainQueueInAnyCase(std::function<void()> work)
{
    MainQueue::add(QCoreApplication::instance(), std::move(work), runAtOnce);
}

} // namespace kelm
