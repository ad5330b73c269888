// A unified diff as files, hunks and lines.
#pragma once

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace kelm {

enum class DiffLineKind { context, added, removed, hunkHeader, fileHeader, noNewline };

struct DiffLine
{
    DiffLineKind kind = DiffLineKind::context;
    /// Without the leading sign for context, added and removed lines; the whole line for the others.
    QString text;
    /// 1-based places in the two files, where the line has one.
    std::optional<qint64> oldLineNumber;
    std::optional<qint64> newLineNumber;

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

    bool operator==(const DiffHunk&) const = default;
};

struct DiffFile
{
    /// Fresh in each parse.
    QUuid id;
    /// The new path; empty when it could not be found.
    QString path;
    /// The lines before the first hunk, all of kind `fileHeader`.
    QList<DiffLine> preamble;
    QList<DiffHunk> hunks;

    /// A patch that holds the one hunk at `index` and nothing else, ready for `git apply`; absent when there is no such
    /// hunk. The hunk keeps its own header: its numbers are those of the whole diff.
    std::optional<QString> patch(qsizetype index) const;

    bool operator==(const DiffFile&) const = default;
};

} // namespace kelm

Q_DECLARE_TYPEINFO(kelm::DiffLine, Q_RELOCATABLE_TYPE);
Q_DECLARE_TYPEINFO(kelm::DiffHunk, Q_RELOCATABLE_TYPE);
Q_DECLARE_TYPEINFO(kelm::DiffFile, Q_RELOCATABLE_TYPE);
