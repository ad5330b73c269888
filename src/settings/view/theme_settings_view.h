// The tab of themes.
#pragma once

#include "editor/themes/theme_manager.h"

#include <QWidget>

#include <optional>

class QListWidget;

namespace kelm {

class ThemePreview;

/// The list of themes and a preview of the selected one. A selection changes the preview alone, until it is applied.
class ThemeSettingsView final : public QWidget
{
    Q_OBJECT

public:
    explicit ThemeSettingsView(ThemeManager& themeManager, QWidget* parent = nullptr);

    const std::optional<EditorTheme>& selectedTheme() const { return selectedTheme_; }
    ThemePreview& preview() { return *preview_; }
    QListWidget& list() { return *list_; }

private:
    void fillList();
    void previewSelection();
    void apply();

    ThemeManager& themeManager_;
    std::optional<EditorTheme> selectedTheme_;
    QListWidget* list_;
    ThemePreview* preview_;
};

} // namespace kelm
