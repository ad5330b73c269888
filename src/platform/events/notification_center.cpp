#include "platform/events/notification_center.h"

#include <algorithm>
#include <utility>

namespace kelm {

void NotificationCenter::addObserver(QObject* owner, const QString& name, Handler handler)
{
    std::erase_if(observers_, [](const Observer& observer) { return observer.owner.isNull(); });
    observers_.push_back({owner, name, std::move(handler)});
}

void NotificationCenter::removeObserver(const QObject* owner)
{
    std::erase_if(observers_,
                  [owner](const Observer& observer) { return observer.owner.isNull() || observer.owner == owner; });
}

void NotificationCenter::post(const QString& name, const QVariant& object, const QVariantMap& userInfo)
{
    const Notification notification{name, object, userInfo};
    // A handler may add and remove observers: the call goes over those of now, and skips whoever has gone meanwhile.
    std::vector<Observer> receivers;
    std::copy_if(observers_.begin(), observers_.end(), std::back_inserter(receivers),
                 [&name](const Observer& observer) { return observer.name == name; });
    for (const Observer& receiver : receivers) {
        if (receiver.owner) {
            receiver.handler(notification);
        }
    }
}

NotificationCenter& NotificationCenter::shared()
{
    static NotificationCenter center;
    return center;
}

} // namespace kelm
