#include "workbench/view/kelm_pane_app.h"

#include "app/state/app_state.h"
#include "app/state/lesson_links.h"
#include "app/state/open_events.h"
#include "app/state/panel_start.h"
#include "app/state/unsaved_texts.h"
#include "app/state/watched_files.h"
#include "editor/themes/theme_manager.h"
#include "git/service/repository_follower.h"
#include "learning/lesson_link.h"
#include "maintenance/auto_update_service.h"
#include "platform/desktop/recently_used.h"
#include "platform/desktop/view/alert_dialogs.h"
#include "platform/desktop/view/bring_to_front.h"
#include "platform/desktop/view/file_dialogs.h"
#include "platform/desktop/view/window_frame.h"
#include "platform/events/main_queue.h"
#include "platform/events/waiting_start.h"
#include "platform/files/file_url.h"
#include "platform/process/orderly_end.h"
#include "workbench/view/main_window.h"

#include <QApplication>
#include <QFileOpenEvent>

#include <algorithm>
#include <chrono>
#include <utility>

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

AppDelegate::~AppDelegate()
{
    for (const Entry& entry : std::as_const(entries_)) {
        if (entry.waiting) {
            entry.waiting->note(openRequest::Outcome::untaken);
        }
    }
}

void AppDelegate::applicationDidFinishLaunching()
{
    ThemeManager::shared().applyAppearance();
}

void AppDelegate::open(const QList<openRequest::Item>& items, const Waiting& waiting)
{
    const bool isOpening = !entries_.isEmpty();
    for (const openRequest::Item& item : items) {
        entries_.append({item, waiting});
    }
    if (!isOpening) {
        openNext();
    }
}

void AppDelegate::onOpened(FileOpened fileOpened, CopyOpened copyOpened)
{
    fileOpened_ = std::move(fileOpened);
    copyOpened_ = std::move(copyOpened);
}

void AppDelegate::openNext()
{
    const QList<Entry> entries = entries_.first(std::min(entries_.size(), mostAtOnce));
    if (!links_) {
        links_ = std::make_unique<LessonLinks>(AppState::shared(), [this] { activate_(); });
    }
    openEntries(entries);
    entries_.remove(0, entries.size());
    if (!entries_.isEmpty()) {
        onMainQueue(this, [this] { openNext(); });
    }
}

void AppDelegate::openEntries(const QList<Entry>& entries)
{
    QStringList urlTexts;
    for (const Entry& entry : entries) {
        if (entry.item.kind == openRequest::Item::Kind::url) {
            urlTexts.append(entry.item.text);
        }
    }
    const auto handleLink = [this](const QString& urlText) { links_->handleKelmPaneURL(urlText); };
    openURLs(urlTexts, AppState::shared(), handleLink);
    for (const Entry& entry : entries) {
        switch (entry.item.kind) {
        case openRequest::Item::Kind::url:
            if (fileOpened_ && !isLessonLink(entry.item.text) && !hasDirectoryPath(QUrl(entry.item.text))) {
                fileOpened_(entry.item, entry.waiting);
            }
            break;
        case openRequest::Item::Kind::copy:
            openCopy(entry);
            break;
        case openRequest::Item::Kind::newFile:
            AppState::shared().createNewTab();
            break;
        case openRequest::Item::Kind::folderPanel:
            // Once the window is there.
            onMainQueue(this, [] { chooseProject(AppState::shared(), FilePanels::shared()); });
            break;
        }
    }
}

void AppDelegate::openCopy(const Entry& entry)
{
    const auto opened = [this, waiting = entry.waiting](const std::shared_ptr<Document>& document) {
        if (copyOpened_) {
            copyOpened_(document, waiting);
        }
    };
    AppState::shared().unsavedTexts().open(entry.item.text, opened);
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FileOpen) {
        open({openRequest::Item(static_cast<QFileOpenEvent*>(event)->url().toString(QUrl::FullyEncoded))});
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
                                                                [this] { uninstallService_.confirmAndRun(); }})),
      places_(appState_, window_->editorArea()),
      awaitedTabs_(appState_)
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
    appDelegate_.setActivate([this] { comeToFront(); });
    appDelegate_.onOpened(
        [this](const openRequest::Item& item, const auto& waiting) { noteFile(item, waiting); },
        [this](const std::shared_ptr<Document>& document, const std::shared_ptr<WaitingStart>& waiting) {
            if (waiting) {
                awaitedTabs_.add(document, waiting);
            }
        });
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

void KelmPaneApp::start(const openRequest::Request& request)
{
    appDelegate_.applicationDidFinishLaunching();
    appDelegate_.open(request.items);
    window_->show();
    hideTitleBar(*window_);
    if (!request.tokens.isEmpty()) {
        bringToFront(*window_, request.tokens);
    }
}

void KelmPaneApp::openFromOutside(const openRequest::Request& request, const std::shared_ptr<WaitingStart>& waiting)
{
    const auto isLink = [](const openRequest::Item& item) { return isLessonLink(item.text); };
    tokens_ = request.tokens;
    // A link brings the window by itself, once it turns out to be a good one.
    if (request.items.isEmpty() || !std::all_of(request.items.begin(), request.items.end(), isLink)) {
        comeToFront();
    }
    appDelegate_.open(request.items, waiting);
    completeStart(request.tokens);
}

void KelmPaneApp::noteFile(const openRequest::Item& item, const std::shared_ptr<WaitingStart>& waiting)
{
    const QUrl file(item.text);
    if (item.line > 0) {
        places_.add(file, {qsizetype(item.line), std::max<qsizetype>(item.column, 1)});
    }
    if (waiting) {
        awaitedTabs_.add(file, waiting);
    }
}

void KelmPaneApp::comeToFront()
{
    // They are good for once.
    bringToFront(*window_, std::exchange(tokens_, {}));
}

} // namespace kelm
