// Updates of a program that runs from an application image.
#pragma once

#include "maintenance/updater_controller.h"

namespace kelm {

/// Starts the image updater that is installed on the machine on the image that the program runs from. The updater has
/// windows of its own and outlives the program that it replaces.
class ImageUpdaterController final : public UpdaterController
{
    Q_OBJECT

public:
    /// `updater` is the updater's executable and `image` the image's file; with either empty no check may ever start.
    ImageUpdaterController(QString updater, QString image);

    bool canCheckForUpdates() const override;
    void checkForUpdates() override;

    /// The first image updater on the search path of the environment, or an empty text.
    static QString findUpdater();

private:
    QString updater_;
    QString image_;
};

} // namespace kelm
