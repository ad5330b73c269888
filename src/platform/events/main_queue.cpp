#include "platform/events/main_queue.h"

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
    QMetaObject::invokeMethod(context, std::move(work), Qt::QueuedConnection);
}

} // namespace kelm
