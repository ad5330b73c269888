// What stands in the toolbar.
#pragma once

#include "platform/view/plain_button.h"

#include <QString>
#include <QWidget>

#include <functional>

namespace kelm {

/// A symbol on a small square, faintly lit under the mouse, which calls its action.
class ToolbarButton : public PlainButton
{
    Q_OBJECT

public:
    /// `help` is the help text, and the name for screen readers. An empty `action` is none.
    ToolbarButton(const QString& icon, const QString& help, std::function<void()> action, QWidget* parent = nullptr);

    bool isHovered() const { return underMouse(); }
};

/// The same for what is on or off. The action turns that over, by a click or by a screen reader; `setIsActive` only
/// shows it.
class ToolbarToggleButton final : public PlainButton
{
    Q_OBJECT

public:
    ToolbarToggleButton(const QString& icon, const QString& help, bool isActive, std::function<void()> action,
                        QWidget* parent = nullptr);

    bool isActive() const { return isActive_; }
    void setIsActive(bool isActive);
    bool isHovered() const { return underMouse(); }

private:
    bool isActive_;
};

/// A small upright line between groups.
class ToolbarDivider final : public QWidget
{
    Q_OBJECT

public:
    explicit ToolbarDivider(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace kelm
