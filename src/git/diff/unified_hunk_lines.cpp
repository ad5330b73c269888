#include "git/diff/unified_hunk_lines.h"

namespace kelm {

QMap<qsizetype, UnifiedHunkLines::LineWords> UnifiedHunkLines::wordDiffMap() const
{
    QMap<qsizetype, LineWords> words;
    for (qsizetype line = 0; line < hunk.lines.size(); ++line) {
        const std::optional<qsizetype> added = partner(line);
        if (added && *added > line) {
            WordDiff::Result result =
                WordDiff::diff(hunk.lines[line].text.toString(), hunk.lines[*added].text.toString());
            words.insert(line, {std::move(result.oldSegments), std::nullopt});
            words.insert(*added, {std::nullopt, std::move(result.newSegments)});
        }
    }
    return words;
}

std::optional<qsizetype> UnifiedHunkLines::partner(qsizetype line) const
{
    const auto isOfKind = [this](qsizetype index, DiffLineKind kind) {
        return index >= 0 && index < hunk.lines.size() && hunk.lines[index].kind == kind;
    };
    if (isOfKind(line, DiffLineKind::removed) && isOfKind(line + 1, DiffLineKind::added)) {
        return line + 1;
    }
    if (isOfKind(line, DiffLineKind::added) && isOfKind(line - 1, DiffLineKind::removed)) {
        return line - 1;
    }
    return std::nullopt;
}

} // namespace kelm
