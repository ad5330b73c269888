// Reads the chunks of a text for what can be folded in them.
#pragma once

#include "app/language/language_table.h"
#include "editor/folding/fold_chunk.h"
#include "editor/folding/tag_names.h"

#include <QStringView>

#include <array>
#include <memory>
#include <vector>

namespace kelm {

/// Reads one chunk after the other, and keeps the memory that it needs for that. For one thread.
class ChunkReader
{
public:
    /// New names are added to `names`, which outlive the reader.
    ChunkReader(CodeFolding kind, TagNames& names) : kind_(kind), names_(names), lookup_(names) {}

    /// What the whole lines in `text` hold; at the least for the given state at their start.
    std::shared_ptr<const FoldChunk> read(QStringView text, bool state);

private:
    void readBraces(QStringView text, FoldChunk& chunk);
    void readTags(QStringView text, bool state, FoldChunk& chunk);

    CodeFolding kind_;
    TagNames& names_;
    TagNameLookup lookup_;
    std::array<PairCollector, 2> pairs_;
    IndentReader indents_;
    /// Of each name in the chunk the number of its group.
    std::vector<quint32> groups_;
    std::vector<quint32> usedNames_;
};

} // namespace kelm
