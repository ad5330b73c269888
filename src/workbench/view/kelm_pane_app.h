// The application: what is made at the start and what comes in from outside.
#pragma once

#include "app/state/awaited_tabs.h"
#include "app/state/desktop_recents.h"
#include "maintenance/uninstall_service.h"
#include "platform/events/open_request.h"
#include "workbench/view/places_to_show.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>

namespace kelm {

class AppState;
class AutoUpdateService;
class LessonLinks;
class MainWindow;
class ThemeManager;
class WaitingStart;

/// The application object's side of the platform's events.
class AppDelegate final : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(QObject* parent = nullptr);
    ~AppDelegate() override;

    /// Somebody waits for what is opened; null when nobody does.
    using Waiting = std::shared_ptr<WaitingStart>;
    /// Told of an item that has been opened as a file, or could not be.
    using FileOpened = std::function<void(const openRequest::Item& item, const Waiting& waiting)>;
    /// Told of a copy that has been opened; null when it could not be.
    using CopyOpened = std::function<void(const std::shared_ptr<Document>& document, const Waiting& waiting)>;

    void applicationDidFinishLaunching();
    /// Opens items in their order. Of very many, those behind the first come in turns, between which the window goes
    /// on.
    void open(const QList<openRequest::Item>& items, const Waiting& waiting = {});
    void onOpened(FileOpened fileOpened, CopyOpened copyOpened);
    /// What brings the application to the front when a link opens.
    void setActivate(std::function<void()> activate) { activate_ = std::move(activate); }

protected:
    /// The platform hands over files and links as events of the application.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry
    {
        openRequest::Item item;
        Waiting waiting;
    };

    void openNext();
    void openEntries(const QList<Entry>& entries);
    void openCopy(const Entry& entry);

    /// What is still to be opened, that of the turn that goes on among it.
    QList<Entry> entries_;
    FileOpened fileOpened_;
    CopyOpened copyOpened_;
    std::function<void()> activate_ = [] {};
    /// Made when the first thing is opened, since the state is made by then.
    std::unique_ptr<LessonLinks> links_;
};

/// Puts state, themes and the one window together.
class KelmPaneApp final : public QObject
{
    Q_OBJECT

public:
    KelmPaneApp();
    ~KelmPaneApp() override;

    /// Shows the window and opens what the command line names.
    void start(const openRequest::Request& request);
    /// Opens what another start of the program hands over, and brings the window to the front, back if it was closed.
    /// `waiting` is told of the tabs that are opened so; null when nobody waits for them.
    void openFromOutside(const openRequest::Request& request, const std::shared_ptr<WaitingStart>& waiting = {});
    MainWindow& window() { return *window_; }
    AutoUpdateService& updateService() { return updateService_; }

private:
    void noteFile(const openRequest::Item& item, const std::shared_ptr<WaitingStart>& waiting);
    /// For the start that was last to ask.
    void comeToFront();

    AppDelegate appDelegate_;
    AppState& appState_;
    DesktopRecents desktopRecents_;
    AutoUpdateService& updateService_;
    ThemeManager& themeManager_;
    UninstallService uninstallService_;
    std::unique_ptr<MainWindow> window_;
    PlacesToShow places_;
    AwaitedTabs awaitedTabs_;
    /// Those of the last start, until the window has come to the front for it.
    openRequest::Tokens tokens_;
};

} // namespace kelm
