// Alerts that answer what a test tells them.
#pragma once

#include "platform/desktop/alerts.h"

#include <QList>

namespace kelm {

class FakeAlerts final : public Alerts
{
public:
    std::optional<int> runWarning(const Alert& alert) override
    {
        shown << alert;
        return answer;
    }

    std::optional<int> answer;
    QList<Alert> shown;
};

} // namespace kelm
