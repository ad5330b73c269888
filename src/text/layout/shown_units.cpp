#include "text/layout/shown_units.h"

#include <algorithm>

namespace kelm {

namespace {

/// An operator that is never drawn. For the breaking of rows it is a letter, and it joins no other to a cluster.
constexpr QChar withoutWidth(0x2061);

} // namespace

bool hasUnshown(const std::vector<ColorRun>& colors)
{
    return std::any_of(colors.begin(), colors.end(),
                       [](const ColorRun& run) { return run.color == ColorRuns::unshown; });
}

QString shownUnits(QString text, const std::vector<ColorRun>& colors)
{
    for (const ColorRun& run : colors) {
        if (run.color == ColorRuns::unshown) {
            const qsizetype start = std::clamp<qsizetype>(run.range.location, 0, text.size());
            const qsizetype end = std::clamp(run.range.end(), start, text.size());
            std::fill(text.begin() + start, text.begin() + end, withoutWidth);
        }
    }
    return text;
}

} // namespace kelm
