// The alerts as dialogs.
#pragma once

#include "platform/desktop/alerts.h"

namespace kelm {

/// Modal boxes over whichever window is active.
class AlertDialogs final : public Alerts
{
public:
    std::optional<int> runWarning(const Alert& alert) override;
};

} // namespace kelm
