// The foldable regions of a text that is edited.
#pragma once

#include "app/language/language_table.h"
#include "editor/folding/fold_join.h"
#include "editor/folding/fold_stretches.h"
#include "editor/folding/foldable_region.h"
#include "editor/folding/tag_names.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QList>

#include <atomic>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// Exactly the regions that a scan of the whole text finds (`fold_scans.h`), kept by reading anew only the chunks of
/// whole lines that edits have touched. What is read stays valid whatever changes around it: a chunk tells its regions
/// and what it has left over, and the left-overs of all chunks are put together afterwards.
///
/// Edits are told as they happen, which costs next to nothing, and made good by `settle`. In between the regions are
/// answered as they were last settled, with their lines as they were then; before the first time there are none.
///
/// A value: a copy costs little and shares what was read. So a copy may be settled on another thread with a snapshot of
/// the text, be told what was edited meanwhile, and take the place of the original. An object is for one thread at a
/// time. Offsets and lengths are UTF-16 units; lines count from 1.
class FoldableRegions
{
public:
    /// About how long the chunks of a text are that was never edited; the longest are twice as long, unless they are
    /// one line.
    static constexpr qsizetype usualChunk = 0x6000;
    static constexpr qsizetype unlimited = std::numeric_limits<qsizetype>::max();

    /// For an empty text. `chunkUnits` is at most half of `mostChunkUnits`; tests take less than is usual.
    explicit FoldableRegions(CodeFolding kind, qsizetype chunkUnits = usualChunk);

    CodeFolding kind() const { return kind_; }

    /// Another text of this length, of which nothing has been read.
    void reset(qsizetype length);
    /// The range of the text became `newLength` units. Each single replacement has to be told, in their order; ranges
    /// are clamped to the text.
    void textReplaced(TextRange range, qsizetype newLength);

    /// Whether the answers are those of the text as told.
    bool isSettled() const { return isSettled_; }
    /// Reads what has to be read, from the start of the text to its end. Ends before that, and goes on there the next
    /// time, after `mostUnits` units or a few more, or when `stop` becomes true; but a chunk is read whole, and a line
    /// that is longer is one chunk. Ends for good before a chunk that is longer than `longestChunk`. Of a text that is
    /// not as long as what was told everything is read anew.
    void settle(const TextTree& text, qsizetype mostUnits = unlimited, const std::atomic<bool>* stop = nullptr,
                qsizetype longestChunk = unlimited);

    /// The first of the regions that start at the line, as `all` gives them. Takes logarithmic time, and a step for
    /// each name of a tag that the chunk has left over.
    std::optional<FoldableRegion> firstRegionStartingAt(qsizetype line) const;
    /// Sorted by the start line; of those on one line the one that was found first goes first. Linear.
    std::vector<FoldableRegion> all() const;

private:
    struct Told
    {
        TextRange range;
        qsizetype newLength = 0;
    };
    class Settling;

    void takeInWhatWasTold(const TextTree& text);
    void join();

    CodeFolding kind_;
    qsizetype chunkUnits_;
    TagNames names_;
    /// The text without the edits in `told_`.
    FoldStretches stretches_;
    QList<Told> told_;
    bool isSettled_ = true;
    /// As last settled; null before that.
    std::shared_ptr<const FoldJoin> joined_;
};

} // namespace kelm
