#include "editor/folding/fold_stretches.h"

#include <algorithm>
#include <utility>

namespace kelm {
namespace {

FoldStretch unread(qsizetype length)
{
    FoldStretch stretch;
    stretch.length = length;
    return stretch;
}

} // namespace

void FoldStretches::reset(qsizetype length)
{
    list_.clear();
    length_ = length;
    nearIndex_ = 0;
    nearOffset_ = 0;
    if (length > 0) {
        list_.append(unread(length));
    }
}

void FoldStretches::replace(TextRange range, qsizetype newLength)
{
    range = range.clampedTo(length_);
    const qsizetype length = length_ - range.length + newLength;
    if (list_.isEmpty() || length == 0) {
        reset(length);
        return;
    }
    goTo(std::max<qsizetype>(range.location - 1, 0));
    const qsizetype lastTouched = std::min(range.end(), length_ - 1);
    qsizetype end = nearOffset_ + list_.at(nearIndex_).length;
    qsizetype more = 0;
    for (; end <= lastTouched; ++more) {
        end += list_.at(nearIndex_ + more + 1).length;
    }
    merge(nearIndex_, more);
    list_[nearIndex_].length += newLength - range.length;
    length_ = length;
}

void FoldStretches::goTo(qsizetype offset)
{
    while (offset < nearOffset_) {
        nearOffset_ -= list_.at(--nearIndex_).length;
    }
    while (offset >= nearOffset_ + list_.at(nearIndex_).length) {
        nearOffset_ += list_.at(nearIndex_++).length;
    }
}

void FoldStretches::merge(qsizetype index, qsizetype more)
{
    for (qsizetype next = index + 1; next <= index + more; ++next) {
        list_[index].length += list_.at(next).length;
    }
    list_.remove(index + 1, more);
    list_[index].chunk = nullptr;
    if (nearIndex_ > index) {
        goToStart();
    }
}

void FoldStretches::setChunk(qsizetype index, qsizetype length, std::shared_ptr<const FoldChunk> chunk, bool state)
{
    if (length < list_.at(index).length) {
        list_[index].length -= length;
        list_.insert(index, unread(length));
        if (nearIndex_ >= index) {
            goToStart();
        }
    }
    list_[index].lines = quint32(chunk->lines);
    list_[index].chunk = std::move(chunk);
    setState(index, state);
}

void FoldStretches::setState(qsizetype index, bool state)
{
    FoldStretch& stretch = list_[index];
    stretch.state = state;
    if (const auto* pairs = std::get_if<PairReading>(&*stretch.chunk->readings[state ? 1 : 0])) {
        stretch.regions = quint16(pairs->regions.size());
        stretch.endState = pairs->endState;
    } else {
        stretch.regions = quint16(stretch.reading<IndentReading>().regions.size());
    }
}

void FoldStretches::goToStart()
{
    nearIndex_ = 0;
    nearOffset_ = 0;
}

} // namespace kelm
