#include "maintenance/application_image.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace kelm {

QString applicationImage()
{
    const QString mounted = QFileInfo(qEnvironmentVariable("APPDIR")).canonicalFilePath();
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
    const bool isOurs = !mounted.isEmpty() && program.startsWith(mounted + u'/');
    return isOurs ? qEnvironmentVariable("APPIMAGE") : QString();
}

} // namespace kelm
