// The problems page of the bottom panel.
#pragma once

#include <QWidget>

namespace kelm {

class ThemeManager;

/// Says that there are no problems, on the current theme's ground. Nothing is ever listed here.
class ProblemsView final : public QWidget
{
    Q_OBJECT

public:
    explicit ProblemsView(ThemeManager& themeManager, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ThemeManager& themeManager_;
};

} // namespace kelm
