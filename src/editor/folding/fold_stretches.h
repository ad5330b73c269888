// A text as stretches of whole lines that edits leave as they are, or make to be read again.
#pragma once

#include "editor/folding/fold_chunk.h"
#include "text/storage/text_range.h"

#include <QList>

namespace kelm {

/// The stretches of a text from first to last; none is empty, and between two of them is always the end of a line and
/// the start of the next. A copy costs little.
///
/// An edit makes the stretches that it touches one, which is to be read. What counts as touched is one unit more on
/// each side, so that the units at both sides of every end that stays are as they were: no line end is lost there, and
/// no carriage return meets its line feed. Edits near the last one cost a step or two, any other at most one for each
/// stretch.
class FoldStretches
{
public:
    const QList<FoldStretch>& list() const { return list_; }
    qsizetype count() const { return list_.size(); }
    const FoldStretch& at(qsizetype index) const { return list_.at(index); }
    /// The units of the text.
    qsizetype length() const { return length_; }

    /// A text of this length, all of it to be read.
    void reset(qsizetype length);
    /// The range of the text became `newLength` units; it is clamped to the text.
    void replace(TextRange range, qsizetype newLength);

    /// Makes a stretch and the `more` behind it one, which is to be read.
    void merge(qsizetype index, qsizetype more);
    /// The first units of a stretch that is to be read, whole lines, are this chunk now; it was read for this state.
    void setChunk(qsizetype index, qsizetype length, std::shared_ptr<const FoldChunk> chunk, bool state);
    /// The state at a chunk's start, for which it was read.
    void setState(qsizetype index, bool state);

private:
    /// Goes to the stretch that holds the unit at `offset`.
    void goTo(qsizetype offset);
    void goToStart();

    QList<FoldStretch> list_;
    qsizetype length_ = 0;
    /// Where the last edit was: a stretch and its offset.
    qsizetype nearIndex_ = 0;
    qsizetype nearOffset_ = 0;
};

} // namespace kelm
