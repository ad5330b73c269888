// Whether the program can be told to look for a newer version of itself.
#pragma once

#include "maintenance/updater_controller.h"

#include <QObject>

#include <memory>

namespace kelm {

/// Holds the updater and tells the menu whether a check can start now. Opens no connection of its own. Main thread
/// only.
class AutoUpdateService final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)

public:
    explicit AutoUpdateService(std::unique_ptr<UpdaterController> updaterController);

    UpdaterController& updaterController() const { return *updaterController_; }

    /// What the updater said last; false at first. A change reaches this field by the main queue.
    bool canCheckForUpdates() const { return canCheckForUpdates_; }

    /// The service of the program, made on first use with the platform's updater.
    static AutoUpdateService& shared();

Q_SIGNALS:
    void canCheckForUpdatesChanged();

private:
    void observe();

    const std::unique_ptr<UpdaterController> updaterController_;
    bool canCheckForUpdates_ = false;
};

} // namespace kelm
