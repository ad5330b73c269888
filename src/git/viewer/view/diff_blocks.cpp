#include "git/viewer/view/diff_blocks.h"

namespace kelm {

HunkBlock FileBlock::hunkBlock(qsizetype index) const
{
    const DiffHunk& hunk = file.hunks[index];
    HunkBlock block{hunk, mode, collapsed.contains(hunk.id), {}, {}, hunkActionLabel, {}};
    block.onToggle = [toggle = onToggleHunk, id = hunk.id] { toggle(id); };
    if (onHunkAction) {
        block.onAction = [act = onHunkAction, index] { act(index); };
        block.hindrance = hindranceOf ? hindranceOf(index) : HunkHindrance();
    }
    return block;
}

} // namespace kelm
