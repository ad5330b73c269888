// What is typed into a terminal while a command runs.
#include "run/view/terminal_text_view.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>

#include <memory>

namespace kelm {

void TerminalTextView::keepForLater(const QKeyEvent& event)
{
    const std::shared_ptr<QKeyEvent> waiting(event.clone());
    typedAhead_.addKey(event);
    session_->whenIdle(
        [view = QPointer(this), waiting] {
            if (view) {
                view->typedAhead_.take(waiting->key() == Qt::Key_Return);
                view->returnToNewPrompt();
                view->keyInTurn_ = waiting.get();
                view->keyPressEvent(waiting.get());
            }
        },
        [view = QPointer(this), waiting] {
            if (view) {
                view->throwAwayKey(*waiting);
            }
        });
}

/// What was typed ahead is for the prompt that has come; the caret may have been put elsewhere while the command ran.
void TerminalTextView::returnToNewPrompt()
{
    if (!isAtPrompt() && currentCommand().isEmpty()) {
        moveCaretToEnd();
    }
}

/// What was typed ahead is put together once more, since only its keys are known, and its lines go into the history in
/// the place of being run. All of that is between two paintings.
void TerminalTextView::throwAwayKey(QKeyEvent& event)
{
    if (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab) {
        return;
    }
    if (isAnySelectionAtPrompt() && currentCommand().isEmpty()) {
        setSelectedRange({storage().length(), 0});
    }
    const QScopedValueRollback throwing(isThrowingAway_, true);
    keyInTurn_ = &event;
    keyPressEvent(&event);
}

void TerminalTextView::throwAwayLine()
{
    replaceCurrentCommand(QString());
    editor().forgetUndo();
}

void TerminalTextView::inputMethodEvent(QInputMethodEvent* event)
{
    if (!session_ || session_->isIdle()) {
        TextView::inputMethodEvent(event);
        return;
    }
    event->accept();
    if (!event->commitString().isEmpty()) {
        typedAhead_.addText(event->commitString());
        const auto put = [view = QPointer(this), text = event->commitString()] {
            if (view) {
                view->typedAhead_.take(false);
                view->returnToNewPrompt();
                QInputMethodEvent committed;
                committed.setCommitString(text);
                view->TextView::inputMethodEvent(&committed);
            }
        };
        session_->whenIdle(put, put);
    }
}

} // namespace kelm
