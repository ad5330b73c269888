// What a file and a hunk of a shown diff are drawn from.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/diff_view_mode.h"

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

    HunkBlock hunkBlock(qsizetype index) const;
};

} // namespace kelm
