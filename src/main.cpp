#include "app/state/open_events.h"
#include "platform/desktop/view/toolkit_words.h"
#include "platform/events/main_queue.h"
#include "platform/events/single_instance.h"
#include "platform/files/native_path.h"
#include "platform/files/user_defaults.h"
#include "platform/process/application_exit.h"
#include "platform/process/child_groups.h"
#include "platform/process/log.h"
#include "platform/process/orderly_end.h"
#include "platform/process/ways_to_end.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/motion.h"
#include "platform/style/view/style.h"
#include "run/snippet_copies.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"

#include <QApplication>
#include <QLocale>
#include <QPixmap>
#include <QProcess>

namespace {

/// Draws the window to a file instead of waiting for a person: this is how a machine without a display shows it.
void drawPictureAndQuit(kelm::MainWindow& window, const QString& file)
{
    // What the start has put off to the main queue comes first.
    kelm::onMainQueue([&window, file] {
        kelm::onMainQueue([&window, file] { QCoreApplication::exit(window.grab().save(file) ? 0 : 1); });
    });
}

/// What other starts have handed over in the program's last moment is for a program that comes after it.
void startAgainFor(const QList<QStringList>& lists)
{
    for (const QStringList& urlTexts : lists) {
        QProcess::startDetached(QCoreApplication::applicationFilePath(), urlTexts);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    kelm::outliveReaders();
    kelm::Log::takeToolkitMessages();
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("KelmPane"));
    QApplication::setApplicationDisplayName(QStringLiteral("KelmWright"));
    QApplication::setApplicationVersion(QStringLiteral(KELM_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("kelmwright"));
    QApplication::setWindowIcon(kelm::icons::application());
    kelm::style::installOn(application);
    kelm::style::followMotionWishes(application);
    kelm::installToolkitWords(application, QLocale());

    int status = 0;
    QList<QStringList> unopened;
    {
        // The toolkit has taken its own out, and would lose bytes of the others.
        const QStringList arguments = kelm::argumentsOf(argc, argv);
        const QString picture = qEnvironmentVariable("KELMWRIGHT_PICTURE");
        kelm::SingleInstance instance(kelm::defaultInstancePlace());
        // A picture is drawn by a program of its own, whatever else runs.
        if (picture.isEmpty()) {
            switch (instance.settle(kelm::urlTextsOfArguments(arguments, kelm::currentFolder()))) {
            case kelm::SingleInstance::Part::handedOver:
                return 0;
            case kelm::SingleInstance::Part::unanswered:
                kelm::Log::system().write(QStringLiteral("KelmWright runs already and does not answer."));
                return 1;
            case kelm::SingleInstance::Part::first:
            case kelm::SingleInstance::Part::alone:
                break;
            }
        }
        kelm::removeAbandonedSnippetCopies();
        kelm::KelmPaneApp app;
        QObject::connect(&instance, &kelm::SingleInstance::received, &app, &kelm::KelmPaneApp::openFromOutside);
        app.start(arguments);
        if (!picture.isEmpty()) {
            drawPictureAndQuit(app.window(), picture);
        }
        kelm::watchWaysToEnd(kelm::UserDefaults::shared());
        status = QApplication::exec();
        kelm::endInOrder();
        unopened = instance.stopListening();
    }
    // The window is gone by now: a program that takes its time to end holds nobody up.
    kelm::endChildren();
    kelm::removeSnippetCopies();
    if (status == 0) {
        startAgainFor(unopened);
    }
    return kelm::leaveWithoutWaiting(status, kelm::UserDefaults::shared());
}
