// A text view in a window of its own, for tests that press its keys and look at its pixels.
#pragma once

#include "support/marked_text.h"
#include "text/view/text_view.h"

#include <QDropEvent>
#include <QFontDatabase>
#include <QMimeData>
#include <QtTest>

#include <utility>

namespace kelm::test {

/// A text view of some kind, 400 by 200 and with the focus, showing `marked`. One letter is as wide as the next.
/// Further arguments are the kind's own.
template <typename View>
class Shown : public View
{
public:
    template <typename... Arguments>
    explicit Shown(const QString& marked = {}, QSize size = {400, 200}, Arguments&&... arguments)
        : View(std::forward<Arguments>(arguments)...)
    {
        QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPixelSize(14);
        this->setTextFont(font);
        this->resize(size);
        set(marked);
        this->show();
        this->activateWindow();
        this->setFocus();
        isShown_ = QTest::qWaitForWindowActive(this);
    }

    bool isShown() const { return isShown_ && this->hasFocus(); }

    void set(const QString& marked)
    {
        const MarkedText parsed = parseMarked(marked);
        this->storage().setText(parsed.text);
        if (!parsed.selections.empty()) {
            this->editor().setSelections(SelectionSet(parsed.selections));
        }
    }

    QString marked() const { return describeMarked(this->text(), this->editor().selections()); }

    /// The middle of the left edge of a unit, in the viewport.
    QPoint pointAt(qsizetype offset, bool atRowEnd = false)
    {
        return this->caretRect({offset, atRowEnd}).center().toPoint();
    }

    /// A point within the letter at an offset, nearer to its left edge.
    QPoint inLetter(qsizetype offset) { return pointAt(offset) + QPoint(2, 0); }

    void compose(const QString& preedit, const QList<QInputMethodEvent::Attribute>& attributes = {})
    {
        QInputMethodEvent event(preedit, attributes);
        QCoreApplication::sendEvent(this, &event);
    }

    void commitText(const QString& text, int replaceFrom = 0, int replaceLength = 0, const QString& preedit = {})
    {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(text, replaceFrom, replaceLength);
        QCoreApplication::sendEvent(this, &event);
    }

    /// A drag from outside comes in, moves and is dropped. False where it was turned away.
    bool dropFromOutside(const QMimeData& dragged, QPoint point, Qt::DropAction action = Qt::CopyAction)
    {
        QDragEnterEvent enter(point, action, &dragged, Qt::LeftButton, {});
        enter.ignore();
        QCoreApplication::sendEvent(this->viewport(), &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDragMoveEvent move(point, action, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(this->viewport(), &move);
        QDropEvent drop(QPointF(point), action, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(this->viewport(), &drop);
        return drop.isAccepted();
    }

private:
    bool isShown_ = false;
};

using ShownTextView = Shown<TextView>;

} // namespace kelm::test
