// The strip of open documents above the editor.
#pragma once

#include "app/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QTabBar>

#include <vector>

namespace kelm {

/// One tab for each open document, with its title; hidden when there is none. The selected tab stands on the theme's
/// ground, as the text below it does.
class DocumentStrip final : public QTabBar
{
    Q_OBJECT

public:
    DocumentStrip(AppState& appState, ThemeManager& themeManager, QWidget* parent = nullptr);

private:
    void takeDocuments();
    void takeCurrentIndex();
    void takeTitle(const Document* document);
    void showTitle(int index, const Document& document);
    void takeThemeBackground();

    AppState& appState_;
    ThemeManager& themeManager_;
    std::vector<QMetaObject::Connection> titleConnections_;
};

} // namespace kelm
