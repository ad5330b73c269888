#include "platform/files/standard_paths.h"

#include <QDir>
#include <QStandardPaths>

namespace kelm::standardPaths {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The toolkit does not know the state home.
QString stateHome()
{
#ifdef Q_OS_MACOS
    return QDir::homePath() + u"/Library/Saved Application State"_s;
#else
    const QString stated = qEnvironmentVariable("XDG_STATE_HOME");
    // A relative path is to be ignored, as the XDG base directory specification has it.
    return QDir::isAbsolutePath(stated) ? stated : QDir::homePath() + u"/.local/state"_s;
#endif
}

} // namespace

QString applicationSupportDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

QString applicationSupport()
{
    return applicationSupportDirectory() + u"/KelmPane"_s;
}

QString caches()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/com.kelm.KelmPane"_s;
}

QString preferences()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/com.kelm.KelmPane.conf"_s;
}

QString savedState()
{
    return stateHome() + u"/com.kelm.KelmPane.savedState"_s;
}

} // namespace kelm::standardPaths
