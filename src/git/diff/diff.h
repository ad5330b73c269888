// A unified diff as files, hunks and lines.
#pragma once

#include <QList>
#include <QString>
#include <QUuid>

#include <limits>
#include <optional>

namespace kelm {

enum class DiffLineKind { context, added, removed, hunkHeader, fileHeader, noNewline };

/// A place in a file, or none. As long as the number alone, which counts where there are millions of them.
class DiffLineNumber
{
public:
    /// The lowest that a place may have. A header may give the number below it, which stands for none here.
    static constexpr qint64 lowest = std::numeric_limits<qint64>::min() + 1;

    DiffLineNumber() = default;
    DiffLineNumber(std::nullopt_t) {}
    DiffLineNumber(qint64 number) : number_(number) {}

    explicit operator bool() const { return number_ != none; }
    qint64 operator*() const { return number_; }
    operator std::optional<qint64>() const { return number_ != none ? std::optional(number_) : std::nullopt; }

    bool operator==(const DiffLineNumber&) const = default;

private:
    static constexpr qint64 none = lowest - 1;

    qint64 number_ = none;
};

struct DiffLine
{
    DiffLineKind kind = DiffLineKind::context;
    /// Without the leading sign for context, added and removed lines; the whole line for the others. It looks into the
    /// text that was parsed, which the line's hunk and file keep.
    QStringView text;
    /// 1-based places in the two files, where the line has one.
    DiffLineNumber oldLineNumber;
    DiffLineNumber newLineNumber;

    bool operator==(const DiffLine&) const = default;
};

struct DiffHunk
{
    /// Fresh in each parse.
    QUuid id;
    /// The whole "@@" line as it stood.
    QString header;
    qint64 oldStart = 0;
    qint64 oldCount = 0;
    qint64 newStart = 0;
    qint64 newCount = 0;
    /// Begins with the header line itself.
    QList<DiffLine> lines;
    /// The whole text that was parsed, shared by all that came of it: the lines are views of it, so that a large diff
    /// is held once.
    QString source;

    /// Field by field, wherever the two come from.
    friend bool operator==(const DiffHunk& a, const DiffHunk& b)
    {
        return a.id == b.id && a.header == b.header && a.oldStart == b.oldStart && a.oldCount == b.oldCount &&
               a.newStart == b.newStart && a.newCount == b.newCount && a.lines == b.lines;
    }
};

/// Whether a line is the empty piece behind the last line feed of the text. The parser counts it as a line of the last
/// hunk, and it goes into that hunk's patch, but it is no line of the file and has no number there.
inline bool isBehindTheText(const DiffHunk& hunk, const DiffLine& line)
{
    return line.kind == DiffLineKind::context && line.text.isEmpty() && !hunk.source.isEmpty() &&
           line.text.data() == hunk.source.constData() + hunk.source.size() && hunk.source.back() == u'\n';
}

struct DiffFile
{
    /// Fresh in each parse.
    QUuid id;
    /// The new path; empty when it could not be found.
    QString path;
    /// The lines before the first hunk, all of kind `fileHeader`.
    QList<DiffLine> preamble;
    QList<DiffHunk> hunks;
    /// As that of a hunk.
    QString source;

    /// A patch that holds the one hunk at `index` and nothing else, ready for `git apply`; absent when there is no such
    /// hunk. The hunk keeps its own header: its numbers are those of the whole diff.
    std::optional<QString> patch(qsizetype index) const;

    /// Field by field, wherever the two come from.
    friend bool operator==(const DiffFile& a, const DiffFile& b)
    {
        return a.id == b.id && a.path == b.path && a.preamble == b.preamble && a.hunks == b.hunks;
    }
};

} // namespace kelm

Q_DECLARE_TYPEINFO(kelm::DiffLine, Q_RELOCATABLE_TYPE);
Q_DECLARE_TYPEINFO(kelm::DiffHunk, Q_RELOCATABLE_TYPE);
Q_DECLARE_TYPEINFO(kelm::DiffFile, Q_RELOCATABLE_TYPE);
