#include "text/view/text_view_input_method.h"

#include "text/boundaries/text_boundaries.h"
#include "text/view/text_view.h"

#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// How much of the text around the caret an input method is told, on each side.
constexpr qsizetype surroundingUnits = 512;

/// The text around the caret within its line, and where it begins.
std::pair<qsizetype, qsizetype> surroundings(const TextView& view)
{
    const TextStorage& storage = view.storage();
    const qsizetype caret = view.editor().selections().primary().head.offset;
    const TextRange line = storage.lineRange({caret, 0});
    const qsizetype start = std::max(line.location, caret - surroundingUnits);
    const qsizetype end = std::min(line.end(), caret + surroundingUnits);
    return {graphemeBoundaryAtOrBefore(storage.tree(), start), graphemeBoundaryAtOrBefore(storage.tree(), end)};
}

} // namespace

void TextViewInputMethod::handle(QInputMethodEvent* event)
{
    if (view_.isReadOnly()) {
        event->ignore();
        return;
    }
    event->accept();
    const bool begins = !event->preeditString().isEmpty() && !view_.isComposing();
    if (!event->commitString().isEmpty() || event->replacementLength() > 0) {
        insertCommitted(*event);
    } else if (begins && view_.editor().selections().hasText()) {
        // The selection makes way at the first key, as it does for a letter.
        view_.editor().endUndoRun();
        view_.editor().insertText(QString(), EditKind::composing);
    } else if (begins) {
        // What is shown in short is shown in full at the first key, as it is for a letter, and not by the click that
        // ends the composition: rows would move under the pointer.
        view_.editor().prepareEdit();
    }
    showPreedit(*event);
}

void TextViewInputMethod::commit()
{
    if (!view_.isComposing() || isCommitting_) {
        return;
    }
    const QScopedValueRollback committing(isCommitting_, true);
    QGuiApplication::inputMethod()->commit();
    if (const std::optional<Preedit> left = view_.layout_.preedit()) {
        // No input method took it up: what is seen is what is meant. It comes as the method's own commit would, for
        // those who follow what is composed.
        QInputMethodEvent event;
        event.setCommitString(left->text);
        QCoreApplication::sendEvent(&view_, &event);
        QGuiApplication::inputMethod()->reset();
    }
}

QVariant TextViewInputMethod::query(Qt::InputMethodQuery query) const
{
    const Selection& primary = view_.editor().selections().primary();
    const auto [start, end] = surroundings(view_);
    const qsizetype caret = primary.head.offset;
    switch (query) {
    case Qt::ImEnabled:
        return !view_.isReadOnly();
    case Qt::ImHints:
        return static_cast<int>(Qt::ImhMultiLine | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    case Qt::ImFont:
        return view_.layout_.font();
    case Qt::ImCursorRectangle: {
        const QPointF toWidget = view_.viewport()->pos();
        QRectF box = view_.caretRect(primary.head);
        if (const auto composed = view_.layout_.preeditCaretRect()) {
            box = composed->translated(view_.pageOrigin());
        }
        box.setWidth(1);
        return box.translated(toWidget);
    }
    case Qt::ImCursorPosition:
        return static_cast<int>(caret - start);
    case Qt::ImAnchorPosition:
        return static_cast<int>(std::clamp(primary.anchor, start, end) - start);
    case Qt::ImAbsolutePosition:
        return static_cast<int>(caret);
    case Qt::ImSurroundingText:
        return view_.storage().substring({start, end - start});
    case Qt::ImTextBeforeCursor:
        return view_.storage().substring({start, caret - start});
    case Qt::ImTextAfterCursor:
        return view_.storage().substring({caret, end - caret});
    case Qt::ImCurrentSelection:
        return view_.storage().substring(primary.range());
    default:
        return view_.QAbstractScrollArea::inputMethodQuery(query);
    }
}

void TextViewInputMethod::insertCommitted(const QInputMethodEvent& event)
{
    TextEditor& editor = view_.editor();
    view_.layout_.setPreedit({});
    if (event.replacementLength() > 0) {
        const qsizetype caret = editor.selections().primary().head.offset;
        const qsizetype length = view_.storage().length();
        const qsizetype start = caret + event.replacementStart();
        const TextRange replaced =
            TextRange::between(std::clamp<qsizetype>(start, 0, length),
                               std::clamp<qsizetype>(start + event.replacementLength(), 0, length));
        editor.apply({{replaced, event.commitString()}}, EditKind::composing);
    } else {
        editor.insertText(event.commitString(), EditKind::composing);
    }
    editor.endUndoRun();
    view_.showCaret();
}

void TextViewInputMethod::showPreedit(const QInputMethodEvent& event)
{
    if (event.preeditString().isEmpty()) {
        if (view_.isComposing()) {
            // Cancelled: the next composition has nothing to do with this one.
            view_.layout_.setPreedit({});
            view_.editor().endUndoRun();
        }
    } else {
        Preedit preedit;
        preedit.offset = view_.editor().selections().primary().head.offset;
        preedit.text = event.preeditString();
        preedit.cursor = static_cast<int>(preedit.text.size());
        for (const QInputMethodEvent::Attribute& attribute : event.attributes()) {
            if (attribute.type == QInputMethodEvent::Cursor) {
                preedit.cursor = attribute.length != 0 ? std::optional(attribute.start) : std::nullopt;
            } else if (attribute.type == QInputMethodEvent::TextFormat) {
                const QTextCharFormat format = qvariant_cast<QTextFormat>(attribute.value).toCharFormat();
                preedit.formats.append({attribute.start, attribute.length, format});
            }
        }
        if (preedit.formats.isEmpty()) {
            QTextCharFormat underlined;
            underlined.setFontUnderline(true);
            preedit.formats.append({0, static_cast<int>(preedit.text.size()), underlined});
        }
        view_.layout_.setPreedit(std::move(preedit));
        view_.showCaret();
    }
    view_.viewport()->update();
    view_.updateMicroFocus();
}

} // namespace kelm
