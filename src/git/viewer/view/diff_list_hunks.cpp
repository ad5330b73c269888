// Going from hunk to hunk in a list of diffs.
#include "git/viewer/view/diff_list.h"
#include "platform/view/plain_button.h"
#include "platform/view/plain_help.h"

#include <QAccessible>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

namespace kelm {

using Role = HunkControl::Role;
using Part = DiffPlace::Part;

std::optional<HunkControl> DiffList::currentHunk() const
{
    if (const auto focused = controls_.focused()) {
        return focused;
    }
    if (current_ && isOnScreen(*current_)) {
        return current_->hunk < 0 ? std::nullopt : current_;
    }
    const DiffPlace top = layout_.placeAt(scrolledTo());
    if (top.part == Part::entry) {
        // What is read is the hunk that goes on, unless the next begins in the upper half.
        const auto next = firstControl();
        const bool isNextNear =
            next && layout_.hunkTop(next->file, next->hunk) - scrolledTo() < viewport()->height() / 2;
        return isNextNear ? next : HunkControl{top.file, top.hunk, Role::toggle};
    }
    return firstControl();
}

/// What somebody has scrolled away from is not what a key is meant for.
bool DiffList::isOnScreen(const HunkControl& hunk) const
{
    const qint64 top = hunk.hunk < 0 ? layout_.fileTop(hunk.file) : layout_.hunkTop(hunk.file, hunk.hunk);
    return top < scrolledTo() + viewport()->height() && bottomOf(hunk) > scrolledTo();
}

qint64 DiffList::bottomOf(const HunkControl& hunk) const
{
    const bool isLast = hunk.hunk + 1 >= layout_.files()[hunk.file].hunks.size();
    return isLast ? layout_.fileTop(hunk.file) + layout_.fileHeight(hunk.file)
                  : layout_.hunkTop(hunk.file, hunk.hunk + 1);
}

std::optional<std::pair<qsizetype, qsizetype>> DiffList::markedHunk() const
{
    return hasFocus() && current_ ? std::optional(std::pair(current_->file, current_->hunk)) : std::nullopt;
}

bool DiffList::canAct(qsizetype file, qsizetype hunk) const
{
    const FileBlock block = blockOf_(file);
    return block.onHunkAction && (!block.hindranceOf || block.hindranceOf(hunk).reason.isEmpty());
}

void DiffList::setCurrentHunk(const HunkControl& hunk)
{
    current_ = HunkControl{hunk.file, hunk.hunk, Role::toggle};
    const qint64 top = layout_.hunkTop(hunk.file, hunk.hunk);
    if (top < scrolledTo() || bottomOf(hunk) > scrolledTo() + viewport()->height()) {
        // With the file's header, where the hunk is the first below it.
        const qint64 above = (hunk.hunk == 0 ? top - layout_.fileTop(hunk.file) : 0) + metrics_.spacing / 2;
        verticalScrollBar()->setValue(
            static_cast<int>(std::clamp<qint64>(top - above, 0, verticalScrollBar()->maximum())));
    }
    setFocus(Qt::ShortcutFocusReason);
    viewport()->update();
    if (QAccessible::isActive()) {
        const auto offset = transcript().offsetOf({hunk.file, hunk.hunk, -1, 0}, SideBySideHunkLines::Side::oldSide);
        QAccessibleTextCursorEvent moved(this, static_cast<int>(offset.value_or(0)));
        QAccessible::updateAccessibility(&moved);
    }
}

void DiffList::goToHunk(bool next)
{
    const QList<DiffFile>& files = layout_.files();
    const auto known = controls_.focused() ? controls_.focused() : current_;
    if (!known || !isOnScreen(*known)) {
        const auto first = next ? firstControl() : currentHunk();
        if (first) {
            setCurrentHunk(*first);
        }
        return;
    }
    const qsizetype step = next ? 1 : -1;
    HunkControl target{known->file, known->hunk + step, Role::toggle};
    while (target.hunk < 0 || target.hunk >= files[target.file].hunks.size()) {
        target.file += step;
        if (target.file < 0 || target.file >= files.size()) {
            return;
        }
        target.hunk = next ? 0 : files[target.file].hunks.size() - 1;
    }
    setCurrentHunk(target);
}

void DiffList::goToFile(bool next)
{
    const QList<DiffFile>& files = layout_.files();
    if (files.isEmpty()) {
        return;
    }
    const auto known = controls_.focused() ? controls_.focused() : current_;
    const qsizetype here =
        known && isOnScreen(*known) ? known->file : std::min(layout_.placeAt(scrolledTo()).file, files.size() - 1);
    const qsizetype file = std::clamp<qsizetype>(here + (next ? 1 : -1), 0, files.size() - 1);
    showFile(file);
}

void DiffList::showFile(qsizetype file)
{
    if (!layout_.files()[file].hunks.isEmpty()) {
        setCurrentHunk({file, 0, Role::toggle});
    } else {
        // A file without hunks is only looked at.
        current_ = HunkControl{file, -1, Role::toggle};
        setFocus(Qt::ShortcutFocusReason);
    }
    const qint64 top = layout_.fileTop(file) - metrics_.spacing / 2;
    verticalScrollBar()->setValue(static_cast<int>(std::clamp<qint64>(top, 0, verticalScrollBar()->maximum())));
    viewport()->update();
}

void DiffList::actOnHunk()
{
    const auto hunk = currentHunk();
    if (!hunk || hunk->hunk < 0) {
        return;
    }
    const HunkBlock block = blockOf_(hunk->file).hunkBlock(hunk->hunk);
    if (!block.onAction) {
        return;
    }
    if (block.hindrance.reason.isEmpty()) {
        block.onAction();
        return;
    }
    const qint64 top =
        std::clamp<qint64>(layout_.hunkTop(hunk->file, hunk->hunk) - scrolledTo(), 0, viewport()->height());
    QToolTip::showText(viewport()->mapToGlobal(QPoint(metrics_.padding, int(top) + metrics_.hunkHeader)),
                       plainHelp(block.hindrance.reason), viewport());
}

void DiffList::selectLine(bool below)
{
    if (!selection_) {
        const auto hunk = currentHunk();
        if (!hunk || hunk->hunk < 0 || layout_.entryCount(hunk->file, hunk->hunk) == 0) {
            return;
        }
        const DiffTextPlace first{hunk->file, hunk->hunk, 0, 0};
        selection_ = DiffSelection{first, first, sideOfHunk(layout_, hunk->file, hunk->hunk)};
    }
    select(extendedByLine(layout_, *selection_, below));
    scrollTo(selection_->caret);
}

} // namespace kelm
