// The application: what is made at the start and what comes in from outside.
#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

namespace kelm {

class AppState;
class AutoUpdateService;
class MainWindow;
class ThemeManager;

/// The application object's side of the platform's events.
class AppDelegate final : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(QObject* parent = nullptr) : QObject(parent) {}

    void applicationDidFinishLaunching();
    /// Opens what the texts of absolute URLs name.
    void open(const QStringList& urlTexts);

protected:
    /// The platform hands over files and links as events of the application.
    bool eventFilter(QObject* watched, QEvent* event) override;
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
    MainWindow& window() { return *window_; }
    AutoUpdateService& updateService() { return updateService_; }

private:
    AppDelegate appDelegate_;
    AppState& appState_;
    AutoUpdateService& updateService_;
    ThemeManager& themeManager_;
    std::unique_ptr<MainWindow> window_;
};

} // namespace kelm
