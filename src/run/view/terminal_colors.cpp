#include "run/view/terminal_colors.h"

#include <algorithm>

namespace kelm {

namespace {

/// Adds `color` from where the last colour ends to `end`.
void colorUpTo(qsizetype end, QRgb color, std::vector<ColorRun>& colors)
{
    const qsizetype start = colors.empty() ? 0 : colors.back().range.end();
    if (end > start) {
        colors.push_back({{start, end - start}, color});
    }
}

} // namespace

std::vector<ColorRun> terminalColors(const AttributedText& text, Appearance appearance)
{
    std::vector<ColorRun> colors;
    colors.reserve(text.runs.size() + 2 * text.unshown.size());
    auto unshown = text.unshown.begin();
    for (const AttributedRun& run : text.runs) {
        const QRgb color = resolved(run.color, appearance);
        const qsizetype runEnd = run.start + run.length;
        for (; unshown != text.unshown.end() && unshown->start < runEnd; ++unshown) {
            const qsizetype end = unshown->start + unshown->length;
            colorUpTo(unshown->start, color, colors);
            colorUpTo(std::min(end, runEnd), ColorRuns::unshown, colors);
            if (end > runEnd) {
                // It goes on in the next run.
                break;
            }
        }
        colorUpTo(runEnd, color, colors);
    }
    return colors;
}

} // namespace kelm
