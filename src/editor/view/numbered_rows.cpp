#include "editor/view/numbered_rows.h"

#include "text/storage/text_position.h"
#include "text/view/text_view.h"

#include <algorithm>

namespace kelm {

std::vector<NumberedRow> numberedRows(TextView& view)
{
    std::vector<NumberedRow> numbered;
    qsizetype line = 0;
    for (const TextRow& row : view.visibleRows()) {
        if (line == 0) {
            // The line at the top counts even when its first row is above the screen.
            line = view.storage().tree().lineFeedsBefore(row.range.location) + (row.isFirstOfLine ? 0 : 1);
        }
        if (row.isFirstOfLine) {
            numbered.push_back({++line, row.top});
        }
    }
    return numbered;
}

std::optional<qsizetype> lineAtRow(TextView& view, qreal y)
{
    const qreal rowHeight = view.textLayout().rowHeight();
    const std::vector<NumberedRow> rows = numberedRows(view);
    const auto row = std::find_if(rows.begin(), rows.end(), [y, rowHeight](const NumberedRow& candidate) {
        return y >= candidate.top && y < candidate.top + rowHeight;
    });
    return row != rows.end() ? std::optional(row->line) : std::nullopt;
}

} // namespace kelm
