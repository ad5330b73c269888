#include "git/diff/side_by_side_hunk_lines.h"

#include <algorithm>

namespace kelm {

namespace {

/// Walks the lines: `flush` ends a run of changes that was told to `change`, and `both` is a line for both sides.
template <typename Change, typename Flush, typename Both>
void walk(const DiffHunk& hunk, Change change, Flush flush, Both both)
{
    for (qsizetype index = 0; index < hunk.lines.size(); ++index) {
        const auto line = static_cast<qint32>(index);
        const DiffLineKind kind = hunk.lines[index].kind;
        if (kind == DiffLineKind::context || kind == DiffLineKind::noNewline) {
            flush();
            both(line);
        } else if (kind == DiffLineKind::removed || kind == DiffLineKind::added) {
            change(line, kind == DiffLineKind::removed);
        }
    }
    flush();
}

} // namespace

std::vector<SideBySideHunkLines::Pairing> SideBySideHunkLines::pairings() const
{
    std::vector<Pairing> result;
    std::vector<qint32> removed;
    std::vector<qint32> added;
    walk(
        hunk, [&](qint32 line, bool isRemoved) { (isRemoved ? removed : added).push_back(line); },
        [&] {
            for (std::size_t index = 0; index < std::max(removed.size(), added.size()); ++index) {
                result.push_back(
                    {index < removed.size() ? removed[index] : -1, index < added.size() ? added[index] : -1});
            }
            removed.clear();
            added.clear();
        },
        [&](qint32 line) {
            result.push_back({line, line});
        });
    return result;
}

qsizetype SideBySideHunkLines::rowCount() const
{
    qsizetype count = 0;
    qsizetype removed = 0;
    qsizetype added = 0;
    walk(
        hunk, [&](qint32, bool isRemoved) { ++(isRemoved ? removed : added); },
        [&] {
            count += std::max(removed, added);
            removed = 0;
            added = 0;
        },
        [&](qint32) { ++count; });
    return count;
}

QList<SideBySideHunkLines::Row> SideBySideHunkLines::rows() const
{
    QList<Row> result;
    for (const Pairing& pairing : pairings()) {
        Row row;
        if (pairing.oldLine >= 0) {
            row.oldLine = hunk.lines[pairing.oldLine];
        }
        if (pairing.newLine >= 0) {
            row.newLine = hunk.lines[pairing.newLine];
        }
        if (pairing.isCompared()) {
            WordDiff::Result words = WordDiff::diff(row.oldLine->text.toString(), row.newLine->text.toString());
            row.oldWord = std::move(words.oldSegments);
            row.newWord = std::move(words.newSegments);
        }
        result.append(std::move(row));
    }
    return result;
}

} // namespace kelm
