#include "text/view/text_view_mouse.h"

#include "text/boundaries/text_boundaries.h"
#include "text/view/primary_selection.h"
#include "text/view/text_view.h"

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QStyleHints>
#include <QUrl>

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int scrollIntervalMs = 30;

/// Whether the data are files, or links that a program takes: those belong to the window, which opens them. The address
/// of a page is a text like any other.
bool isForTheWindow(const QMimeData& data)
{
    static const QStringList schemesOfPages{u"http"_s, u"https"_s, u"ftp"_s, u"mailto"_s};
    const QList<QUrl> urls = data.urls();
    return std::any_of(urls.begin(), urls.end(),
                       [](const QUrl& url) { return !schemesOfPages.contains(url.scheme().toLower()); });
}

/// The text of data, or the addresses, a line each, where there is no other.
QString textOf(const QMimeData& data)
{
    // Not every platform gives the one in the place of the other.
    if (const QString text = data.text(); !text.isEmpty()) {
        return text;
    }
    QStringList addresses;
    for (const QUrl& url : data.urls()) {
        addresses << url.toString(QUrl::FullyEncoded);
    }
    return addresses.join(u'\n');
}

} // namespace

TextViewMouse::TextViewMouse(TextView& view) : view_(view) {}

void TextViewMouse::press(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    view_.commitComposition();
    if (event->button() == Qt::MiddleButton) {
        pasteSelection(point);
        return;
    }
    if (event->button() != Qt::LeftButton) {
        return;
    }
    pressedAt_ = point;
    const bool isThird = lastDoubleClickTime_ >= 0 &&
                         static_cast<qint64>(event->timestamp()) - lastDoubleClickTime_ <
                             QGuiApplication::styleHints()->mouseDoubleClickInterval() &&
                         (point - lastDoubleClick_).manhattanLength() < QApplication::startDragDistance();
    lastDoubleClickTime_ = -1;
    if (isThird) {
        begin(point, Unit::line, event->modifiers());
    } else if (event->modifiers() == Qt::NoModifier && isSelected(point)) {
        state_ = State::mayDrag;
    } else {
        begin(point, Unit::character, event->modifiers());
    }
}

void TextViewMouse::doubleClick(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        press(event);
        return;
    }
    view_.commitComposition();
    lastDoubleClick_ = event->position().toPoint();
    lastDoubleClickTime_ = static_cast<qint64>(event->timestamp());
    begin(lastDoubleClick_, Unit::word, event->modifiers());
}

void TextViewMouse::move(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        endGesture();
    }
    if (state_ == State::mayDrag && (point - pressedAt_).manhattanLength() >= QApplication::startDragDistance()) {
        state_ = State::idle;
        startDrag();
    } else if (state_ == State::selecting) {
        extendTo(point);
        const bool isOutside = point.y() < 0 || point.y() >= view_.viewport()->height();
        if (isOutside && !scrollTimer_.isActive()) {
            scrollTimer_.start(scrollIntervalMs, this);
        } else if (!isOutside) {
            scrollTimer_.stop();
        }
    } else if (event->buttons() == Qt::NoButton) {
        view_.viewport()->setCursor(isSelected(point) ? Qt::ArrowCursor : Qt::IBeamCursor);
    }
}

void TextViewMouse::release(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    scrollTimer_.stop();
    if (state_ == State::mayDrag) {
        // Pressed and not moved: an ordinary click into the selection.
        begin(event->position().toPoint(), Unit::character, Qt::NoModifier);
    }
    if (state_ == State::selecting) {
        view_.primarySelection_->offer();
    }
    state_ = State::idle;
}

void TextViewMouse::endGesture()
{
    scrollTimer_.stop();
    state_ = State::idle;
}

bool TextViewMouse::acceptsDrop(const QDropEvent& event) const
{
    return !view_.isReadOnly() && event.mimeData()->hasText() && !isForTheWindow(*event.mimeData());
}

void TextViewMouse::drop(QDropEvent* event)
{
    view_.commitComposition();
    TextEditor& editor = view_.editor();
    const qsizetype at = view_.placeAt(event->position().toPoint()).offset;
    if (isDragging_ && event->dropAction() == Qt::MoveAction) {
        if (!editor.moveSelectedTextTo(at)) {
            // Dropped onto itself.
            event->setDropAction(Qt::IgnoreAction);
            return;
        }
    } else {
        editor.applyAndSelect({{{at, 0}, textOf(*event->mimeData())}});
    }
    event->acceptProposedAction();
    view_.setFocus();
}

void TextViewMouse::timerEvent(QTimerEvent* /*event*/)
{
    const int height = view_.viewport()->height();
    const int past = lastPoint_.y() < 0 ? lastPoint_.y() : std::max(0, lastPoint_.y() - height + 1);
    QScrollBar* bar = view_.verticalScrollBar();
    bar->setValue(bar->value() + std::clamp(past, -height / 4, height / 4));
    extendTo(lastPoint_);
}

bool TextViewMouse::isSelected(QPoint point) const
{
    const CaretPlace place = view_.placeAt(point);
    const auto& all = view_.editor().selections().all();
    return std::any_of(all.begin(), all.end(), [&](const Selection& selection) {
        if (!selection.range().contains(place.offset) && !(place.offset == selection.range().end())) {
            return false;
        }
        // The place nearest to a point can lie on the other side of the selection's edge.
        const QRectF start = view_.caretRect({selection.range().location, false});
        const QRectF end = view_.caretRect({selection.range().end(), true});
        const bool behindStart = point.y() >= start.bottom() || point.x() >= start.x();
        const bool beforeEnd = point.y() < end.top() || point.x() < end.x();
        return !selection.isCaret() && behindStart && beforeEnd;
    });
}

TextRange TextViewMouse::unitAt(qsizetype offset) const
{
    switch (unit_) {
    case Unit::character:
        return {offset, 0};
    case Unit::word:
        return wordAt(view_.storage().tree(), offset);
    case Unit::line:
        return view_.storage().lineRange({offset, 0});
    }
    return {offset, 0};
}

void TextViewMouse::begin(QPoint point, Unit unit, Qt::KeyboardModifiers modifiers)
{
    state_ = State::selecting;
    unit_ = unit;
    lastPoint_ = point;
    TextEditor& editor = view_.editor();
    others_.clear();
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        const Selection& primary = editor.selections().primary();
        origin_ = {primary.anchor, 0};
        originPlace_ = {primary.anchor, false};
        extendTo(point);
        return;
    }
    if (modifiers.testFlag(Qt::ControlModifier)) {
        others_ = editor.selections().all();
    }
    originPlace_ = view_.placeAt(point);
    origin_ = unitAt(originPlace_.offset);
    extendTo(point);
}

void TextViewMouse::extendTo(QPoint point)
{
    lastPoint_ = point;
    const CaretPlace place = view_.placeAt(point);
    const TextRange unit = unitAt(place.offset);
    Selection selection;
    if (place.offset < origin_.location) {
        selection.anchor = origin_.end();
        selection.head = unit_ == Unit::character ? place : CaretPlace{unit.location, false};
    } else {
        selection.anchor = origin_.location;
        selection.head = unit_ == Unit::character ? place : CaretPlace{std::max(unit.end(), origin_.end()), false};
    }
    std::vector<Selection> all = others_;
    all.push_back(selection);
    view_.editor().setSelections(SelectionSet(std::move(all)));
}

void TextViewMouse::startDrag()
{
    auto* drag = new QDrag(&view_);
    drag->setMimeData(new OfferedText(std::make_shared<SelectedText>(view_.editor().selected())));
    isDragging_ = true;
    // The view may be closed while the drag goes on.
    const QPointer<TextView> guard(&view_);
    const Qt::DropActions actions = view_.isReadOnly() ? Qt::CopyAction : Qt::CopyAction | Qt::MoveAction;
    const Qt::DropAction done = drag->exec(actions, view_.isReadOnly() ? Qt::CopyAction : Qt::MoveAction);
    if (!guard) {
        return;
    }
    const bool wentElsewhere = drag->target() != nullptr && drag->target() != view_.viewport();
    isDragging_ = false;
    if (done == Qt::MoveAction && wentElsewhere) {
        view_.deleteSelection();
    }
}

void TextViewMouse::pasteSelection(QPoint point)
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard->supportsSelection() || view_.isReadOnly()) {
        return;
    }
    const QString text = clipboard->text(QClipboard::Selection);
    if (!text.isEmpty()) {
        view_.pasteAt(text, view_.placeAt(point).offset);
    }
}

void TextView::mousePressEvent(QMouseEvent* event)
{
    mouse_->press(event);
}

void TextView::mouseMoveEvent(QMouseEvent* event)
{
    mouse_->move(event);
}

void TextView::mouseReleaseEvent(QMouseEvent* event)
{
    mouse_->release(event);
}

void TextView::mouseDoubleClickEvent(QMouseEvent* event)
{
    mouse_->doubleClick(event);
}

void TextView::dragEnterEvent(QDragEnterEvent* event)
{
    if (mouse_->acceptsDrop(*event)) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void TextView::dragMoveEvent(QDragMoveEvent* event)
{
    if (!mouse_->acceptsDrop(*event)) {
        event->ignore();
        return;
    }
    showDropCaret(placeAt(event->position().toPoint()));
    event->acceptProposedAction();
}

void TextView::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    showDropCaret({});
}

void TextView::dropEvent(QDropEvent* event)
{
    showDropCaret({});
    if (mouse_->acceptsDrop(*event)) {
        mouse_->drop(event);
    } else {
        event->ignore();
    }
}

} // namespace kelm
