// Whether links may run the code that they bring.
#pragma once

#include "platform/files/user_defaults.h"

#include <QString>

namespace kelm::linkPermission {

/// The key in the user defaults; the value is true once a person has said so, and nothing else counts.
extern const QString key;

/// Whether links run their code without a word. Nothing that a link holds has a say in it.
bool isGiven(const UserDefaults& userDefaults);
void give(UserDefaults& userDefaults);
/// From now on each link asks again.
void takeBack(UserDefaults& userDefaults);

} // namespace kelm::linkPermission
