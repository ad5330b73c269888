// What can be folded in a part of a text, for whatever stands around it.
#pragma once

#include "editor/folding/indent_reading.h"
#include "editor/folding/pair_reading.h"

#include <QList>

#include <array>
#include <memory>
#include <optional>
#include <variant>

namespace kelm {

/// What was read from a chunk: some whole lines of a text. A chunk is one line, or no longer than `mostChunkUnits`, and
/// then its lines and what is counted by them fit into 16 bits. Never changed once it is made, and shared by all that
/// hold it, on any thread.
struct FoldChunk
{
    using Reading = std::variant<PairReading, IndentReading>;

    /// The line ends in it.
    qsizetype lines = 0;
    /// The reading for each state that may reign at the chunk's start: 1 within a string or an opening tag, else 0.
    /// One that was not needed may be missing.
    std::array<std::optional<Reading>, 2> readings;
};

inline constexpr qsizetype mostChunkUnits = 0x10000;

/// A stretch of whole lines of a text; a chunk, or still to be read.
struct FoldStretch
{
    qsizetype length = 0;
    /// Null when it is to be read.
    std::shared_ptr<const FoldChunk> chunk;
    /// Of the chunk and its reading, for walks that look at each chunk: its line ends, and the regions within it.
    quint32 lines = 0;
    quint16 regions = 0;
    /// The states at its start, when all before it has been read, and at its end.
    bool state = false;
    bool endState = false;

    /// When the chunk was read for the state at its start.
    template <typename Reading>
    const Reading& reading() const
    {
        return std::get<Reading>(*chunk->readings[state ? 1 : 0]);
    }
};

} // namespace kelm
