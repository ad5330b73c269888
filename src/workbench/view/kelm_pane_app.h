// The application: what is made at the start and what comes in from outside.
#pragma once

#include "app/state/desktop_recents.h"
#include "maintenance/uninstall_service.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

namespace kelm {

class AppState;
class AutoUpdateService;
class LessonLinks;
class MainWindow;
class ThemeManager;

/// The application object's side of the platform's events.
class AppDelegate final : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(QObject* parent = nullptr);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    /// Opens what the texts of absolute URLs name, in their order. Of very many, those behind the first come in turns,
    /// between which the window goes on.
    void open(const QStringList& urlTexts);
    /// What brings the application to the front when a link opens.
    void setActivate(std::function<void()> activate) { activate_ = std::move(activate); }

protected:
    /// The platform hands over files and links as events of the application.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void openNext();

    /// What is still to be opened, that of the turn that goes on among it.
    QStringList waiting_;
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

    /// Shows the window and opens what the command line names, taken from the working folder.
    void start(const QStringList& arguments);
    /// Opens what another start of the program hands over, and brings the window to the front, back if it was closed.
    void openFromOutside(const QStringList& urlTexts);
    MainWindow& window() { return *window_; }
    AutoUpdateService& updateService() { return updateService_; }

private:
    void bringToFront();

    AppDelegate appDelegate_;
    AppState& appState_;
    DesktopRecents desktopRecents_;
    AutoUpdateService& updateService_;
    ThemeManager& themeManager_;
    UninstallService uninstallService_;
    std::unique_ptr<MainWindow> window_;
};

} // namespace kelm
