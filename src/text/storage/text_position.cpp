#include "text/storage/text_position.h"

#include <algorithm>

namespace kelm {

LineAndColumn lineAndColumnAt(const TextTree& text, qsizetype offset)
{
    const qsizetype at = std::clamp<qsizetype>(offset, 0, text.length());
    const qsizetype lineFeeds = text.lineFeedsBefore(at);
    return {lineFeeds + 1, at - text.behindLineFeeds(lineFeeds) + 1};
}

qsizetype offsetAt(const TextTree& text, LineAndColumn place)
{
    const qsizetype line = std::clamp<qsizetype>(place.line - 1, 0, text.lineFeeds());
    const qsizetype start = text.behindLineFeeds(line);
    qsizetype end = text.length();
    if (line < text.lineFeeds()) {
        end = text.behindLineFeeds(line + 1) - 1;
        end -= end > start && text.at(end - 1) == u'\r' ? 1 : 0;
    }
    const qsizetype at = start + std::clamp<qsizetype>(place.column - 1, 0, end - start);
    const bool splits = at > start && text.at(at).isLowSurrogate() && text.at(at - 1).isHighSurrogate();
    return splits ? at - 1 : at;
}

} // namespace kelm
