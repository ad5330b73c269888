#include "maintenance/image_updater_controller.h"

#include <QProcess>
#include <QStandardPaths>

namespace kelm {

ImageUpdaterController::ImageUpdaterController(QString updater, QString image)
    : updater_(std::move(updater)), image_(std::move(image))
{}

QString ImageUpdaterController::findUpdater()
{
    for (const char* name : {"AppImageUpdate", "appimageupdatetool"}) {
        QString path = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!path.isEmpty()) {
            return path;
        }
    }
    return {};
}

bool ImageUpdaterController::canCheckForUpdates() const
{
    return !updater_.isEmpty() && !image_.isEmpty();
}

void ImageUpdaterController::checkForUpdates()
{
    if (canCheckForUpdates()) {
        QProcess::startDetached(updater_, {image_});
    }
}

} // namespace kelm
