#include "platform/desktop/alerts.h"

namespace kelm {

namespace {

class NoAlerts final : public Alerts
{
public:
    std::optional<int> runWarning(const Alert&) override { return std::nullopt; }
};

std::unique_ptr<Alerts>& installedAlerts()
{
    static std::unique_ptr<Alerts> alerts = std::make_unique<NoAlerts>();
    return alerts;
}

} // namespace

Alerts& Alerts::shared()
{
    return *installedAlerts();
}

void Alerts::install(std::unique_ptr<Alerts> alerts)
{
    installedAlerts() = std::move(alerts);
}

} // namespace kelm
