// The buttons that a row shows at its end.
#pragma once

#include "platform/view/row.h"

#include <QWidget>

namespace kelm {

class PlainButton;

/// A strip of symbol buttons, one for each action. With the keyboard on it, the arrow keys and Tab go from button to
/// button, and beyond the first or by Escape back to the list. A key that is held down and a double click press once.
class RowActions final : public QWidget
{
    Q_OBJECT

public:
    /// Without `takesKeyboard` the strip is for the mouse alone.
    RowActions(bool takesKeyboard, QWidget* parent);

    /// Shows these actions for the row that `description` tells of. Buttons stay, with the keyboard on them, when the
    /// actions are of the same names.
    void setActions(const QList<RowAction>& actions, const QString& description);
    bool isEmpty() const { return buttons_.isEmpty(); }
    bool hasKeyboard() const;
    void focusFirst();
    /// Ends presses whose release would meet another row than they did.
    void cancelPress();
    /// Whether the mouse can press.
    void setTakesMouse(bool takesMouse) { takesMouse_ = takesMouse; }

Q_SIGNALS:
    /// The keyboard leaves the strip by its own keys: towards what follows the list, or back to the list.
    void leftForwards();
    void leftBackwards();
    void keyboardChanged();
    void pointerMoved(QPoint globalPlace);
    /// A key that moves through the rows.
    void rowKeyPressed(QKeyEvent* event);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool handleKey(qsizetype button, QKeyEvent& event);
    void step(qsizetype button, bool forwards);

    bool takesKeyboard_;
    bool takesMouse_ = true;
    QList<RowAction> actions_;
    QList<PlainButton*> buttons_;
};

} // namespace kelm
