// The regions of indented lines of a text in chunks.
#pragma once

#include "editor/folding/fold_join.h"

namespace kelm {

/// Finds where the lines end that are open at the end of their chunk. Making one takes a few steps for each chunk.
class IndentJoin : public FoldJoin
{
public:
    /// Of chunks that hold `IndentReading`s.
    explicit IndentJoin(QList<FoldStretch> stretches);

    std::optional<FoldableRegion> firstRegionStartingAt(qsizetype line) const override;
    std::vector<FoldableRegion> all() const override;

private:
    /// What the rest of the text says of a chunk.
    struct Place
    {
        qsizetype regionsBefore = 0;
        /// The last line before the chunk that is not passed over.
        qsizetype lineBefore = 0;
        /// Whether the last line that is open at the chunk's end, and the last but one, make a region. All others do:
        /// two lines behind them are deeper.
        bool lastMakesRegion = false;
        bool lastButOneMakesRegion = false;
    };

    const IndentReading& reading(qsizetype chunk) const { return stretch(chunk).reading<IndentReading>(); }
    void findLinesBefore();
    void decideLastLines();
    void count();

    /// Whether an open line of a chunk makes a region.
    bool makesRegion(qsizetype chunk, size_t open) const;
    FoldableRegion regionInside(qsizetype chunk, size_t index) const;
    FoldableRegion regionAcross(qsizetype chunk, size_t open) const;
    /// The last line before the first one behind the chunk that is as little indented.
    qsizetype endLine(qsizetype chunk, quint32 indent) const;
    /// The first chunk behind `chunk` with a line that is as little indented, or the number of chunks.
    qsizetype closingChunk(qsizetype chunk, quint32 indent) const;

    /// One for each chunk, and one behind.
    std::vector<Place> places_;
    /// The least indent in each chunk, and in each `block` of them; those that have none stand above all.
    static constexpr qsizetype block = 64;
    std::vector<quint64> leastIndents_;
    std::vector<quint64> leastOfBlocks_;
};

} // namespace kelm
