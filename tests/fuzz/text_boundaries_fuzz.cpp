// Any text: the characters found forwards, backwards, counted, from any place and in a tree are the same ones, and word
// by word one comes to the end and back.
#include "fuzz/require.h"
#include "text/boundaries/text_boundaries.h"
#include "text/storage/text_tree.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

using namespace kelm;

void checkCharacters(const QString& text, const TextTree& tree)
{
    std::vector<qsizetype> boundaries{0};
    while (boundaries.back() < text.size()) {
        const qsizetype next = nextGraphemeBoundary(text, boundaries.back());
        require(next > boundaries.back() && next <= text.size());
        require(nextGraphemeBoundary(tree, boundaries.back()) == next);
        boundaries.push_back(next);
    }
    require(graphemeCount(text) == qsizetype(boundaries.size()) - 1);
    for (qsizetype offset = 0; offset <= text.size(); ++offset) {
        const auto behind = std::upper_bound(boundaries.begin(), boundaries.end(), offset);
        require(graphemeBoundaryAtOrBefore(text, offset) == behind[-1]);
        require(graphemeBoundaryAtOrBefore(tree, offset) == behind[-1]);
        require(nextGraphemeBoundary(text, offset) == (behind == boundaries.end() ? text.size() : *behind));
        const auto at = std::lower_bound(boundaries.begin(), boundaries.end(), offset);
        require(previousGraphemeBoundary(text, offset) == (offset == 0 ? 0 : at[-1]));
        require(previousGraphemeBoundary(tree, offset) == (offset == 0 ? 0 : at[-1]));
    }
}

void checkWords(const QString& text, const TextTree& tree)
{
    for (qsizetype offset = 0; offset <= text.size(); ++offset) {
        const qsizetype end = nextWordEnd(text, offset);
        const qsizetype start = previousWordStart(text, offset);
        require(offset == text.size() ? end == offset : end > offset && end <= text.size());
        require(offset == 0 ? start == 0 : start < offset && start >= 0);
        require(nextWordEnd(tree, offset) == end && previousWordStart(tree, offset) == start);
        const TextRange word = wordAt(text, offset);
        // Within a character it is the word of the character's start.
        const qsizetype at = graphemeBoundaryAtOrBefore(text, offset);
        require(word.location <= at && at <= word.location + word.length);
        require(word.location >= 0 && word.location + word.length <= text.size() && wordAt(tree, offset) == word);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    size = std::min<std::size_t>(size, 400);
    QString asUnits;
    for (std::size_t at = 0; at + 1 < size; at += 2) {
        asUnits += QChar(data[at] | data[at + 1] << 8);
    }
    for (const QString& text : {QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)), asUnits}) {
        const TextTree tree(text);
        checkCharacters(text, tree);
        checkWords(text, tree);
    }
    return 0;
}
