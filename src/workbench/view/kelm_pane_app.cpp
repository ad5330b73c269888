#include "workbench/view/kelm_pane_app.h"

#include "app/state/app_state.h"
#include "app/state/lesson_links.h"
#include "app/state/open_events.h"
#include "app/state/watched_files.h"
#include "editor/themes/theme_manager.h"
#include "learning/lesson_link.h"
#include "maintenance/auto_update_service.h"
#include "platform/desktop/view/alert_dialogs.h"
#include "platform/desktop/view/file_dialogs.h"
#include "platform/desktop/view/window_frame.h"
#include "platform/files/native_path.h"
#include "workbench/view/main_window.h"

#include <QApplication>
#include <QFileOpenEvent>

#include <algorithm>

namespace kelm {

namespace {

AppState& sharedStateWithPanels()
{
    FilePanels::install(std::make_unique<FileDialogs>());
    Alerts::install(std::make_unique<AlertDialogs>());
    return AppState::shared();
}

} // namespace

void AppDelegate::applicationDidFinishLaunching()
{
    ThemeManager::shared().applyAppearance();
}

void AppDelegate::open(const QStringList& urlTexts)
{
    const auto handleLink = [this](const QString& urlText) {
        handleKelmPaneURL(urlText, AppState::shared(), Scheduler::system(), Log::system(), activate_);
    };
    openURLs(urlTexts, AppState::shared(), handleLink);
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FileOpen) {
        open({static_cast<QFileOpenEvent*>(event)->url().toString(QUrl::FullyEncoded)});
        return true;
    }
    return QObject::eventFilter(watched, event);
}

KelmPaneApp::KelmPaneApp()
    : appState_(sharedStateWithPanels()),
      updateService_(AutoUpdateService::shared()),
      themeManager_(ThemeManager::shared()),
      uninstallService_(
          {Alerts::shared(), Workspace::system(), UserDefaults::shared(), [] { QCoreApplication::quit(); }}),
      window_(std::make_unique<MainWindow>(MainWindow::Services{appState_, themeManager_, Workspace::system(),
                                                                UserDefaults::shared(), updateService_,
                                                                [this] { uninstallService_.confirmAndRun(); }}))
{
    qApp->installEventFilter(&appDelegate_);
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) {
            appState_.watchedFiles().lookAgain();
        }
    });
    appDelegate_.setActivate([this] { bringToFront(); });
    // The process stays when its window is closed.
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

KelmPaneApp::~KelmPaneApp() = default;

void KelmPaneApp::start(const QStringList& arguments)
{
    appDelegate_.applicationDidFinishLaunching();
    appDelegate_.open(urlTextsOfArguments(arguments, currentFolder()));
    window_->show();
    hideTitleBar(*window_);
}

void KelmPaneApp::openFromOutside(const QStringList& urlTexts)
{
    // A link brings the window by itself, once it turns out to be a good one.
    if (urlTexts.isEmpty() || !std::all_of(urlTexts.begin(), urlTexts.end(), isLessonLink)) {
        bringToFront();
    }
    appDelegate_.open(urlTexts);
}

void KelmPaneApp::bringToFront()
{
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

} // namespace kelm
