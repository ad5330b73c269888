#include "git/diff/diff_content.h"

#include "git/diff/diff_parser.h"

namespace kelm {

namespace {

QString counted(qsizetype count, const QString& noun)
{
    return QString::number(count) + u' ' + noun + (count == 1 ? QString() : QStringLiteral("s"));
}

} // namespace

DiffContent DiffContent::of(const QString& diffText)
{
    if (diffText.isEmpty()) {
        return {};
    }
    QList<DiffFile> files = DiffParser::parse(diffText);
    return {files.isEmpty() ? State::rawText : State::files, std::move(files)};
}

QString filesSummary(const QList<DiffFile>& files)
{
    qsizetype added = 0;
    qsizetype removed = 0;
    for (const DiffFile& file : files) {
        for (const DiffHunk& hunk : file.hunks) {
            for (const DiffLine& line : hunk.lines) {
                added += line.kind == DiffLineKind::added ? 1 : 0;
                removed += line.kind == DiffLineKind::removed ? 1 : 0;
            }
        }
    }
    return counted(files.size(), QStringLiteral("file")) + QStringLiteral("   +") + QString::number(added) +
           QStringLiteral(" \u2212") + QString::number(removed);
}

QString hunkCountLabel(qsizetype hunks)
{
    return counted(hunks, QStringLiteral("hunk"));
}

} // namespace kelm
