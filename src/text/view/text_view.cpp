#include "text/view/text_view.h"

#include "text/view/find_bar.h"
#include "text/view/primary_selection.h"
#include "text/view/text_view_accessible.h"
#include "text/view/text_view_input_method.h"
#include "text/view/text_view_keys.h"
#include "text/view/text_view_mouse.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QScrollBar>
#include <QStyleHints>

namespace kelm {

TextView::TextView(QWidget* parent)
    : QAbstractScrollArea(parent),
      layout_(storage_),
      editor_(storage_, layout_),
      primarySelection_(std::make_unique<PrimarySelection>(editor_)),
      mouse_(std::make_unique<TextViewMouse>(*this)),
      inputMethod_(std::make_unique<TextViewInputMethod>(*this))
{
    installAccessibleTextViewFactory();
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // A bar that came and went would change the width, and with it the number of rows that calls for the bar.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAttribute(Qt::WA_KeyCompression);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setMouseTracking(true);
    setAcceptDrops(true);

    connect(&storage_, &TextStorage::edited, this, &TextView::textEdited);
    connect(&storage_, &TextStorage::attributesChanged, viewport(), qOverload<>(&QWidget::update));
    connect(&layout_, &TextLayout::rowsCorrected, this, &TextView::queueScrollSync);
    connect(&editor_, &TextEditor::selectionChanged, this, &TextView::selectionChanged);
    connect(&editor_, &TextEditor::textChanged, this, [this] {
        if (delegate_ != nullptr) {
            delegate_->textDidChange();
        }
    });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &TextView::scrollBarMoved);
    connect(QGuiApplication::styleHints(), &QStyleHints::cursorFlashTimeChanged, this, [this] {
        restartBlink();
        updateCarets();
    });
    verticalScrollBar()->setSingleStep(static_cast<int>(layout_.rowHeight()));
    updateWrapWidth();
}

TextView::~TextView() = default;

void TextView::setSelectedRange(TextRange range)
{
    commitComposition();
    editor_.select(range.clampedTo(storage_.length()));
}

void TextView::setWholeText(WholeText* text)
{
    wholeText_ = text;
    editor_.setWholeText(text);
}

void TextView::setReadOnly(bool readOnly)
{
    commitComposition();
    editor_.setReadOnly(readOnly);
    setAttribute(Qt::WA_InputMethodEnabled, !readOnly);
    viewport()->update();
}

void TextView::setColors(const TextViewColors& colors)
{
    colors_ = colors;
    // The scroll bar stands on the text's own ground.
    QPalette ground = palette();
    ground.setColor(QPalette::Window, colors.background);
    ground.setColor(QPalette::WindowText, colors.background.lightness() < 128 ? Qt::white : Qt::black);
    verticalScrollBar()->setPalette(ground);
    verticalScrollBar()->setAutoFillBackground(true);
    viewport()->update();
}

void TextView::setHighlights(std::vector<TextHighlight> highlights)
{
    highlights_ = std::move(highlights);
    viewport()->update();
}

void TextView::commitComposition()
{
    inputMethod_->commit();
}

QMenu* TextView::makeContextMenu()
{
    auto* menu = new QMenu(this);
    const auto add = [&](const QString& label, QKeySequence::StandardKey key, auto slot, bool enabled) {
        QAction* action = menu->addAction(label, this, slot);
        action->setShortcut(QKeySequence(key));
        action->setEnabled(enabled);
    };
    const bool hasText = editor_.selections().hasText();
    add(tr("Undo"), QKeySequence::Undo, &TextView::undo, editor_.canUndo());
    add(tr("Redo"), QKeySequence::Redo, &TextView::redo, editor_.canRedo());
    menu->addSeparator();
    add(tr("Cut"), QKeySequence::Cut, &TextView::cut, hasText && !isReadOnly());
    add(tr("Copy"), QKeySequence::Copy, &TextView::copy, hasText);
    add(tr("Paste"), QKeySequence::Paste, &TextView::paste, !isReadOnly());
    add(tr("Delete"), QKeySequence::Delete, &TextView::deleteSelection, hasText && !isReadOnly());
    menu->addSeparator();
    add(tr("Select All"), QKeySequence::SelectAll, &TextView::selectAll, storage_.length() > 0);
    menu->addSeparator();
    menu->addAction(tr("Find in Text…"), this, &TextView::showFindBar);
    menu->addAction(tr("Use Selection for Find"), this, &TextView::useSelectionForFind)->setEnabled(hasText);
    return menu;
}

QVariant TextView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    return inputMethod_->query(query);
}

void TextView::undo()
{
    commitComposition();
    editor_.undo();
    showCaret();
}

void TextView::redo()
{
    commitComposition();
    editor_.redo();
    showCaret();
}

void TextView::deleteSelection()
{
    commitComposition();
    if (editor_.selections().hasText()) {
        // Carets without text among the selections take nothing.
        editor_.insertText(QString(), EditKind::other);
        showCaret();
    }
}

void TextView::selectAll()
{
    commitComposition();
    editor_.selectAll();
    primarySelection_->follow();
}

FindBar& TextView::findBar()
{
    if (findBar_ == nullptr) {
        findBar_ = new FindBar(*this);
    }
    return *findBar_;
}

void TextView::showFindBar()
{
    findBar().open(false);
}

void TextView::showReplaceBar()
{
    findBar().open(true);
}

void TextView::findNext()
{
    findBar().findNext();
}

void TextView::findPrevious()
{
    findBar().findPrevious();
}

void TextView::useSelectionForFind()
{
    findBar().useSelection();
}

bool TextView::keyDown(QKeyEvent* /*event*/)
{
    return false;
}

bool TextView::isKeyOfText(const QKeyEvent& event) const
{
    return keyActionFor(event) || insertsText(event);
}

bool TextView::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && isKeyOfText(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        awaitsPress_ = awaitsPress_ && key->isAutoRepeat();
        if (awaitsPress_ && !goesOnWhenHeld(*key)) {
            event->setAccepted(isKeyOfText(*key));
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void TextView::keyPressEvent(QKeyEvent* event)
{
    if (keyDown(event)) {
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Escape && !editor_.selections().isSingle()) {
        event->accept();
        keepPrimaryCaret();
        return;
    }
    if (const auto action = keyActionFor(*event)) {
        event->accept();
        runKeyAction(*action);
        return;
    }
    if (insertsText(*event)) {
        event->accept();
        if (!isReadOnly()) {
            commitComposition();
            QString typed = event->text();
            if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
                typed = QStringLiteral("\n");
            }
            editor_.insertText(typed, EditKind::typing);
            showCaret();
        }
        return;
    }
    QAbstractScrollArea::keyPressEvent(event);
}

void TextView::keepPrimaryCaret()
{
    commitComposition();
    SelectionSet selections = editor_.selections();
    selections.keepPrimary();
    editor_.setSelections(std::move(selections));
    showCaret();
}

void TextView::runKeyAction(int action)
{
    commitComposition();
    editor_.setPageRows(std::max(1, static_cast<int>(viewport()->height() / layout_.rowHeight()) - 1));
    const KeyAction& entry = keyActions()[static_cast<std::size_t>(action)];
    switch (entry.kind) {
    case KeyAction::Kind::move:
        editor_.move(entry.movement, entry.extend);
        if (entry.extend == Extend::yes) {
            primarySelection_->follow();
        }
        break;
    case KeyAction::Kind::erase:
        editor_.erase(entry.movement);
        break;
    case KeyAction::Kind::addCaret:
        editor_.addCarets(entry.movement);
        break;
    case KeyAction::Kind::slot:
        (this->*entry.slot)();
        return;
    }
    showCaret();
}

void TextView::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    awaitsPress_ = true;
    restartBlink();
    viewport()->update();
}

void TextView::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    // A menu that pops up over the text does not end what is being composed.
    if (event->reason() != Qt::PopupFocusReason) {
        commitComposition();
        editor_.endUndoRun();
    }
    blinkTimer_.stop();
    viewport()->update();
}

void TextView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == blinkTimer_.timerId()) {
        isCaretOn_ = !isCaretOn_;
        for (const QRectF& box : caretBoxes(visibleRows())) {
            viewport()->update(box.toAlignedRect());
        }
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

void TextView::inputMethodEvent(QInputMethodEvent* event)
{
    inputMethod_->handle(event);
}

void TextView::contextMenuEvent(QContextMenuEvent* event)
{
    commitComposition();
    mouse_->endGesture();
    // The view may go while its menu is open, and the menu with it.
    const QPointer<QMenu> menu(makeContextMenu());
    menu->exec(event->reason() == QContextMenuEvent::Keyboard
                   ? viewport()->mapToGlobal(caretBox(editor_.selections().primary().head).bottomLeft().toPoint())
                   : event->globalPos());
    delete menu;
}

bool TextView::focusNextPrevChild(bool next)
{
    // Tab is typed where the text can be changed.
    return isReadOnly() && QAbstractScrollArea::focusNextPrevChild(next);
}

void TextView::textEdited(const TextEdit& edit)
{
    anchor_ = layout_.carriedOver(anchor_, edit);
    topBeforeResize_.reset();
    for (TextHighlight& highlight : highlights_) {
        const qsizetype start = edit.moved(highlight.range.location);
        highlight.range = TextRange::between(start, std::max(start, edit.moved(highlight.range.end(), false)));
    }
    const std::optional<QRect> place = placeOfEdit(edit);
    syncScrollBar();
    notifyAccessibleEdit(*this, edit);
    if (place) {
        viewport()->update(*place);
    } else {
        viewport()->update();
    }
}

void TextView::selectionChanged()
{
    restartBlink();
    updateCarets();
    Q_EMIT copyAvailable(editor_.selections().hasText());
    notifyAccessibleSelection(*this);
    updateMicroFocus();
    if (delegate_ != nullptr) {
        delegate_->textViewDidChangeSelection();
    }
}

void TextView::restartBlink()
{
    isCaretOn_ = true;
    const int flashTime = QGuiApplication::styleHints()->cursorFlashTime();
    if (hasFocus() && flashTime >= 2) {
        blinkTimer_.start(flashTime / 2, this);
    } else {
        blinkTimer_.stop();
    }
}

void TextView::showDropCaret(std::optional<CaretPlace> place)
{
    dropCaret_ = place;
    viewport()->update();
}

} // namespace kelm
