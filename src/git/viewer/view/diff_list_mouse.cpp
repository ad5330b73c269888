// Selecting and copying the text of a list of diffs.
#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_painter.h"
#include "platform/view/plain_help.h"
#include "text/boundaries/text_boundaries.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimerEvent>
#include <QToolTip>

namespace kelm {

using Part = DiffPlace::Part;

const DiffColumn& DiffList::columnAt(qreal x) const
{
    return x < columns_.back().left ? columns_.front() : columns_.back();
}

const DiffColumn& DiffList::columnOf(SideBySideHunkLines::Side side) const
{
    return side == SideBySideHunkLines::Side::oldSide ? columns_.front() : columns_.back();
}

bool DiffList::isOverText(const QPointF& point)
{
    const auto y = static_cast<qint64>(point.y()) + scrolledTo();
    const DiffPlace place = layout_.placeAt(y);
    if (place.part == Part::entry) {
        const DiffColumn& column = columnAt(point.x());
        return point.x() >= column.bodyLeft && point.x() < column.right;
    }
    if (place.part == Part::fileHeader) {
        const QRectF path = pathRect(scene(), place.file, 0, columns_.front().left, columns_.back().right);
        return point.x() >= path.left() && point.x() < path.right();
    }
    return false;
}

/// The offset in a path. One that is cut in the middle is taken whole.
qsizetype DiffList::pathUnitAt(qsizetype file, qreal x)
{
    const QString path = shownPath(layout_.files()[file]);
    const QRectF place = pathRect(scene(), file, 0, columns_.front().left, columns_.back().right);
    const qreal inside = x - place.left();
    if (QFontMetricsF(fonts_.path).horizontalAdvance(path) > place.width() + 1) {
        return inside < place.width() / 2 ? 0 : path.size();
    }
    return DiffRowText(path, fonts_.path, place.width() + 1).unitAt(inside);
}

DiffTextPlace DiffList::textPlaceAt(const QPointF& point, const DiffColumn& column)
{
    const auto y = static_cast<qint64>(std::floor(point.y())) + scrolledTo();
    const DiffPlace place = layout_.placeAt(y);
    switch (place.part) {
    case Part::gap:
        return {place.file, -1, 0, 0};
    case Part::fileHeader:
        return {place.file, -1, 0, pathUnitAt(place.file, point.x())};
    case Part::hunkHeader:
        return {place.file, place.hunk, 0, 0};
    case Part::entry:
        break;
    }
    DiffTextPlace found{place.file, place.hunk, place.entry, 0};
    if (const DiffLine* line = lineOn(column.side, layout_, place.file, place.hunk, place.entry)) {
        const qint64 inEntry = y - layout_.entryTop(place.file, place.hunk, place.entry);
        const qsizetype lastRow = texts_.rows(line->text, layout_.columns()).count() - 1;
        const qsizetype row = std::min<qsizetype>(inEntry / metrics_.row, lastRow);
        const qsizetype start = texts_.rows(line->text, layout_.columns()).start(row);
        const DiffRowText& text = texts_.row(line->text, row, layout_.columns(), column.bodyWidth());
        found.unit = start + text.unitAt(point.x() - column.bodyLeft);
    }
    return found;
}

void DiffList::select(const DiffSelection& selection)
{
    selection_ = selection;
    viewport()->update();
}

void DiffList::clearSelection()
{
    selection_.reset();
    viewport()->update();
}

std::pair<DiffTextPlace, SideBySideHunkLines::Side> DiffList::textAt(const QPoint& point)
{
    const DiffColumn& column = columnAt(point.x());
    return {textPlaceAt(point, column), column.side};
}

void DiffList::extendSelection(const QPointF& point)
{
    if (selection_) {
        DiffSelection extended = *selection_;
        extended.caret = textPlaceAt(point, columnOf(extended.side));
        select(extended);
    }
}

void DiffList::endDrag()
{
    dragTimer_.stop();
    isDragging_ = false;
}

void DiffList::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || layout_.files().isEmpty()) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    const DiffColumn& column = columnAt(event->position().x());
    if (selection_ && event->modifiers().testFlag(Qt::ShiftModifier)) {
        extendSelection(event->position());
    } else {
        const DiffTextPlace place = textPlaceAt(event->position(), column);
        select({place, place, column.side});
    }
    isDragging_ = isOverText(event->position());
    const DiffPlace place = layout_.placeAt(static_cast<qint64>(event->position().y()) + scrolledTo());
    if (place.part == Part::hunkHeader || place.part == Part::entry) {
        current_ = HunkControl{place.file, place.hunk, HunkControl::Role::toggle};
    }
}

void DiffList::mouseMoveEvent(QMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        endDrag();
    }
    viewport()->setCursor(isDragging_ || isOverText(event->position()) ? Qt::IBeamCursor : Qt::ArrowCursor);
    if (!isDragging_) {
        return;
    }
    constexpr int interval = 30;
    dragPoint_ = event->position();
    extendSelection(dragPoint_);
    const bool isOutside = dragPoint_.y() < 0 || dragPoint_.y() >= viewport()->height();
    if (isOutside && !dragTimer_.isActive()) {
        dragTimer_.start(interval, this);
    } else if (!isOutside) {
        dragTimer_.stop();
    }
}

void DiffList::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != dragTimer_.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    // The farther outside, the faster.
    const qreal beyond = dragPoint_.y() < 0 ? dragPoint_.y() : dragPoint_.y() - viewport()->height() + 1;
    verticalScrollBar()->setValue(verticalScrollBar()->value() + static_cast<int>(beyond));
    extendSelection(dragPoint_);
}

void DiffList::mouseReleaseEvent(QMouseEvent* event)
{
    dragTimer_.stop();
    if (event->button() == Qt::LeftButton && isDragging_) {
        isDragging_ = false;
        QClipboard* const clipboard = QGuiApplication::clipboard();
        const QString text = clipboard->supportsSelection() ? selectedText() : QString();
        if (!text.isEmpty()) {
            clipboard->setText(text, QClipboard::Selection);
        }
    }
}

void DiffList::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !isOverText(event->position())) {
        return;
    }
    const DiffColumn& column = columnAt(event->position().x());
    const DiffTextPlace place = textPlaceAt(event->position(), column);
    const DiffLine* line = place.hunk < 0 ? nullptr : lineOn(column.side, layout_, place.file, place.hunk, place.entry);
    const QString text =
        place.hunk < 0 ? shownPath(layout_.files()[place.file]) : (line == nullptr ? QString() : line->text.toString());
    const TextRange word = wordAt(text, place.unit);
    DiffSelection selection{place, place, column.side};
    selection.anchor.unit = word.location;
    selection.caret.unit = word.location + word.length;
    select(selection);
}

QString DiffList::selectedText() const
{
    return selection_ ? kelm::selectedText(layout_, *selection_) : QString();
}

void DiffList::copy() const
{
    QString text = selectedText();
    if (text.isEmpty()) {
        const auto hunk = currentHunk();
        text = hunk ? hunkText(layout_, hunk->file, hunk->hunk) : QString();
    }
    // What was copied before is worth more than nothing.
    if (!text.isEmpty()) {
        QGuiApplication::clipboard()->setText(text);
    }
}

void DiffList::selectAll()
{
    const auto side = selection_ ? selection_->side : SideBySideHunkLines::Side::newSide;
    select(wholeSelection(layout_, side));
}

void DiffList::contextMenuEvent(QContextMenuEvent* event)
{
    // The menu takes the release of the button.
    endDrag();
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* copyAction = menu->addAction(tr("Copy"), this, &DiffList::copy);
    copyAction->setShortcut(QKeySequence::Copy);
    copyAction->setEnabled((selection_ && !selection_->isEmpty()) || currentHunk());
    menu->addAction(tr("Select All"), this, &DiffList::selectAll)->setShortcut(QKeySequence::SelectAll);
    if (const auto hunk = currentHunk()) {
        menu->addSeparator();
        menu->addAction(tr("Next Hunk"), this, [this] { goToHunk(true); })->setShortcut(Qt::Key_F7);
        menu->addAction(tr("Previous Hunk"), this, [this] { goToHunk(false); })->setShortcut(Qt::SHIFT | Qt::Key_F7);
        if (hasActions()) {
            QAction* act = menu->addAction(blockOf_(hunk->file).hunkActionLabel, this, &DiffList::actOnHunk);
            act->setShortcut(Qt::CTRL | Qt::Key_Return);
            act->setEnabled(canAct(hunk->file, hunk->hunk));
        }
    }
    menu->popup(event->globalPos());
}

bool DiffList::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        QToolTip::showText(help->globalPos(), plainHelp(helpAt(help->pos())), viewport());
        return true;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

/// What finds no room in a header, whole.
QString DiffList::helpAt(const QPoint& point)
{
    constexpr qsizetype longest = 1000;
    const DiffPlace place = layout_.placeAt(point.y() + scrolledTo());
    const DiffScene shown = scene();
    if (place.part == Part::fileHeader) {
        const auto [left, right] = std::pair(columns_.front().left, columns_.back().right);
        const DiffFile& file = layout_.files()[place.file];
        const QString path = shownPath(file);
        const QRectF room = pathRect(shown, place.file, 0, left, right);
        QStringList cut;
        if (QFontMetricsF(fonts_.path).horizontalAdvance(path) > room.width() + 1) {
            cut.append(path);
        }
        if (const QString label = fileLabel(file, sizes_.value(place.file));
            shownFileLabel(shown, place.file, left, right).size() < label.size()) {
            cut.append(label);
        }
        return cut.join(u'\n');
    }
    if (place.part == Part::hunkHeader) {
        const QString header = layout_.files()[place.file].hunks[place.hunk].header.left(longest);
        const qreal room = shown.hunkHeaderTextEnd - diffSizes::hunkHeaderHorizontal - diffSizes::toggleSymbol -
                           diffSizes::headerSpacing;
        return QFontMetricsF(fonts_.hunkHeader).horizontalAdvance(header) > room + 1 ? header : QString();
    }
    return {};
}

} // namespace kelm
