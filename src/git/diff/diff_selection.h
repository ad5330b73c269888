// Selected text of a shown diff.
#pragma once

#include "git/diff/diff_layout.h"
#include "git/diff/word_diff_cache.h"

#include <QString>

#include <optional>
#include <tuple>

namespace kelm {

/// A place in the text of a diff: in the path of a file, or in a line. Offsets are UTF-16 units.
struct DiffTextPlace
{
    qsizetype file = 0;
    /// -1 for the file's path.
    qsizetype hunk = -1;
    qsizetype entry = 0;
    qsizetype unit = 0;

    bool operator==(const DiffTextPlace&) const = default;
    /// In the order of reading.
    friend bool operator<(const DiffTextPlace& a, const DiffTextPlace& b)
    {
        return std::tie(a.file, a.hunk, a.entry, a.unit) < std::tie(b.file, b.hunk, b.entry, b.unit);
    }
};

/// A stretch of paths and lines, from where it was begun to where it ends now. In the side-by-side form it holds the
/// lines of one side.
struct DiffSelection
{
    DiffTextPlace anchor;
    DiffTextPlace caret;
    SideBySideHunkLines::Side side = SideBySideHunkLines::Side::newSide;

    bool isEmpty() const { return anchor == caret; }
};

/// The path as it is shown: without the quotes of git, with a sign for each character that is not seen, and "(diff)"
/// for a file that has none.
QString shownPath(const DiffFile& file);

/// The line that one side of an entry shows; null where it shows none. In the unified form both sides are the same.
const DiffLine* lineOn(SideBySideHunkLines::Side side, const DiffLayout& layout, qsizetype file, qsizetype hunk,
                       qsizetype entry);

/// Everything, on one side.
DiffSelection wholeSelection(const DiffLayout& layout, SideBySideHunkLines::Side side);

/// The selected units of a text of `length` units that stands at `place`, whose own unit does not count. Nothing where
/// the selection does not touch it.
std::optional<LineStretch> selectedStretch(const DiffSelection& selection, DiffTextPlace place, qsizetype length);

/// The line below a place, or above it, at its first unit; paths are lines too, and what is collapsed is passed over.
/// Nothing at an end. `side` is one of those that the form has.
std::optional<DiffTextPlace> neighbouringLine(const DiffLayout& layout, const DiffTextPlace& place,
                                              SideBySideHunkLines::Side side, bool isBelow);

/// The selection with its caret a line farther down or up, of whole lines; first the caret's own, unless that has no
/// text. The same at an end.
DiffSelection extendedByLine(const DiffLayout& layout, const DiffSelection& selection, bool isBelow);

/// The selected text: whole lines without their signs, with a line feed between two. What is collapsed is left out.
QString selectedText(const DiffLayout& layout, const DiffSelection& selection);

/// The side that stands for a hunk by itself: the new one, or the old one where no line of the hunk is on the other.
SideBySideHunkLines::Side sideOfHunk(const DiffLayout& layout, qsizetype file, qsizetype hunk);

/// The lines of a hunk on that side, whether or not it is collapsed, in the form of `selectedText`.
QString hunkText(const DiffLayout& layout, qsizetype file, qsizetype hunk);

} // namespace kelm
