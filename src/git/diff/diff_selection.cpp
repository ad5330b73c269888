#include "git/diff/diff_selection.h"

#include "platform/text/quoted_name.h"
#include "platform/text/shown_name.h"

#include <QStringList>

#include <algorithm>

namespace kelm {

namespace {

/// The new name of a file whose name git has quoted, which the parser does not find; empty where there is none.
QString quotedPath(const DiffFile& file)
{
    constexpr QStringView mark = u" \"b/";
    for (const DiffLine& line : file.preamble) {
        const qsizetype start = line.text.indexOf(mark);
        const bool isNamed = line.text.startsWith(u"diff --git ") || line.text.startsWith(u"+++ ");
        const QStringView name = isNamed && start >= 0 ? QStringView(line.text).sliced(start + 1) : QStringView();
        if (!name.isEmpty() && quotedNameLength(name) == name.size()) {
            return unquotedName(name).sliced(2);
        }
    }
    return {};
}

} // namespace

QString shownPath(const DiffFile& file)
{
    const QString path = file.path.isEmpty() ? quotedPath(file) : file.path;
    return path.isEmpty() ? QStringLiteral("(diff)") : shownName(path);
}

const DiffLine* lineOn(SideBySideHunkLines::Side side, const DiffLayout& layout, qsizetype file, qsizetype hunk,
                       qsizetype entry)
{
    const SideBySideHunkLines::Pairing pairing = layout.lines(file, hunk, entry);
    const qint32 line = side == SideBySideHunkLines::Side::oldSide ? pairing.oldLine : pairing.newLine;
    return line < 0 ? nullptr : &layout.files()[file].hunks[hunk].lines[line];
}

DiffSelection wholeSelection(const DiffLayout& layout, SideBySideHunkLines::Side side)
{
    return {{0, -1, 0, 0}, {layout.files().size(), -1, 0, 0}, side};
}

std::optional<LineStretch> selectedStretch(const DiffSelection& selection, DiffTextPlace place, qsizetype length)
{
    const auto [first, last] = std::minmax(selection.anchor, selection.caret);
    DiffTextPlace start = place;
    DiffTextPlace end = place;
    start.unit = 0;
    end.unit = length;
    if (last < start || end < first || first == last) {
        return std::nullopt;
    }
    const qsizetype from = std::max(first, start).unit;
    return LineStretch{from, std::min(last, end).unit - from};
}

QString selectedText(const DiffLayout& layout, const DiffSelection& selection)
{
    const auto [first, last] = std::minmax(selection.anchor, selection.caret);
    QStringList lines;
    const auto take = [&, &selection = selection](const QString& text, DiffTextPlace place) {
        if (const auto stretch = selectedStretch(selection, place, text.size())) {
            lines.append(text.sliced(stretch->start, stretch->length));
        }
    };
    const QList<DiffFile>& files = layout.files();
    for (qsizetype file = first.file; file <= std::min(last.file, files.size() - 1); ++file) {
        take(shownPath(files[file]), {file, -1, 0, 0});
        const qsizetype lastHunk = file == last.file ? last.hunk : files[file].hunks.size() - 1;
        for (qsizetype hunk = file == first.file ? std::max<qsizetype>(first.hunk, 0) : 0; hunk <= lastHunk; ++hunk) {
            if (layout.isCollapsed(file, hunk)) {
                continue;
            }
            for (qsizetype entry = 0; entry < layout.entryCount(file, hunk); ++entry) {
                if (const DiffLine* line = lineOn(selection.side, layout, file, hunk, entry)) {
                    take(line->text, {file, hunk, entry, 0});
                }
            }
        }
    }
    return lines.join(u'\n');
}

} // namespace kelm
