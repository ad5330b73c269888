#include "run/view/front_trimmer.h"

#include "text/storage/text_storage.h"

namespace kelm {

qsizetype FrontTrimmer::trim()
{
    if (storage_.length() <= most_ + slack_ + firstLine_.size()) {
        return 0;
    }
    const qsizetype cut = cutBefore(storage_.length() - most_);
    // Whoever edits the text may have changed the line that stood there: it is then let go like any other.
    const TextRange first{0, firstLine_.size()};
    letGo_ += cut - (storage_.substring(first) == firstLine_ ? firstLine_.size() : 0);
    firstLine_ = letGoLine(letGo_);
    storage_.replace({0, cut}, firstLine_);
    return firstLine_.size();
}

void FrontTrimmer::reset()
{
    firstLine_.clear();
    letGo_ = 0;
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
