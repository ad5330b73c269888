// The panel below the editor.
#pragma once

#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QWidget>

#include <array>
#include <functional>

class QStackedWidget;

namespace kelm {

class PlainButton;

/// A strip with one button a tab and one that closes the panel, and below it the content of the tab that the state
/// selects.
class BottomPanel final : public QWidget
{
    Q_OBJECT

public:
    /// Makes the content of a tab. One that `outlivesItsTab` is made once and kept while others are shown; of the
    /// others each is made when its tab is selected, and ends with it.
    struct Page
    {
        std::function<QWidget*(QWidget* parent)> make;
        bool outlivesItsTab = false;
    };
    using Pages = std::array<Page, BottomPanelTab::count>;

    BottomPanel(AppState& appState, ThemeManager& themeManager, Pages pages, QWidget* parent = nullptr);

    PlainButton& tabButton(BottomPanelTab tab) { return *buttons_.at(tab); }
    PlainButton& closeButton() { return *closeButton_; }
    QWidget* content() const;
    /// Gives the terminal the keyboard while it is what the panel shows; nothing otherwise.
    void focusTerminal();

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refreshTab();

    AppState& appState_;
    ThemeManager& themeManager_;
    Pages pages_;
    QStackedWidget* stack_;
    std::array<PlainButton*, BottomPanelTab::count> buttons_{};
    std::array<QWidget*, BottomPanelTab::count> contents_{};
    PlainButton* closeButton_;
};

} // namespace kelm
