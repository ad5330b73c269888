#include "run/view/front_trimmer.h"

#include "platform/events/main_queue.h"
#include "platform/events/worker_pool.h"
#include "text/boundaries/text_boundaries.h"
#include "text/storage/text_storage.h"

#include <utility>

namespace kelm {

qsizetype FrontTrimmer::trim()
{
    if (storage_.length() <= most_ + slack_ + front_.size()) {
        return 0;
    }
    const qsizetype cut = cutBefore(storage_.length() - most_);
    const qsizetype line = storage_.tree().lineStart(storage_.tree().lineAt(cut));
    // Whoever edits the text may have changed what stood there: it is then let go like any other. Behind it stands one
    // unit that counts as let go.
    const bool isThere = !front_.isEmpty() && storage_.substring({0, front_.size()}) == front_;
    letGo_ += cut - (isThere ? front_.size() + 1 : 0);
    front_ = letGoText(letGo_);
    if (line == 0) {
        storage_.replace({0, cut}, front_ + u' ');
        return front_.size();
    }
    // A line that goes on behind the cut is edited by itself: together with those before it, all of it would be looked
    // at again. The end of the line before stays.
    storage_.replace({line, cut - line}, QStringView());
    storage_.replace({0, line - 1}, front_);
    return front_.size();
}

void FrontTrimmer::reset()
{
    if (storage_.length() > slack_) {
        // A worker takes the old text down, once nobody else has it: that takes longer than a frame.
        onMainQueue([text = storage_.snapshot()]() mutable {
            backgroundWorkers().start([last = std::move(text)] { Q_UNUSED(last) });
        });
    }
    front_.clear();
    letGo_ = 0;
}

/// The start of the line that holds the offset; the character that holds the offset where that line begins far before
/// it.
qsizetype FrontTrimmer::cutBefore(qsizetype offset) const
{
    const TextTree& text = storage_.tree();
    const qsizetype line = text.lineStart(text.lineAt(offset));
    if (line > offset - slack_) {
        return line;
    }
    // No part of a character, unless that is longer than all that may stay.
    const qsizetype whole = graphemeBoundaryAtOrBefore(text, offset);
    if (whole > offset - slack_) {
        return whole;
    }
    const bool isInPair = offset > 0 && text.at(offset).isLowSurrogate() && text.at(offset - 1).isHighSurrogate();
    return isInPair ? offset - 1 : offset;
}

} // namespace kelm
