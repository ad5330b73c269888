#include "editor/folding/foldable_regions.h"

#include "editor/folding/chunk_reader.h"
#include "editor/folding/indent_join.h"
#include "editor/folding/pair_join.h"
#include "text/storage/line_terminator.h"

#include <QString>

#include <algorithm>
#include <utility>

namespace kelm {

/// Walks through the stretches and reads those that have to be read.
class FoldableRegions::Settling
{
public:
    Settling(FoldableRegions& regions, const TextTree& text, qsizetype longestChunk)
        : stretches_(regions.stretches_),
          text_(text),
          kind_(regions.kind_),
          chunkUnits_(regions.chunkUnits_),
          longestChunk_(longestChunk),
          reader_(regions.kind_, regions.names_)
    {}

    /// True when all is read.
    bool walk(qsizetype mostUnits, const std::atomic<bool>* stop);

private:
    bool hasReading() const;
    /// False when the chunk is too long.
    bool read();
    void mergeWithNeighbours();
    std::optional<QString> nextChunk() const;
    bool isLineEnd(QStringView units, qsizetype end) const;
    qsizetype endOfFirstLine(TextRange range) const;

    FoldStretches& stretches_;
    const TextTree& text_;
    CodeFolding kind_;
    qsizetype chunkUnits_;
    qsizetype longestChunk_;
    ChunkReader reader_;

    qsizetype index_ = 0;
    qsizetype offset_ = 0;
    /// The state at the stretch's start.
    bool state_ = false;
    qsizetype unitsRead_ = 0;
};

bool FoldableRegions::Settling::walk(qsizetype mostUnits, const std::atomic<bool>* stop)
{
    while (index_ < stretches_.count()) {
        if (!hasReading()) {
            if ((unitsRead_ > 0 && unitsRead_ >= mostUnits) || (stop != nullptr && *stop) || !read()) {
                return false;
            }
        } else if (stretches_.at(index_).state != state_) {
            stretches_.setState(index_, state_);
        }
        const FoldStretch& stretch = stretches_.at(index_);
        state_ = stretch.endState;
        offset_ += stretch.length;
        ++index_;
    }
    return true;
}

bool FoldableRegions::Settling::hasReading() const
{
    const FoldStretch& stretch = stretches_.at(index_);
    return stretch.chunk && (stretch.state == state_ || stretch.chunk->readings[state_ ? 1 : 0]);
}

bool FoldableRegions::Settling::read()
{
    if (!stretches_.at(index_).chunk) {
        mergeWithNeighbours();
    }
    const std::optional<QString> units = nextChunk();
    if (!units) {
        return false;
    }
    stretches_.setChunk(index_, units->size(), reader_.read(*units, state_), state_);
    unitsRead_ += units->size();
    return true;
}

/// With others that are to be read, so that lines that moved apart or together are cut into chunks anew; and what is
/// left of a chunk with the one before or behind, so that chunks do not become many.
void FoldableRegions::Settling::mergeWithNeighbours()
{
    qsizetype more = 0;
    while (index_ + more + 1 < stretches_.count() && !stretches_.at(index_ + more + 1).chunk) {
        ++more;
    }
    if (more > 0) {
        stretches_.merge(index_, more);
    }
    const auto fitsBehind = [this](qsizetype first) {
        return first >= 0 && first + 1 < stretches_.count() &&
               stretches_.at(first).length + stretches_.at(first + 1).length <= chunkUnits_ * 2;
    };
    while (stretches_.at(index_).length < chunkUnits_ / 4) {
        if (fitsBehind(index_)) {
            stretches_.merge(index_, 1);
        } else if (fitsBehind(index_ - 1)) {
            --index_;
            offset_ -= stretches_.at(index_).length;
            state_ = stretches_.at(index_).state;
            stretches_.merge(index_, 1);
        } else {
            break;
        }
    }
}

/// The units of the chunk that the stretch begins with. It ends where a line ends, or with the stretch. None when they
/// are too many; such a line is not looked through to its end.
std::optional<QString> FoldableRegions::Settling::nextChunk() const
{
    const auto unitsOf = [this](qsizetype length) {
        return length <= longestChunk_ ? std::optional(text_.substring({offset_, length})) : std::nullopt;
    };
    const FoldStretch& stretch = stretches_.at(index_);
    if (stretch.chunk || stretch.length <= chunkUnits_ * 2) {
        return unitsOf(stretch.length);
    }
    QString units = text_.substring({offset_, chunkUnits_});
    for (qsizetype end = units.size(); end > 0; --end) {
        if (isLineEnd(units, end)) {
            units.truncate(end);
            return units;
        }
    }
    const qsizetype looked = std::min(stretch.length - chunkUnits_, longestChunk_);
    return unitsOf(endOfFirstLine({offset_ + chunkUnits_, looked}) - offset_);
}

/// Whether a line ends at `end` of the units, which begin at the stretch and do not reach to its end.
bool FoldableRegions::Settling::isLineEnd(QStringView units, qsizetype end) const
{
    if (kind_ != CodeFolding::indents) {
        return units[end - 1] == u'\n';
    }
    if (units[end - 1] == u'\r') {
        return (end < units.size() ? units[end] : text_.at(offset_ + end)) != u'\n';
    }
    return lineTerminatorLength(units, end - 1) > 0;
}

/// Behind the line end that is the first in the range or begins right before it, or the range's end.
qsizetype FoldableRegions::Settling::endOfFirstLine(TextRange range) const
{
    qsizetype offset = range.location;
    bool isBehindReturn = kind_ == CodeFolding::indents && text_.at(offset - 1) == u'\r';
    text_.forEachPiece(range, [&](QStringView piece) {
        if (isBehindReturn) {
            offset += piece.front() == u'\n' ? 1 : 0;
            return false;
        }
        const qsizetype feed = kind_ == CodeFolding::indents ? nextLineEnd(piece, 0) : piece.indexOf(u'\n');
        const qsizetype end = feed < 0 ? piece.size() : feed;
        const qsizetype behind = end + lineTerminatorLength(piece, end);
        offset += behind;
        isBehindReturn = behind == piece.size() && piece.back() == u'\r' && kind_ == CodeFolding::indents;
        return end == piece.size() || isBehindReturn;
    });
    return offset;
}

FoldableRegions::FoldableRegions(CodeFolding kind, qsizetype chunkUnits) : kind_(kind), chunkUnits_(chunkUnits)
{
    Q_ASSERT(chunkUnits > 0 && chunkUnits * 2 <= mostChunkUnits);
}

void FoldableRegions::reset(qsizetype length)
{
    stretches_.reset(length);
    told_.clear();
    names_.clear();
    isSettled_ = false;
}

void FoldableRegions::textReplaced(TextRange range, qsizetype newLength)
{
    told_.append({range, newLength});
    isSettled_ = false;
}

void FoldableRegions::takeInWhatWasTold(const TextTree& text)
{
    for (const Told& edit : std::as_const(told_)) {
        stretches_.replace(edit.range, edit.newLength);
    }
    told_.clear();
    if (stretches_.length() != text.length()) {
        reset(text.length());
    }
}

void FoldableRegions::settle(const TextTree& text, qsizetype mostUnits, const std::atomic<bool>* stop,
                             qsizetype longestChunk)
{
    takeInWhatWasTold(text);
    if (!isSettled_ && Settling(*this, text, longestChunk).walk(mostUnits, stop)) {
        join();
        isSettled_ = true;
    }
}

void FoldableRegions::join()
{
    if (kind_ == CodeFolding::indents) {
        joined_ = std::make_shared<IndentJoin>(stretches_.list());
        return;
    }
    const bool isTags = kind_ == CodeFolding::tags;
    // What was joined before was of this kind too.
    joined_ = std::make_shared<PairJoin>(stretches_.list(), isTags ? FoldType::tag : FoldType::braces,
                                         isTags ? names_.count() : 1, static_cast<const PairJoin*>(joined_.get()));
}

std::optional<FoldableRegion> FoldableRegions::firstRegionStartingAt(qsizetype line) const
{
    return joined_ ? joined_->firstRegionStartingAt(line) : std::nullopt;
}

std::vector<FoldableRegion> FoldableRegions::all() const
{
    return joined_ ? joined_->all() : std::vector<FoldableRegion>();
}

} // namespace kelm
