// The text behind one that is partly shown in short.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QObject>

#include <vector>

namespace kelm {

/// What a person means who sees a text of which some stretches are shown by something shorter: all of it. Copying,
/// dragging, finding and replacing go by the whole text, and a stretch that is shown in short counts whole as soon as
/// a part of what stands for it is meant. Offsets are UTF-16 units. Main thread only.
class WholeText : public QObject
{
    Q_OBJECT

public:
    /// Whether anything is shown in short; else what is shown is the whole text.
    virtual bool isShortened() const = 0;
    /// Costs next to nothing.
    virtual TextTree text() const = 0;
    /// Where a range of what is shown stands in the whole text. A caret within what stands for a stretch goes to the
    /// stretch's end.
    virtual TextRange whole(TextRange shown) const = 0;
    /// Where a range of the whole text is shown: what hides a part of it belongs to it.
    virtual TextRange shown(TextRange whole) const = 0;
    /// The parts of a range of what is shown that stand for themselves, in their order.
    virtual std::vector<TextRange> plainParts(TextRange shown) const = 0;
    /// Shows in full what hides anything of a range of the whole text.
    virtual void reveal(TextRange whole) = 0;

Q_SIGNALS:
    /// Right before the first stretch is shown in short.
    void willShorten();
    /// Right after the last one is shown in full, and before whatever is edited then.
    void becameWhole();
    /// Somebody has edited the text while it was shown in short: the whole text may be any other.
    void replaced();
};

} // namespace kelm
