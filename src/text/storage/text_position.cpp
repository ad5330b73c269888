#include "text/storage/text_position.h"

#include <algorithm>

namespace kelm {

qsizetype lineFeedsBefore(const TextStorage& storage, qsizetype offset)
{
    const LineIndex& lines = storage.lines();
    if (lines.oddTerminators() == 0) {
        return lines.lineAt(offset);
    }
    const char16_t* units = QStringView(storage.text()).utf16();
    return std::count(units, units + std::clamp<qsizetype>(offset, 0, storage.length()), u'\n');
}

LineAndColumn lineAndColumnAt(const TextStorage& storage, qsizetype offset)
{
    const qsizetype at = std::clamp<qsizetype>(offset, 0, storage.length());
    const qsizetype lineFeed = at > 0 ? storage.text().lastIndexOf(u'\n', at - 1) : -1;
    return {lineFeedsBefore(storage, at) + 1, at - lineFeed};
}

} // namespace kelm
