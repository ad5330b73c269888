// Removing the program from inside the program.
#pragma once

#include "platform/desktop/alerts.h"
#include "platform/desktop/workspace.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace kelm {

class UserDefaults;

/// Moves the program and, as the person chooses, its data to the Trash, and quits. Nothing is deleted for good. Main
/// thread only.
class UninstallService
{
public:
    /// What could be moved. Nothing of it need exist.
    struct Plan
    {
        std::optional<QUrl> appBundle;
        std::optional<QUrl> supportDir;
        std::optional<QUrl> cachesDir;
        std::optional<QUrl> preferences;
        std::optional<QUrl> savedState;

        friend bool operator==(const Plan&, const Plan&) = default;
    };

    /// What the service reaches beyond itself; all of it outlives the service.
    struct Services
    {
        Alerts& alerts;
        Workspace& workspace;
        UserDefaults& userDefaults;
        /// Ends the program.
        std::function<void()> quit;
    };

    explicit UninstallService(Services services) : services_(std::move(services)) {}

    /// Asks, lists what exists, and does what was chosen, by the program's own plan.
    void confirmAndRun();

    /// The program's own file, or the application image or bundle that it runs from, and the user's folders for it.
    /// Does not look at the disk.
    static Plan currentPlan();

    /// Asks whether to carry out `plan`. The Return key and any answer but the two removals change nothing.
    void confirmAndRun(const Plan& plan);

    /// One line for each item that exists, in the order of the plan.
    static QString itemsList(const Plan& plan);

    /// Moves what exists to the Trash, the program last and its data only unless `keepUserData`, and quits from the
    /// main queue, whatever came of it.
    void performAndQuit(const Plan& plan, bool keepUserData);

private:
    Services services_;
};

} // namespace kelm
