#include "text/find/replaced_text.h"

#include <algorithm>

namespace kelm {

namespace {

/// A shorter stretch is copied: to share it costs the way to its pieces.
constexpr qsizetype shortestShared = 16'384;
/// How much is put together before it is made into pieces.
constexpr qsizetype longestPending = 1 << 20;

} // namespace

bool ReplacedText::add(TextRange match, QStringView with)
{
    if (count_ == 0) {
        range_ = {match.location, 0};
    }
    const TextRange kept = TextRange::between(range_.end(), std::max(match.location, range_.end()));
    if (kept.length + with.size() > longest_ - length_) {
        return false;
    }
    ++count_;
    length_ += kept.length + with.size();
    if (kept.length >= shortestShared) {
        flush();
        done_.replace({done_.length(), 0}, text_.part(kept));
    } else {
        text_.forEachPiece(kept, [this](QStringView piece) {
            pending_ += piece;
            return true;
        });
    }
    pending_ += with;
    if (pending_.size() >= longestPending) {
        flush();
    }
    range_.length = match.end() - range_.location;
    return true;
}

TextTree ReplacedText::take()
{
    flush();
    return std::move(done_);
}

void ReplacedText::flush()
{
    if (!pending_.isEmpty()) {
        done_.replace({done_.length(), 0}, TextTree(pending_));
        pending_.clear();
    }
}

} // namespace kelm
