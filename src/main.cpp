#include "platform/application_exit.h"
#include "platform/main_queue.h"
#include "platform/view/style.h"
#include "workbench/kelm_pane_app.h"
#include "workbench/main_window.h"

#include <QApplication>
#include <QPixmap>

namespace {

/// Draws the window to a file instead of waiting for a person: this is how a machine without a display shows it.
void drawPictureAndQuit(kelm::MainWindow& window, const QString& file)
{
    // What the start has put off to the main queue comes first.
    kelm::onMainQueue([&window, file] {
        kelm::onMainQueue([&window, file] { QCoreApplication::exit(window.grab().save(file) ? 0 : 1); });
    });
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("KelmPane"));
    QApplication::setApplicationDisplayName(QStringLiteral("KelmWright"));
    QApplication::setApplicationVersion(QStringLiteral(KELM_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("kelmwright"));
    kelm::style::installOn(application);

    int status = 0;
    {
        kelm::KelmPaneApp app;
        app.start(QApplication::arguments().mid(1));
        const QString picture = qEnvironmentVariable("KELMWRIGHT_PICTURE");
        if (!picture.isEmpty()) {
            drawPictureAndQuit(app.window(), picture);
        }
        status = QApplication::exec();
    }
    return kelm::leaveWithoutWaiting(status);
}
