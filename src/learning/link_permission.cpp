#include "learning/link_permission.h"

namespace kelm::linkPermission {

const QString key = QStringLiteral("runsLessonLinks");

bool isGiven(const UserDefaults& userDefaults)
{
    return userDefaults.boolean(key).value_or(false);
}

void give(UserDefaults& userDefaults)
{
    userDefaults.setBoolean(key, true);
}

void takeBack(UserDefaults& userDefaults)
{
    userDefaults.remove(key);
}

} // namespace kelm::linkPermission
