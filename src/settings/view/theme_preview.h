// A sample of code in the colours of a theme.
#pragma once

#include "editor/themes/editor_theme.h"

#include <QWidget>

namespace kelm {

/// Paints a few fixed lines, each with its number, as the theme colours them.
class ThemePreview final : public QWidget
{
    Q_OBJECT

public:
    explicit ThemePreview(EditorTheme theme, QWidget* parent = nullptr);

    const EditorTheme& theme() const { return theme_; }
    void setTheme(const EditorTheme& theme);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    EditorTheme theme_;
};

} // namespace kelm
