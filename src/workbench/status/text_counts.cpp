#include "workbench/status/text_counts.h"

#include "platform/text/character_sets.h"
#include "text/boundaries/text_boundaries.h"

#include <QString>

#include <algorithm>

namespace kelm {

namespace {

qsizetype wordsIn(QStringView text, bool& isInWord)
{
    qsizetype count = 0;
    for (const QChar character : text) {
        const bool isSpace = isWhitespaceOrNewline(character.unicode());
        count += static_cast<int>(!isSpace && !isInWord);
        isInWord = !isSpace;
    }
    return count;
}

} // namespace

std::optional<TextCounts> countText(const TextTree& text, const std::atomic<bool>& stop)
{
    constexpr qsizetype stretch = 1 << 18;
    TextCounts counts;
    bool isInWord = false;
    for (qsizetype start = 0; start < text.length();) {
        if (stop) {
            return {};
        }
        // A stretch ends between two characters, and holds one that is longer.
        const qsizetype wanted = std::min(start + stretch, text.length());
        const qsizetype boundary = graphemeBoundaryAtOrBefore(text, wanted);
        const qsizetype end = boundary > start ? boundary : nextGraphemeBoundary(text, start);
        const QString units = text.substring(TextRange::between(start, end));
        counts.characters += graphemeCount(units);
        counts.words += wordsIn(units, isInWord);
        start = end;
    }
    return counts;
}

} // namespace kelm
