// The row of buttons along the top of the window.
#pragma once

#include "app/commands/command_table.h"
#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QWidget>

#include <functional>

class QHBoxLayout;
class QMenu;

namespace kelm {

class PlainButton;
class ToolbarButton;

/// A thin view over the state: each button calls one of its operations or flips one of its flags.
class ToolbarView final : public QWidget
{
    Q_OBJECT

public:
    /// `openSettings` shows the settings window.
    ToolbarView(CommandTargets targets, ThemeManager& themeManager, std::function<void()> openSettings,
                QWidget* parent = nullptr);

    /// Fills a menu with the commands that format and transform the current document.
    void fillFormatMenu(QMenu& menu);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Toggle
    {
        QString icon;
        QString help;
        bool (AppState::*isShown)() const;
        void (AppState::*setShown)(bool);
        void (AppState::*changed)();
    };

    ToolbarButton* addButton(const QString& icon, const QString& help, std::function<void()> action);
    /// Gives the command as the menu bar does.
    void give(Command command);
    void addToggle(const Toggle& toggle);
    void addDivider();
    void addFileGroup();
    void addQuickOpenButton();
    void addRunButton();
    void addFormatButton();
    /// Shows the run button when the current document can be run.
    void updateRunButton();
    void watchCurrentDocument();

    const CommandTargets targets_;
    AppState& appState_;
    ThemeManager& themeManager_;
    QHBoxLayout* row_;
    PlainButton* runButton_ = nullptr;
    QList<QMetaObject::Connection> documentConnections_;
};

} // namespace kelm
