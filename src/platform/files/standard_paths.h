// The folders and files that the system gives the program for its own.
#pragma once

#include <QString>

/// Absolute paths of the user's own places; none of them need exist. Each is read anew from the environment.
namespace kelm::standardPaths {

/// The folder that holds the support folders of all applications: the XDG data home, or "Application Support".
QString applicationSupportDirectory();

/// `KelmPane` in the application support directory.
QString applicationSupport();
/// `com.kelm.KelmPane` in the cache home.
QString caches();
/// The settings file, `com.kelm.KelmPane.conf` in the configuration folder.
QString preferences();
/// `com.kelm.KelmPane.savedState` in the state home.
QString savedState();

} // namespace kelm::standardPaths
