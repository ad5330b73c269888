// Where the lines of a text begin.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <array>
#include <functional>

namespace kelm {

/// The lines of a tree that is edited, as `TextTree` counts them, with a memory for those that were asked for last:
/// what is on screen is asked for many times between two edits. One thread.
class LineIndex
{
public:
    /// The tree outlives the index.
    explicit LineIndex(const TextTree& tree) : tree_(tree) {}

    qsizetype lineCount() const { return tree_.lineCount(); }
    /// The offset of the first unit of a line.
    qsizetype start(qsizetype line) const { return known(line).extent.location; }
    /// The offset behind a line's terminator: the next line's start or the text's length.
    qsizetype end(qsizetype line) const { return known(line).extent.end(); }
    /// A line with its terminator.
    TextRange extent(qsizetype line) const { return known(line).extent; }
    /// A line without its terminator.
    TextRange content(qsizetype line) const;
    /// The line that holds `offset`; an offset at or past the end lies in the last line.
    qsizetype lineAt(qsizetype offset) const;

    /// The tree is another one now.
    void forget();

private:
    struct Known
    {
        qsizetype line = -1;
        TextRange extent;
        qsizetype terminator = 0;
    };
    const Known& known(qsizetype line) const;

    static constexpr std::size_t mostKnown = 256;

    const TextTree& tree_;
    mutable std::array<Known, mostKnown> known_;
    mutable qsizetype lastLine_ = -1;
};

/// Calls `look` with the extents, terminators included, of `count` lines from `first` on.
void forEachLine(const TextTree& text, qsizetype first, qsizetype count, const std::function<void(TextRange)>& look);

/// What the replacement of `range` of the text `before`, by as many units as `after` has more or less, did to its
/// lines. A line end beside the range that stayed bounds the change and is no part of it, though a carriage return and
/// a line feed that meet or part there are.
TextEdit editBetween(const TextTree& before, const TextTree& after, TextRange range);

} // namespace kelm
