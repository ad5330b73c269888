// Where the parts of a shown diff stand.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/diff_view_mode.h"
#include "git/diff/side_by_side_hunk_lines.h"

#include <vector>

namespace kelm {

/// Heights and distances of a shown diff, in device-independent pixels.
struct DiffMetrics
{
    int fileHeader = 32;
    int hunkHeader = 22;
    /// A row of a line. A line that is longer than a row takes several.
    int row = 16;
    /// Around all files.
    int padding = 12;
    /// Between two files.
    int spacing = 12;
};

/// Something that has a place in a diff.
struct DiffPlace
{
    /// `gap` is what lies around the files; `entry` is one line, or two that face each other.
    enum class Part { gap, fileHeader, hunkHeader, entry };

    Part part = Part::gap;
    /// In a gap, the next file below; the number of files behind the last.
    qsizetype file = 0;
    qsizetype hunk = 0;
    qsizetype entry = 0;

    bool operator==(const DiffPlace&) const = default;
};

/// The geometry of a diff: files below each other, in each its hunks, in each hunk its entries. In the unified form an
/// entry is a line, and in the side-by-side form a row of two sides.
///
/// Heights are kept as sums, so that a place is found by bisection and a screen costs what it shows. Making it takes
/// one pass over the text, to find the lines that are longer than a row; a change of width looks only at hunks that
/// hold such a line. No text is laid out. y counts from the top of the content.
class DiffLayout
{
public:
    DiffLayout() = default;
    /// `columns` is how many cells a row of a line takes, at least 1.
    DiffLayout(QList<DiffFile> files, DiffViewMode mode, const DiffMetrics& metrics, qsizetype columns);

    const QList<DiffFile>& files() const { return files_; }
    DiffViewMode mode() const { return mode_; }
    const DiffMetrics& metrics() const { return metrics_; }
    qsizetype columns() const { return columns_; }
    void setColumns(qsizetype columns);

    bool isCollapsed(qsizetype file, qsizetype hunk) const { return hunkAt(file, hunk).isCollapsed; }
    void setCollapsed(qsizetype file, qsizetype hunk, bool isCollapsed);

    /// Of everything, the padding included.
    qint64 height() const;
    qint64 fileTop(qsizetype file) const { return fileTops_[std::size_t(file)]; }
    /// Without the space below it.
    qint64 fileHeight(qsizetype file) const;
    qint64 hunkTop(qsizetype file, qsizetype hunk) const;
    qsizetype entryCount(qsizetype file, qsizetype hunk) const { return hunkAt(file, hunk).entries; }
    qint64 entryTop(qsizetype file, qsizetype hunk, qsizetype entry) const;
    /// In rows of lines.
    qsizetype entryRows(qsizetype file, qsizetype hunk, qsizetype entry) const;
    /// The indices of an entry's lines in its hunk; both the same in the unified form.
    SideBySideHunkLines::Pairing lines(qsizetype file, qsizetype hunk, qsizetype entry) const;

    /// What stands at `y`. Above everything it is the gap before the first file.
    DiffPlace placeAt(qint64 y) const;

private:
    struct Hunk
    {
        qsizetype entries = 0;
        /// The cells of the longest line.
        qsizetype widest = 0;
        bool isCollapsed = false;
        /// In the side-by-side form, made when they are first asked for.
        mutable std::vector<SideBySideHunkLines::Pairing> pairings;
        /// The row in which each entry begins, and their number; empty where each entry is one row.
        std::vector<quint32> rowStarts;

        qint64 rows() const { return rowStarts.empty() ? entries : rowStarts.back(); }
    };
    struct File
    {
        std::vector<Hunk> hunks;
        /// From the file's top; one more than hunks, the last being the file's height.
        std::vector<qint64> hunkTops;
    };

    const Hunk& hunkAt(qsizetype file, qsizetype hunk) const
    {
        return layouts_[std::size_t(file)].hunks[std::size_t(hunk)];
    }
    Hunk measured(const DiffHunk& hunk) const;
    SideBySideHunkLines::Pairing linesOf(const DiffHunk& hunk, const Hunk& layout, qsizetype entry) const;
    void wrap(const DiffHunk& hunk, Hunk& layout) const;
    void addUpHunks(File& layout) const;
    void addUpFiles(std::size_t from);

    QList<DiffFile> files_;
    DiffViewMode mode_ = DiffViewMode::unified;
    DiffMetrics metrics_;
    qsizetype columns_ = 1;
    std::vector<File> layouts_;
    /// One more than files: where a next one would begin.
    std::vector<qint64> fileTops_;
};

} // namespace kelm
