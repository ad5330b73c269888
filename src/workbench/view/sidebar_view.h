// The panel at the left of the window.
#pragma once

#include "app/state/window_tabs.h"
#include "editor/themes/theme_manager.h"

#include <QWidget>

#include <array>
#include <functional>

class QStackedWidget;

namespace kelm {

class PlainButton;

/// A bar of tabs, and below it the content of the one that is selected, which is made when its tab is first selected
/// and then kept. The selected tab is this view's own: a sidebar that is made anew begins with the files. Where a
/// person chooses the search, its field has the keyboard.
class SidebarView final : public QWidget
{
    Q_OBJECT

public:
    /// Makes the content of a tab.
    using MakeContent = std::function<QWidget*(SidebarTab tab, QWidget* parent)>;

    SidebarView(ThemeManager& themeManager, MakeContent makeContent, QWidget* parent = nullptr);

    SidebarTab selectedTab() const { return selectedTab_; }
    void select(SidebarTab tab);
    PlainButton& tabButton(SidebarTab tab) { return *buttons_.at(tab); }
    /// The content of the selected tab.
    QWidget* content() const { return contents_.at(selectedTab_); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showContent();

    ThemeManager& themeManager_;
    MakeContent makeContent_;
    SidebarTab selectedTab_ = SidebarTab::files;
    QStackedWidget* pages_;
    std::array<PlainButton*, SidebarTab::count> buttons_{};
    std::array<QWidget*, SidebarTab::count> contents_{};
};

} // namespace kelm
