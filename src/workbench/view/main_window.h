// The program's one window.
#pragma once

#include "app/commands/command_table.h"
#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"
#include "platform/desktop/workspace.h"

#include <QMainWindow>

#include <memory>

class QSplitter;

namespace kelm {

class BottomPanel;
class EditorArea;
class KeyboardPlace;
class LessonLinks;
class LessonPlace;
class LinkRunPlace;
class NoticeBar;
class OverlayLayer;
class AutoUpdateService;
class SettingsView;
class SidebarView;
class StatusBarView;
class TabBarView;
class ToolbarView;
class WindowOverlays;

/// Toolbar, sidebar, tabs, editor, panels and status bar, and the overlays above them. Whether a panel or an overlay is
/// shown is a flag of the state, and a change of the flag is all that shows or hides it. Files that are dropped on the
/// window open, and a folder becomes the project. Escape that nothing else takes gives the keyboard back to the text.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// What the window shows and reaches; all of it outlives the window.
    struct Services
    {
        AppState& appState;
        ThemeManager& themeManager;
        Workspace& workspace;
        UserDefaults& userDefaults;
        AutoUpdateService& updateService;
        /// Asks whether the program shall be removed, and removes it.
        std::function<void()> uninstall = {};
    };

    explicit MainWindow(const Services& services, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Shows the settings window, or brings it to the front.
    void openSettings();
    /// Null until it is first shown.
    SettingsView* settings() const { return settings_.get(); }

    EditorArea& editorArea() { return *editorArea_; }
    ToolbarView& toolbar() { return *toolbar_; }
    TabBarView& tabBar() { return *tabBar_; }
    StatusBarView& statusBarView() { return *statusBar_; }
    NoticeBar& noticeBar() { return *noticeBar_; }
    /// Null while it is not shown.
    SidebarView* sidebar() const { return sidebar_; }
    /// Null until it is first shown.
    BottomPanel* bottomPanel() const { return bottomPanel_; }
    /// The panel beside the editor; null while it is not shown.
    QWidget* lessonPanel() const;
    /// Where a link asks to run its code.
    LinkRunPlace& linkRunPlace() { return *linkRunPlace_; }

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildStack();
    void refreshSidebar();
    void refreshBottomPanel();
    void refreshTheme();
    void connectState();
    void addWindowKeys();
    void keepKeyboardInSight();
    /// The parts of the window that the Tab key goes through, in its order; those that are not shown are null or
    /// hidden.
    QList<QWidget*> regions() const;

    AppState& appState_;
    ThemeManager& themeManager_;
    Workspace& workspace_;
    UserDefaults& userDefaults_;
    const CommandTargets commandTargets_;
    ToolbarView* toolbar_ = nullptr;
    QSplitter* columns_ = nullptr;
    QSplitter* rows_ = nullptr;
    TabBarView* tabBar_ = nullptr;
    EditorArea* editorArea_ = nullptr;
    NoticeBar* noticeBar_ = nullptr;
    StatusBarView* statusBar_ = nullptr;
    SidebarView* sidebar_ = nullptr;
    BottomPanel* bottomPanel_ = nullptr;
    LessonPlace* lessonPlace_ = nullptr;
    LinkRunPlace* linkRunPlace_ = nullptr;
    WindowOverlays* overlays_ = nullptr;
    KeyboardPlace* keyboardPlace_ = nullptr;
    std::unique_ptr<SettingsView> settings_;
    /// Made when the first is dropped here.
    std::unique_ptr<LessonLinks> links_;
};

} // namespace kelm
