#include "run/view/typed_ahead.h"

#include "platform/text/character_sets.h"
#include "text/view/text_view.h"
#include "text/view/text_view_keys.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>

namespace kelm {

TypedAhead::TypedAhead() = default;

TypedAhead::~TypedAhead() = default;

TextView& TypedAhead::editor()
{
    if (!editor_) {
        editor_ = std::make_unique<TextView>();
    }
    return *editor_;
}

void TypedAhead::addKey(const QKeyEvent& key)
{
    switch (key.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return;
    case Qt::Key_Up:
        showHistory(-1);
        return;
    case Qt::Key_Down:
        showHistory(1);
        return;
    case Qt::Key_Return:
        lines_.append(trimmed(begun_, isWhitespaceOrNewline).toString());
        isInHistory_ = false;
        setEdited(QString());
        return;
    default:
        break;
    }
    if (keyActionFor(key) || insertsText(key)) {
        const std::unique_ptr<QKeyEvent> copy(key.clone());
        QCoreApplication::sendEvent(&editor(), copy.get());
        begun_ = editor().text();
        Q_EMIT changed();
    }
}

void TypedAhead::addText(const QString& text)
{
    editor().editor().insertText(text, EditKind::typing);
    begun_ = editor().text();
    Q_EMIT changed();
}

void TypedAhead::take(bool isReturn)
{
    if (isReturn && !lines_.isEmpty()) {
        lines_.removeFirst();
        Q_EMIT changed();
    }
    if (session_ && !session_->hasWaiting()) {
        clear();
    }
}

void TypedAhead::clear()
{
    lines_.clear();
    isInHistory_ = false;
    setEdited(QString());
}

void TypedAhead::showHistory(qsizetype step)
{
    if (!session_) {
        return;
    }
    const QStringList history = session_->commandHistory() + lines_;
    if (!isInHistory_) {
        historyIndex_ = lines_.isEmpty() ? session_->historyIndex() : history.size();
        isInHistory_ = true;
    }
    if (step < 0 && historyIndex_ == 0) {
        return;
    }
    historyIndex_ = std::min(historyIndex_ + step, history.size());
    setEdited(historyIndex_ < history.size() ? history[historyIndex_] : QString());
}

void TypedAhead::setEdited(const QString& text)
{
    if (editor_) {
        editor_->storage().setText(text);
        editor_->editor().forgetUndo();
        editor_->setSelectedRange({text.size(), 0});
    } else if (!text.isEmpty()) {
        addText(text);
        return;
    }
    begun_ = text;
    Q_EMIT changed();
}

} // namespace kelm
