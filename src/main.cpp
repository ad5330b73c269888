#include "app/command_line/before_window.h"
#include "app/command_line/command_line.h"
#include "app/state/open_events.h"
#include "platform/desktop/view/toolkit_words.h"
#include "platform/events/main_queue.h"
#include "platform/events/single_instance.h"
#include "platform/events/start_tokens.h"
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

#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace {

/// Draws the window to a file instead of waiting for a person: this is how a machine without a display shows it.
void drawPictureAndQuit(kelm::MainWindow& window, const QString& file)
{
    // What the start has put off to the main queue comes first.
    kelm::onMainQueue([&window, file] {
        kelm::onMainQueue([&window, file] { QCoreApplication::exit(window.grab().save(file) ? 0 : 1); });
    });
}

/// What the toolkit is to see of the command line: what it takes out of it.
class ToolkitArguments
{
public:
    ToolkitArguments(const char* program, const QStringList& arguments) : bytes_{program}
    {
        for (const QString& argument : arguments) {
            bytes_.push_back(kelm::nativePath(argument));
        }
        for (QByteArray& argument : bytes_) {
            pointers_.push_back(argument.data());
        }
        count_ = int(pointers_.size());
        pointers_.push_back(nullptr);
    }

    int& count() { return count_; }
    char** values() { return pointers_.data(); }

private:
    std::vector<QByteArray> bytes_;
    std::vector<char*> pointers_;
    int count_ = 0;
};

} // namespace

int main(int argc, char* argv[])
{
    const auto parsed = kelm::parseCommandLine(kelm::argumentsOf(argc, argv));
    if (const std::optional<kelm::ExitStatus> status = kelm::answerAtOnce(parsed, KELM_VERSION)) {
        return static_cast<int>(*status);
    }
    kelm::outliveReaders();
    kelm::Log::takeToolkitMessages();
    const auto* commandLine = std::get_if<kelm::CommandLine>(&parsed);
    const QString picture = qEnvironmentVariable("KELMWRIGHT_PICTURE");
    std::optional<kelm::openRequest::Request> request;
    if (commandLine != nullptr) {
        request = kelm::requestOf(*commandLine);
    }
    if (!request) {
        return static_cast<int>(kelm::ExitStatus::failed);
    }
    request->tokens = kelm::takeStartTokens();
    kelm::SingleInstance instance(kelm::defaultInstancePlace());
    // A picture is drawn by a program of its own, whatever else runs.
    if (picture.isEmpty()) {
        if (const auto status = kelm::handOver(instance, *request, commandLine->toolkitArguments)) {
            return static_cast<int>(*status);
        }
    }
    // The toolkit tells the desktop by it that the window is there.
    kelm::putStartTokens(request->tokens);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    ToolkitArguments toolkitArguments(argv[0], commandLine->toolkitArguments);
    QApplication application(toolkitArguments.count(), toolkitArguments.values());
    kelm::takeStartTokens();
    QApplication::setApplicationName(QStringLiteral("KelmPane"));
    QApplication::setApplicationDisplayName(QStringLiteral("KelmWright"));
    QApplication::setApplicationVersion(QStringLiteral(KELM_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("kelmwright"));
    QApplication::setWindowIcon(kelm::icons::application());
    kelm::style::installOn(application);
    kelm::style::followMotionWishes(application);
    kelm::installToolkitWords(application, QLocale());

    int status = 0;
    std::vector<kelm::SingleInstance::Received> unopened;
    {
        kelm::removeAbandonedSnippetCopies();
        kelm::KelmPaneApp app;
        QObject::connect(&instance, &kelm::SingleInstance::received, &app,
                         [&app](const auto& received) { app.openFromOutside(received.request, received.waiting); });
        if (picture.isEmpty()) {
            instance.listen();
        }
        app.start(*request);
        if (!picture.isEmpty()) {
            drawPictureAndQuit(app.window(), picture);
        }
        kelm::watchWaysToEnd(kelm::UserDefaults::shared());
        status = QApplication::exec();
        kelm::endInOrder();
        unopened = instance.stopListening();
    }
    // The window is gone by now: a program that takes its time to end holds nobody up.
    instance.leave();
    kelm::endChildren();
    kelm::removeSnippetCopies();
    if (status == 0) {
        kelm::startAgainFor(unopened);
    }
    return kelm::leaveWithoutWaiting(status, kelm::UserDefaults::shared());
}
