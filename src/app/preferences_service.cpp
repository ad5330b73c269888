#include "app/preferences_service.h"

namespace kelm {

PreferencesService::PreferencesService() = default;

PreferencesService::~PreferencesService() = default;

} // namespace kelm

#include "moc_preferences_service.cpp"
