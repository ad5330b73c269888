// What the tabs of the source control panel have in common.
#pragma once

#include <QList>
#include <QWidget>

#include <variant>

class QLayout;

namespace kelm {

/// The content of one tab. While it is hidden it only remembers that the repository has changed, and takes the changes
/// when it appears.
class PanelTab : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Takes the repository's state, now or when the tab appears.
    void refresh();

protected:
    void showEvent(QShowEvent* event) override;

    virtual void refreshState() = 0;
    /// Stands a form of rows above what it makes entries of, with a line between. A row is a widget, or a layout of
    /// several.
    void arrange(const QList<std::variant<QWidget*, QLayout*>>& formRows, QWidget* list);
    /// A field and the button that takes it, side by side.
    static QLayout* besideButton(QWidget* field, QWidget* button);
    /// Has the state taken when the tab appears next.
    void markStale() { isStale_ = true; }

private:
    bool isStale_ = true;
};

} // namespace kelm
