// A text tree that is made while its text comes in.
#pragma once

#include "text/storage/text_tree.h"

#include <QStringView>

#include <vector>

namespace kelm {

/// Takes a text stretch by stretch and cuts it into the pieces of a tree at once, so that no second copy of it is ever
/// held. Linear in the text, whatever the stretches are.
///
/// An object is for one thread at a time. Parts of one text may be taken in by builders on threads of their own, and
/// put together afterwards.
class TextTreeBuilder
{
public:
    /// Takes the units that come next.
    void append(QStringView units);
    /// Takes what another builder has taken in, of which nothing is copied.
    void append(TextTreeBuilder&& next);

    /// How many units have come.
    qsizetype length() const { return length_; }

    /// The tree of all that was taken, as low as it can be. The builder is empty afterwards.
    TextTree take();

private:
    void endPiece();

    std::vector<TextTree> pieces_;
    /// The beginning of the next piece.
    QString begun_;
    qsizetype length_ = 0;
};

} // namespace kelm
