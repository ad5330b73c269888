// The keyboard in a list of diffs.
#include "git/viewer/view/diff_list.h"
#include "platform/view/plain_button.h"

#include <QKeyEvent>
#include <QScrollBar>

namespace kelm {

bool DiffList::event(QEvent* event)
{
    // Before a shortcut of the window takes the key.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll)) {
            event->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

/// The keys that are for hunks and lines; the others scroll.
bool DiffList::handlesHunkKey(const QKeyEvent& event)
{
    const bool isShifted = event.modifiers() == Qt::ShiftModifier;
    if (event.modifiers() != Qt::NoModifier && !isShifted) {
        return false;
    }
    switch (event.key()) {
    case Qt::Key_N:
    case Qt::Key_P: {
        const bool isNext = event.key() == Qt::Key_N;
        isShifted ? goToFile(isNext) : goToHunk(isNext);
        return true;
    }
    case Qt::Key_S:
        if (!isShifted && !event.isAutoRepeat()) {
            actOnHunk();
        }
        return !isShifted;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (isShifted) {
            selectLine(event.key() == Qt::Key_Down);
        }
        return isShifted;
    default:
        return false;
    }
}

void DiffList::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void DiffList::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void DiffList::keyPressEvent(QKeyEvent* event)
{
    if (handlesHunkKey(*event)) {
        return;
    }
    if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (event->key() == Qt::Key_Home) {
        verticalScrollBar()->setValue(0);
    } else if (event->key() == Qt::Key_End) {
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    } else if (event->key() == Qt::Key_Space) {
        const bool isUp = event->modifiers().testFlag(Qt::ShiftModifier);
        verticalScrollBar()->triggerAction(isUp ? QScrollBar::SliderPageStepSub : QScrollBar::SliderPageStepAdd);
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

bool DiffList::hasActions() const
{
    return !layout_.files().isEmpty() && blockOf_(0).onHunkAction != nullptr;
}

std::optional<HunkControl> DiffList::firstControl() const
{
    using Part = DiffPlace::Part;
    const DiffPlace top = layout_.placeAt(scrolledTo());
    for (qsizetype file = top.file; file < layout_.files().size(); ++file) {
        const bool isWithin = file == top.file && (top.part == Part::hunkHeader || top.part == Part::entry);
        const qsizetype hunk = isWithin ? top.hunk + (top.part == Part::entry ? 1 : 0) : 0;
        if (hunk < layout_.files()[file].hunks.size()) {
            return HunkControl{file, hunk, HunkControl::Role::toggle};
        }
    }
    // Nothing below: the hunk that is looked at.
    const bool isInHunk = top.part == Part::entry;
    return isInHunk ? std::optional(HunkControl{top.file, top.hunk, HunkControl::Role::toggle}) : std::nullopt;
}

std::optional<HunkControl> DiffList::neighbour(const HunkControl& control, bool next) const
{
    using Role = HunkControl::Role;
    const QList<DiffFile>& files = layout_.files();
    const auto lastOf = [this](qsizetype file, qsizetype hunk) {
        return canAct(file, hunk) ? Role::action : Role::toggle;
    };
    if (next && control.role != lastOf(control.file, control.hunk)) {
        return HunkControl{control.file, control.hunk, Role::action};
    }
    if (!next && control.role == Role::action) {
        return HunkControl{control.file, control.hunk, Role::toggle};
    }
    if (next && control.hunk + 1 < files[control.file].hunks.size()) {
        return HunkControl{control.file, control.hunk + 1, Role::toggle};
    }
    if (!next && control.hunk > 0) {
        return HunkControl{control.file, control.hunk - 1, lastOf(control.file, control.hunk - 1)};
    }
    const qsizetype step = next ? 1 : -1;
    for (qsizetype file = control.file + step; file >= 0 && file < files.size(); file += step) {
        if (const qsizetype hunks = files[file].hunks.size(); hunks > 0) {
            return next ? HunkControl{file, 0, Role::toggle} : HunkControl{file, hunks - 1, lastOf(file, hunks - 1)};
        }
    }
    return std::nullopt;
}

bool DiffList::focusNextPrevChild(bool next)
{
    const Qt::FocusReason reason = next ? Qt::TabFocusReason : Qt::BacktabFocusReason;
    const std::optional<HunkControl> current = controls_.focused();
    if (!current && !(next && hasFocus())) {
        return QAbstractScrollArea::focusNextPrevChild(next);
    }
    if (const auto target = current ? neighbour(*current, next) : firstControl()) {
        focusControl(*target, reason);
        return true;
    }
    if (current && !next) {
        setFocus(reason);
        return true;
    }
    return QAbstractScrollArea::focusNextPrevChild(next);
}

void DiffList::focusControl(const HunkControl& control, Qt::FocusReason reason)
{
    scrollToHunk(control.file, control.hunk);
    placeControls();
    if (PlainButton* button = controls_.button(control)) {
        button->setFocus(reason);
    }
}

/// Puts the keyboard where it was before the files were replaced, or next to it.
void DiffList::restoreFocus(const HunkControl& control)
{
    const QList<DiffFile>& files = layout_.files();
    HunkControl target = control;
    if (target.file >= files.size() || files[target.file].hunks.isEmpty()) {
        const auto first = firstControl();
        if (!first) {
            return;
        }
        target.file = first->file;
        target.hunk = first->hunk;
    }
    target.hunk = std::min(target.hunk, files[target.file].hunks.size() - 1);
    if (!canAct(target.file, target.hunk)) {
        target.role = HunkControl::Role::toggle;
    }
    focusControl(target, Qt::OtherFocusReason);
}

void DiffList::scrollToHunk(qsizetype file, qsizetype hunk)
{
    const qint64 top = layout_.hunkTop(file, hunk);
    if (top >= scrolledTo() && top + metrics_.hunkHeader <= scrolledTo() + viewport()->height()) {
        return;
    }
    // With the file's header, where the hunk is the first below it.
    const qint64 above = hunk == 0 ? top - layout_.fileTop(file) : 0;
    verticalScrollBar()->setValue(
        static_cast<int>(std::min<qint64>(top - above - metrics_.spacing / 2, verticalScrollBar()->maximum())));
}

} // namespace kelm
