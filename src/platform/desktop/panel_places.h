// The folders in which file panels begin.
#pragma once

#include "platform/desktop/file_panels.h"

namespace kelm {

class UserDefaults;

/// Remembers for each kind of panel, beyond the end of the program, the folder in which it ended. Main thread only.
class PanelPlaces
{
public:
    /// The store outlives the object.
    explicit PanelPlaces(UserDefaults& userDefaults) : userDefaults_(userDefaults) {}

    /// The path of the first of `wanted` that is a folder, else where the last panel of its kind ended, else the home.
    /// The toolkit's dialogs cannot show a folder whose path holds bytes that are not UTF-8: there it is the nearest
    /// one around it.
    QString start(PanelKind kind, const QStringList& wanted) const;

    /// A panel has ended with a file of this folder, or with the folder itself.
    void noteEnd(PanelKind kind, const QString& folder);

private:
    UserDefaults& userDefaults_;
};

} // namespace kelm
