#include "app/state/open_events.h"
#include "platform/events/main_queue.h"
#include "platform/events/single_instance.h"
#include "platform/files/native_path.h"
#include "platform/files/user_defaults.h"
#include "platform/process/application_exit.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"

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
    kelm::outliveReaders();
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("KelmPane"));
    QApplication::setApplicationDisplayName(QStringLiteral("KelmWright"));
    QApplication::setApplicationVersion(QStringLiteral(KELM_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("kelmwright"));
    QApplication::setWindowIcon(kelm::icons::application());
    kelm::style::installOn(application);

    int status = 0;
    {
        // The toolkit has taken its own out, and would lose bytes of the others.
        const QStringList arguments = kelm::argumentsOf(argc, argv);
        const QString picture = qEnvironmentVariable("KELMWRIGHT_PICTURE");
        kelm::SingleInstance instance(kelm::SingleInstance::defaultSocketPath());
        // A picture is drawn by a program of its own, whatever else runs.
        if (picture.isEmpty()) {
            if (instance.handOver(kelm::urlTextsOfArguments(arguments, kelm::currentFolder()))) {
                return 0;
            }
            instance.listen();
        }
        kelm::KelmPaneApp app;
        QObject::connect(&instance, &kelm::SingleInstance::received, &app, &kelm::KelmPaneApp::openFromOutside);
        app.start(arguments);
        if (!picture.isEmpty()) {
            drawPictureAndQuit(app.window(), picture);
        }
        status = QApplication::exec();
    }
    return kelm::leaveWithoutWaiting(status, kelm::UserDefaults::shared());
}
