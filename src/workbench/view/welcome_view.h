// What the editor area shows while no document is open.
#pragma once

#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QWidget>

class QVBoxLayout;

namespace kelm {

class UnsavedTextsGroup;

/// The product's name, the two ways to begin, the texts that were never saved, and the files that were open last.
class WelcomeView final : public QWidget
{
    Q_OBJECT

public:
    WelcomeView(AppState& appState, ThemeManager& themeManager, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void refreshRecentFiles();

    AppState& appState_;
    ThemeManager& themeManager_;
    UnsavedTextsGroup* unsavedTexts_;
    QWidget* recentFiles_;
    QVBoxLayout* recentRows_;
};

} // namespace kelm
