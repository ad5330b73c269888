#include "platform/events/main_queue.h"

#include "platform/events/held_work.h"

#include <QCoreApplication>

namespace kelm {

void onMainQueue(std::function<void()> work)
{
    if (QCoreApplication::instance() != nullptr) {
        onMainQueue(QCoreApplication::instance(), std::move(work));
    }
}

void onMainQueue(QObject* context, std::function<void()> work)
{
    auto run = [context, work = std::move(work)]() mutable { HeldWork::runOrKeep(context, std::move(work)); };
    QMetaObject::invokeMethod(context, std::move(run), Qt::QueuedConnection);
}

void onMainQueueInAnyCase(std::function<void()> work)
{
    if (QCoreApplication::instance() != nullptr) {
        QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
    }
}

} // namespace kelm
