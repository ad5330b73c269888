#include "editor/highlighter/word_scanners.h"

namespace kelm::scanners {

void WordTable::insert(QStringView word)
{
    Q_ASSERT(!word.isEmpty() && word.size() <= longestWord && words_.size() < mostWords);
    std::size_t slot = slotOf(word);
    while (slots_[slot] != 0) {
        slot = (slot + 1) % slotCount;
    }
    words_.push_back(word);
    slots_[slot] = static_cast<quint8>(words_.size());
    lengths_[word.front().unicode()] |= quint32(1) << word.size();
}

} // namespace kelm::scanners
