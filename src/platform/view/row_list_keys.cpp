// The list of rows by keyboard.
#include "platform/view/row_actions.h"
#include "platform/view/row_list.h"

#include <QKeyEvent>

#include <algorithm>

namespace kelm {

void RowList::keyPressEvent(QKeyEvent* event)
{
    isByKey_ = true;
    const int item = currentIndex().row();
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        updateActions();
        if (!event->isAutoRepeat()) {
            click(item);
        }
        return;
    case Qt::Key_Right:
        updateActions();
        focusActions();
        return;
    case Qt::Key_Left:
        return;
    case Qt::Key_F10:
        if (event->modifiers() == Qt::ShiftModifier && isUsable(item)) {
            updateActions();
            openMenu(item, viewport()->mapToGlobal(visualRect(model_.index(item)).center()));
            return;
        }
        QListView::keyPressEvent(event);
        return;
    default:
        QListView::keyPressEvent(event);
        updateActions();
    }
}

void RowList::focusInEvent(QFocusEvent* event)
{
    QListView::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
        event->reason() == Qt::ShortcutFocusReason) {
        isByKey_ = true;
        if (!isUsable(currentIndex().row())) {
            setCurrentIndex(moveCursor(MoveHome, Qt::NoModifier));
        }
    }
    updateActions();
}

void RowList::focusOutEvent(QFocusEvent* event)
{
    QListView::focusOutEvent(event);
    updateActions();
}

QModelIndex RowList::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int last = model_.rowCount() - 1;
    const int page = std::max(1, viewport()->height() / rowHeight_ - 1);
    int item = currentIndex().row();
    bool isForwards = true;
    switch (action) {
    case MoveUp:
    case MoveLeft:
    case MovePrevious:
        item -= 1;
        isForwards = false;
        break;
    case MoveDown:
    case MoveRight:
    case MoveNext:
        item += 1;
        break;
    case MovePageUp:
        item -= page;
        isForwards = false;
        break;
    case MovePageDown:
        item += page;
        break;
    case MoveHome:
        item = 0;
        break;
    case MoveEnd:
        item = last;
        isForwards = false;
        break;
    }
    // Over titles onwards, and at an end back to the row before them.
    for (const int step : {isForwards ? 1 : -1, isForwards ? -1 : 1}) {
        for (int at = std::clamp(item, 0, std::max(0, last)); at >= 0 && at <= last; at += step) {
            if (isUsable(at)) {
                return model_.index(at);
            }
        }
    }
    return {};
}

void RowList::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QListView::currentChanged(current, previous);
    updateActions();
}

void RowList::focusActions()
{
    if (focusedActions_->isVisible()) {
        focusedActions_->focusFirst();
    }
}

bool RowList::focusNextPrevChild(bool next)
{
    if (next && hasFocus() && focusedActions_->isVisible() && !focusedActions_->isEmpty()) {
        focusActions();
        return true;
    }
    return QListView::focusNextPrevChild(next);
}

} // namespace kelm
