#include "workbench/view/kelm_pane_app.h"

#include "app/state/app_state.h"
#include "app/state/lesson_links.h"
#include "app/state/open_events.h"
#include "app/state/unsaved_texts.h"
#include "app/state/watched_files.h"
#include "editor/themes/theme_manager.h"
#include "git/service/repository_follower.h"
#include "learning/lesson_link.h"
#include "maintenance/auto_update_service.h"
#include "platform/desktop/recently_used.h"
#include "platform/desktop/view/alert_dialogs.h"
#include "platform/desktop/view/file_dialogs.h"
#include "platform/desktop/view/window_frame.h"
#include "platform/events/main_queue.h"
#include "platform/files/native_path.h"
#include "platform/process/orderly_end.h"
#include "workbench/view/main_window.h"

#include <QApplication>
#include <QFileOpenEvent>

#include <algorithm>
#include <chrono>

namespace kelm {

namespace {

/// How much is opened in one go: some ten milliseconds.
constexpr qsizetype mostAtOnce = 50;
/// A list of recent files on a disk that hangs is not worth more at the program's end.
constexpr std::chrono::milliseconds longestWaitForRecents(100);

AppState& sharedStateWithPanels()
{
    FilePanels::install(std::make_unique<FileDialogs>(UserDefaults::shared()));
    Alerts::install(std::make_unique<AlertDialogs>());
    return AppState::shared();
}

} // namespace

AppDelegate::AppDelegate(QObject* parent) : QObject(parent) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    ThemeManager::shared().applyAppearance();
}

void AppDelegate::open(const QStringList& urlTexts)
{
    const bool isOpening = !waiting_.isEmpty();
    waiting_ += urlTexts;
    if (!isOpening) {
        openNext();
    }
}

void AppDelegate::openNext()
{
    const QStringList urlTexts = waiting_.first(std::min(waiting_.size(), mostAtOnce));
    if (!links_) {
        links_ = std::make_unique<LessonLinks>(AppState::shared(), [this] { activate_(); });
    }
    const auto handleLink = [this](const QString& urlText) { links_->handleKelmPaneURL(urlText); };
    openURLs(urlTexts, AppState::shared(), handleLink);
    waiting_.remove(0, urlTexts.size());
    if (!waiting_.isEmpty()) {
        onMainQueue(this, [this] { openNext(); });
    }
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
      desktopRecents_(appState_, recentlyUsedPath()),
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
            // Not from inside a wait for git.
            onMainQueue(this, [this] {
                appState_.watchedFiles().lookAgain();
                appState_.repositoryFollower().noteChange();
            });
        }
    });
    appDelegate_.setActivate([this] { bringToFront(); });
    // Copies of unsaved texts that are due are not left to chance.
    onOrderlyEnd(this, [this](std::chrono::steady_clock::time_point deadline) {
        const auto left = deadline - std::chrono::steady_clock::now();
        appState_.unsavedTexts().store().finish(std::chrono::duration_cast<std::chrono::milliseconds>(left));
        desktopRecents_.finish(longestWaitForRecents);
    });
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
