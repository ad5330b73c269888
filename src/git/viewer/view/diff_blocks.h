// What a file and a hunk of a shown diff are drawn from.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/diff_view_mode.h"
#include "git/diff/hunk_hindrance.h"

#include <QSet>

#include <functional>

namespace kelm {

/// One hunk and what its header's buttons do. Without `onAction` there is no such button.
struct HunkBlock
{
    DiffHunk hunk;
    DiffViewMode mode = DiffViewMode::unified;
    bool collapsed = false;
    std::function<void()> onToggle;
    std::function<void()> onAction;
    QString actionLabel;
    /// Why the action cannot be done, or what it does beside what is said.
    HunkHindrance hindrance;
};

/// One file. `onHunkAction` may be absent; it gets the index of the hunk.
struct FileBlock
{
    DiffFile file;
    DiffViewMode mode = DiffViewMode::unified;
    QSet<QUuid> collapsed;
    std::function<void(const QUuid& hunk)> onToggleHunk;
    std::function<void(qsizetype hunk)> onHunkAction;
    QString hunkActionLabel;
    /// Tells what stands in the way of the action on a hunk; absent when nothing does.
    std::function<HunkHindrance(qsizetype hunk)> hindranceOf;

    HunkBlock hunkBlock(qsizetype index) const;
};

} // namespace kelm
