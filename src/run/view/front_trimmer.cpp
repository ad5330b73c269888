#include "run/view/front_trimmer.h"

#include "text/storage/text_storage.h"

namespace kelm {

qsizetype FrontTrimmer::trim()
{
    if (storage_.length() <= most_ + slack_ + front_.size()) {
        return 0;
    }
    const qsizetype cut = cutBefore(storage_.length() - most_);
    // Whoever edits the text may have changed what stood there: it is then let go like any other.
    letGo_ += cut - (storage_.substring({0, front_.size()}) == front_ ? front_.size() : 0);
    // A line that goes on behind the cut stays one: to begin it anew, all of it would have to be looked at.
    front_ = letGoText(letGo_) + (beginsLine(cut) ? u'\n' : u' ');
    storage_.replace({0, cut}, front_);
    return front_.size();
}

void FrontTrimmer::reset()
{
    front_.clear();
    letGo_ = 0;
}

bool FrontTrimmer::beginsLine(qsizetype offset) const
{
    const TextTree& text = storage_.tree();
    return text.lineStart(text.lineAt(offset)) == offset;
}

/// The start of the line that holds the offset; the offset itself where that line begins far before it.
qsizetype FrontTrimmer::cutBefore(qsizetype offset) const
{
    const TextTree& text = storage_.tree();
    const qsizetype line = text.lineStart(text.lineAt(offset));
    if (line > offset - slack_) {
        return line;
    }
    const bool isPair = text.at(offset).isLowSurrogate() && text.at(offset - 1).isHighSurrogate();
    return isPair ? offset - 1 : offset;
}

} // namespace kelm
