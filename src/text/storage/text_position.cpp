#include "text/storage/text_position.h"

#include <algorithm>

namespace kelm {

LineAndColumn lineAndColumnAt(const TextTree& text, qsizetype offset)
{
    const qsizetype at = std::clamp<qsizetype>(offset, 0, text.length());
    const qsizetype lineFeeds = text.lineFeedsBefore(at);
    return {lineFeeds + 1, at - text.behindLineFeeds(lineFeeds) + 1};
}

} // namespace kelm
