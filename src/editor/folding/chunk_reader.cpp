#include "editor/folding/chunk_reader.h"

#include "editor/folding/tag_reader.h"

#include <QtEndian>

#include <algorithm>
#include <bit>

namespace kelm {
namespace {

enum class BraceMark : quint8 { quote, slashes, opening, closing };

struct MarkAt
{
    quint32 line;
    BraceMark mark;
};

/// Picks out of a chunk what strings, line comments and braces are made of.
class BraceMarks
{
public:
    explicit BraceMarks(QStringView text) : units_(text.utf16()), size_(text.size()) {}

    /// The next marks, or none at the end.
    const std::vector<MarkAt>& next();
    /// When all is read: the line feeds in the chunk.
    qsizetype lineFeeds() const { return line_; }

private:
    /// The units of one step: few enough for all that is held of them to stay close at hand.
    static constexpr qsizetype block = 4096;

    void markUnits(qsizetype size);
    void look(qsizetype at);

    const char16_t* units_;
    qsizetype size_;
    qsizetype at_ = 0;
    quint32 line_ = 0;
    std::array<quint8, block> isMarked_{};
    std::vector<MarkAt> marks_;
};

/// Without a branch, so that many units are compared at a time.
void BraceMarks::markUnits(qsizetype size)
{
    const char16_t* const units = units_ + at_;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t unit = units[i];
        isMarked_[size_t(i)] = quint8((unit == u'\n' ? 1 : 0) | (unit == u'"' ? 1 : 0) | (unit == u'/' ? 1 : 0) |
                                      (unit == u'{' ? 1 : 0) | (unit == u'}' ? 1 : 0));
    }
    std::fill(isMarked_.begin() + size, isMarked_.begin() + std::min(size + 8, block), quint8(0));
}

const std::vector<MarkAt>& BraceMarks::next()
{
    marks_.clear();
    while (at_ < size_ && marks_.empty()) {
        const qsizetype size = std::min(block, size_ - at_);
        markUnits(size);
        for (qsizetype i = 0; i < size; i += 8) {
            for (auto eight = qFromLittleEndian<quint64>(isMarked_.data() + i); eight != 0; eight &= eight - 1) {
                look(at_ + i + std::countr_zero(eight) / 8);
            }
        }
        at_ += size;
    }
    return marks_;
}

void BraceMarks::look(qsizetype at)
{
    // What stands before a chunk is a line feed or nothing, which is neither of the two asked for.
    const char16_t previous = at > 0 ? units_[at - 1] : u'\n';
    switch (units_[at]) {
    case u'\n':
        ++line_;
        break;
    case u'"':
        if (previous != u'\\') {
            marks_.push_back({line_, BraceMark::quote});
        }
        break;
    case u'/':
        if (previous == u'/') {
            marks_.push_back({line_, BraceMark::slashes});
        }
        break;
    case u'{':
        marks_.push_back({line_, BraceMark::opening});
        break;
    default:
        marks_.push_back({line_, BraceMark::closing});
        break;
    }
}

/// Follows strings and line comments from one of the two states that a chunk may start in.
class BraceScan
{
public:
    BraceScan(PairCollector& pairs, bool isInString) : pairs_(pairs), isInString_(isInString) { pairs_.addGroup(0); }

    void take(const std::vector<MarkAt>& marks)
    {
        for (const MarkAt& at : marks) {
            if (at.line == commentLine_) {
                continue;
            }
            if (at.mark == BraceMark::quote) {
                isInString_ = !isInString_;
            } else if (!isInString_) {
                takeOutside(at);
            }
        }
    }
    PairReading finish(qsizetype lines) { return pairs_.finish(lines, isInString_); }

private:
    void takeOutside(MarkAt at)
    {
        if (at.mark == BraceMark::slashes) {
            commentLine_ = at.line;
        } else if (at.mark == BraceMark::opening) {
            pairs_.open(0, at.line);
        } else {
            pairs_.close(0, at.line);
        }
    }

    PairCollector& pairs_;
    bool isInString_;
    /// The line of the last line comment.
    qsizetype commentLine_ = -1;
};

} // namespace

std::shared_ptr<const FoldChunk> ChunkReader::read(QStringView text, bool state)
{
    auto chunk = std::make_shared<FoldChunk>();
    switch (kind_) {
    case CodeFolding::braces:
        readBraces(text, *chunk);
        break;
    case CodeFolding::indents:
        chunk->readings[0] = indents_.read(text, chunk->lines);
        break;
    case CodeFolding::tags:
        readTags(text, state, *chunk);
        break;
    }
    return chunk;
}

/// For both states: a quote that is typed changes which of the two holds from there on, and no chunk is read again.
void ChunkReader::readBraces(QStringView text, FoldChunk& chunk)
{
    BraceMarks marks(text);
    BraceScan outside(pairs_[0], false);
    BraceScan inside(pairs_[1], true);
    for (const std::vector<MarkAt>* next = &marks.next(); !next->empty(); next = &marks.next()) {
        outside.take(*next);
        inside.take(*next);
    }
    chunk.lines = marks.lineFeeds();
    chunk.readings[0] = outside.finish(chunk.lines);
    chunk.readings[1] = inside.finish(chunk.lines);
}

/// For the one state that is asked for: behind the first ">" both are the same, so that a change of state goes no
/// further than to the next chunk with one. A chunk without any is read for both, since within a tag it holds nothing.
void ChunkReader::readTags(QStringView text, bool state, FoldChunk& chunk)
{
    constexpr quint32 none = ~quint32(0);
    const bool hasTagEnd = text.contains(u'>');
    TagReader reader(text, hasTagEnd && state);
    PairCollector& pairs = pairs_[0];
    for (TagReader::Tag tag; reader.next(tag);) {
        const quint32 name = lookup_.number(tag.name);
        if (name >= groups_.size()) {
            groups_.resize(size_t(names_.count()), none);
        }
        quint32& group = groups_[name];
        if (group == none) {
            group = pairs.addGroup(name);
            usedNames_.push_back(name);
        }
        if (tag.isOpening) {
            pairs.open(group, tag.line);
        } else {
            pairs.close(group, tag.line);
        }
    }
    for (const quint32 name : usedNames_) {
        groups_[name] = none;
    }
    usedNames_.clear();
    chunk.lines = reader.lineFeeds();
    chunk.readings[hasTagEnd && state ? 1 : 0] = pairs.finish(chunk.lines, reader.endsInTag());
    if (!hasTagEnd) {
        chunk.readings[1] = pairs.finish(chunk.lines, true);
    }
}

} // namespace kelm
