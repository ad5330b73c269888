#include "app/kept_ready/preferences_service.h"

namespace kelm {

PreferencesService::PreferencesService() = default;

PreferencesService::~PreferencesService() = default;

} // namespace kelm
