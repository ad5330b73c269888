// A text view in a window of its own, for tests that press its keys and look at its pixels.
#pragma once

#include "support/marked_text.h"
#include "text/view/text_view.h"

#include <QDropEvent>
#include <QFontDatabase>
#include <QMimeData>
#include <QtTest>

namespace kelm::test {

/// A view of 400 by 200 with the focus, showing `marked`. One letter is as wide as the next.
class ShownTextView : public TextView
{
public:
    explicit ShownTextView(const QString& marked = {}, QSize size = {400, 200})
    {
        QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPixelSize(14);
        setTextFont(font);
        resize(size);
        set(marked);
        show();
        activateWindow();
        setFocus();
        isShown_ = QTest::qWaitForWindowActive(this);
    }

    bool isShown() const { return isShown_ && hasFocus(); }

    void set(const QString& marked)
    {
        const MarkedText parsed = parseMarked(marked);
        storage().setText(parsed.text);
        if (!parsed.selections.empty()) {
            editor().setSelections(SelectionSet(parsed.selections));
        }
    }

    QString marked() const { return describeMarked(text(), editor().selections()); }

    /// The middle of the left edge of a unit, in the viewport.
    QPoint pointAt(qsizetype offset, bool atRowEnd = false) { return caretRect({offset, atRowEnd}).center().toPoint(); }

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
        QCoreApplication::sendEvent(viewport(), &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDragMoveEvent move(point, action, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport(), &move);
        QDropEvent drop(QPointF(point), action, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport(), &drop);
        return drop.isAccepted();
    }

private:
    bool isShown_ = false;
};

} // namespace kelm::test
