// The row along the bottom of the window.
#pragma once

#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QFileSystemWatcher>
#include <QWidget>

class QHBoxLayout;

namespace kelm {

class DocumentLeftStatus;
class DocumentRightStatus;
class PlainButton;
class StatusBarMenu;

/// Shows the current document's labels and counts, the branch of the project and the theme.
class StatusBarView final : public QWidget
{
    Q_OBJECT

public:
    StatusBarView(AppState& appState, ThemeManager& themeManager, QWidget* parent = nullptr);

    /// Null while no document is open.
    DocumentLeftStatus* leftStatus() const { return left_; }
    DocumentRightStatus* rightStatus() const { return right_; }
    PlainButton& branchPill() { return *branchPill_; }
    StatusBarMenu& themeMenu() { return *themeMenu_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refreshCurrentDocument();
    void refreshBranch();
    void refreshTheme();
    /// Has the branch read anew when something changes in `folder`; an empty one is none.
    void watchHead(const QString& folder);

    AppState& appState_;
    ThemeManager& themeManager_;
    QHBoxLayout* row_;
    DocumentLeftStatus* left_ = nullptr;
    DocumentRightStatus* right_ = nullptr;
    QWidget* divider_;
    PlainButton* branchPill_;
    StatusBarMenu* themeMenu_;
    QFileSystemWatcher headWatcher_;
};

} // namespace kelm
