// Mouse, drag and drop of a text view.
#pragma once

#include "text/editing/selection.h"
#include "text/storage/text_range.h"

#include <QBasicTimer>
#include <QObject>
#include <QPoint>

#include <optional>

class QDropEvent;
class QMouseEvent;

namespace kelm {

class TextView;

/// Turns the mouse into selections: by character, by word after a second click, by line after a third; with Shift it
/// extends, with Command (Control elsewhere) it adds one. A selection that is pressed and moved is dragged.
class TextViewMouse final : public QObject
{
public:
    explicit TextViewMouse(TextView& view);

    void press(QMouseEvent* event);
    void move(QMouseEvent* event);
    void release(QMouseEvent* event);
    void doubleClick(QMouseEvent* event);
    /// The left button is up, or others have the mouse from now on, and its release: what is selected stays so.
    void endGesture();

    bool acceptsDrop(const QDropEvent& event) const;
    void drop(QDropEvent* event);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    enum class Unit { character, word, line };
    enum class State { idle, selecting, mayDrag };

    bool isSelected(QPoint point) const;
    /// The character, word or line at an offset.
    TextRange unitAt(qsizetype offset) const;
    void begin(QPoint point, Unit unit, Qt::KeyboardModifiers modifiers);
    void extendTo(QPoint point);
    void startDrag();
    void pasteSelection(QPoint point);

    TextView& view_;
    State state_ = State::idle;
    Unit unit_ = Unit::character;
    /// What the selection that is being made was begun with; it stays selected whole.
    TextRange origin_;
    CaretPlace originPlace_;
    /// The selections that stay beside the one that is being made.
    std::vector<Selection> others_;
    QPoint pressedAt_;
    QPoint lastPoint_;
    QPoint lastDoubleClick_;
    qint64 lastDoubleClickTime_ = -1;
    QBasicTimer scrollTimer_;
    bool isDragging_ = false;
};

} // namespace kelm
