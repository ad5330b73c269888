#include "git/diff/diff_layout.h"

#include "git/diff/line_cells.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// Where a hunk's lines begin that are shown, behind the header's own.
constexpr qint32 firstLine = 1;

} // namespace

DiffLayout::DiffLayout(QList<DiffFile> files, DiffViewMode mode, const DiffMetrics& metrics, qsizetype columns)
    : files_(std::move(files)), mode_(mode), metrics_(metrics), columns_(columns)
{
    layouts_.reserve(static_cast<std::size_t>(files_.size()));
    for (const DiffFile& file : std::as_const(files_)) {
        File layout;
        layout.hunks.reserve(static_cast<std::size_t>(file.hunks.size()));
        for (const DiffHunk& hunk : file.hunks) {
            layout.hunks.push_back(measured(hunk));
        }
        addUpHunks(layout);
        layouts_.push_back(std::move(layout));
    }
    addUpFiles(0);
}

DiffLayout::Hunk DiffLayout::measured(const DiffHunk& hunk) const
{
    Hunk layout;
    layout.entries =
        mode_ == DiffViewMode::unified ? hunk.lines.size() - firstLine : SideBySideHunkLines(hunk).rowCount();
    if (isBehindTheText(hunk, hunk.lines.back())) {
        --layout.entries;
    }
    for (qsizetype line = firstLine; line < hunk.lines.size(); ++line) {
        layout.widest = std::max(layout.widest, cellCount(hunk.lines[line].text));
    }
    wrap(hunk, layout);
    return layout;
}

void DiffLayout::wrap(const DiffHunk& hunk, Hunk& layout) const
{
    layout.rowStarts.clear();
    if (layout.widest <= columns_) {
        return;
    }
    const auto rowsOf = [&](qint32 line) { return line < 0 ? 1 : LineRows(hunk.lines[line].text, columns_).count(); };
    layout.rowStarts.reserve(static_cast<std::size_t>(layout.entries) + 1);
    qsizetype rows = 0;
    for (qsizetype entry = 0; entry < layout.entries; ++entry) {
        layout.rowStarts.push_back(static_cast<quint32>(rows));
        const auto [oldLine, newLine] = linesOf(hunk, layout, entry);
        rows += oldLine == newLine ? rowsOf(oldLine) : std::max(rowsOf(oldLine), rowsOf(newLine));
    }
    layout.rowStarts.push_back(static_cast<quint32>(rows));
}

void DiffLayout::addUpHunks(File& layout) const
{
    qint64 top = metrics_.fileHeader;
    layout.hunkTops.clear();
    for (const Hunk& hunk : layout.hunks) {
        layout.hunkTops.push_back(top);
        top += metrics_.hunkHeader + (hunk.isCollapsed ? 0 : hunk.rows() * metrics_.row);
    }
    layout.hunkTops.push_back(top);
}

void DiffLayout::addUpFiles(std::size_t from)
{
    fileTops_.resize(layouts_.size() + 1);
    fileTops_.front() = metrics_.padding;
    for (std::size_t file = from; file < layouts_.size(); ++file) {
        fileTops_[file + 1] = fileTops_[file] + layouts_[file].hunkTops.back() + metrics_.spacing;
    }
}

void DiffLayout::setColumns(qsizetype columns)
{
    if (columns == columns_) {
        return;
    }
    const qsizetype fewest = std::min(columns, std::exchange(columns_, columns));
    for (std::size_t file = 0; file < layouts_.size(); ++file) {
        File& layout = layouts_[file];
        for (std::size_t hunk = 0; hunk < layout.hunks.size(); ++hunk) {
            if (layout.hunks[hunk].widest > fewest) {
                wrap(files_[qsizetype(file)].hunks[qsizetype(hunk)], layout.hunks[hunk]);
            }
        }
        addUpHunks(layout);
    }
    addUpFiles(0);
}

void DiffLayout::setCollapsed(qsizetype file, qsizetype hunk, bool isCollapsed)
{
    File& layout = layouts_[std::size_t(file)];
    layout.hunks[std::size_t(hunk)].isCollapsed = isCollapsed;
    addUpHunks(layout);
    addUpFiles(std::size_t(file));
}

qint64 DiffLayout::height() const
{
    return files_.isEmpty() ? 2 * qint64(metrics_.padding) : fileTops_.back() - metrics_.spacing + metrics_.padding;
}

qint64 DiffLayout::fileHeight(qsizetype file) const
{
    return layouts_[std::size_t(file)].hunkTops.back();
}

qint64 DiffLayout::hunkTop(qsizetype file, qsizetype hunk) const
{
    return fileTop(file) + layouts_[std::size_t(file)].hunkTops[std::size_t(hunk)];
}

qint64 DiffLayout::entryTop(qsizetype file, qsizetype hunk, qsizetype entry) const
{
    const std::vector<quint32>& rowStarts = hunkAt(file, hunk).rowStarts;
    const qint64 row = rowStarts.empty() ? entry : rowStarts[std::size_t(entry)];
    return hunkTop(file, hunk) + metrics_.hunkHeader + row * metrics_.row;
}

qsizetype DiffLayout::entryRows(qsizetype file, qsizetype hunk, qsizetype entry) const
{
    const std::vector<quint32>& rowStarts = hunkAt(file, hunk).rowStarts;
    return rowStarts.empty() ? 1 : rowStarts[std::size_t(entry) + 1] - rowStarts[std::size_t(entry)];
}

SideBySideHunkLines::Pairing DiffLayout::lines(qsizetype file, qsizetype hunk, qsizetype entry) const
{
    return linesOf(files_[file].hunks[hunk], hunkAt(file, hunk), entry);
}

SideBySideHunkLines::Pairing DiffLayout::linesOf(const DiffHunk& hunk, const Hunk& layout, qsizetype entry) const
{
    if (mode_ == DiffViewMode::unified) {
        const qint32 line = firstLine + static_cast<qint32>(entry);
        return {line, line};
    }
    if (layout.pairings.empty()) {
        layout.pairings = SideBySideHunkLines(hunk).pairings();
    }
    return layout.pairings[std::size_t(entry)];
}

DiffPlace DiffLayout::placeAt(qint64 y) const
{
    const auto indexIn = [](const std::vector<qint64>& tops, qint64 at) {
        return std::upper_bound(tops.begin(), tops.end(), at) - tops.begin() - 1;
    };
    if (layouts_.empty() || y < fileTops_.front()) {
        return {};
    }
    DiffPlace place{DiffPlace::Part::gap, std::min<qsizetype>(indexIn(fileTops_, y), files_.size() - 1), 0, 0};
    const File& layout = layouts_[std::size_t(place.file)];
    const qint64 inFile = y - fileTop(place.file);
    if (inFile >= layout.hunkTops.back()) {
        ++place.file;
        return place;
    }
    if (inFile < metrics_.fileHeader) {
        place.part = DiffPlace::Part::fileHeader;
        return place;
    }
    place.hunk = indexIn(layout.hunkTops, inFile);
    const Hunk& hunk = layout.hunks[std::size_t(place.hunk)];
    const qint64 inBody = inFile - layout.hunkTops[std::size_t(place.hunk)] - metrics_.hunkHeader;
    if (inBody < 0) {
        place.part = DiffPlace::Part::hunkHeader;
        return place;
    }
    const qint64 row = inBody / metrics_.row;
    place.part = DiffPlace::Part::entry;
    place.entry = hunk.rowStarts.empty() ? row
                                         : std::upper_bound(hunk.rowStarts.begin(), hunk.rowStarts.end(), row) -
                                               hunk.rowStarts.begin() - 1;
    return place;
}

} // namespace kelm
