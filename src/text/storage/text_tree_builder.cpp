#include "text/storage/text_tree_builder.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kelm {

void TextTreeBuilder::append(QStringView units)
{
    length_ += units.size();
    while (!units.isEmpty()) {
        if (begun_.isEmpty() && units.size() >= TextTree::freshPiece) {
            pieces_.push_back(TextTree(units.first(TextTree::freshPiece)));
            units = units.sliced(TextTree::freshPiece);
            continue;
        }
        begun_.reserve(TextTree::freshPiece);
        const qsizetype taken = std::min(units.size(), TextTree::freshPiece - begun_.size());
        begun_.append(units.first(taken));
        units = units.sliced(taken);
        if (begun_.size() == TextTree::freshPiece) {
            endPiece();
        }
    }
}

void TextTreeBuilder::append(TextTreeBuilder&& next)
{
    endPiece();
    next.endPiece();
    pieces_.insert(pieces_.end(), std::make_move_iterator(next.pieces_.begin()),
                   std::make_move_iterator(next.pieces_.end()));
    length_ += next.length_;
    next = {};
}

void TextTreeBuilder::endPiece()
{
    if (!begun_.isEmpty()) {
        pieces_.push_back(TextTree(begun_));
        // The room stays for the next piece.
        begun_.resize(0);
    }
}

TextTree TextTreeBuilder::take()
{
    endPiece();
    length_ = 0;
    return TextTree::joined(std::exchange(pieces_, {}));
}

} // namespace kelm
