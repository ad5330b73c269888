// What stands behind the update service.
#pragma once

#include <QObject>

#include <memory>

namespace kelm {

/// An updater: it starts itself when it is made, says whether a check may start now, and performs a check with an
/// interface of its own. Feeds, downloads, signatures and installation are its business alone. Main thread only.
class UpdaterController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)

public:
    virtual bool canCheckForUpdates() const = 0;
    virtual void checkForUpdates() = 0;

    /// The updater of this platform: its framework where the program was built with one, the image updater where the
    /// program runs from an application image, and else one that can never check.
    static std::unique_ptr<UpdaterController> makeForPlatform();

Q_SIGNALS:
    void canCheckForUpdatesChanged();
};

} // namespace kelm
