#include "git/diff/diff_content.h"

#include "git/diff/combined_hunk.h"
#include "git/diff/diff_parser.h"

namespace kelm {

namespace {

QString counted(qsizetype count, const QString& noun)
{
    return QString::number(count) + u' ' + noun + (count == 1 ? QString() : QStringLiteral("s"));
}

/// The files of one piece of `diffText`, in which their lines look.
QList<DiffFile> parsed(QStringView piece, const QString& diffText)
{
    const bool isAll = piece.size() == diffText.size();
    QList<DiffFile> files = DiffParser::parse(isAll ? diffText : QString::fromRawData(piece.data(), piece.size()));
    for (DiffFile& file : files) {
        file.source = diffText;
        for (DiffHunk& hunk : file.hunks) {
            hunk.source = diffText;
            if (isCombined(hunk)) {
                hunk = readableCombinedHunk(std::move(hunk));
            }
        }
        if (file.path.isEmpty()) {
            file.path = pathOfCombinedDiff(piece);
        }
    }
    return files;
}

} // namespace

DiffContent DiffContent::of(const QString& diffText)
{
    if (diffText.isEmpty()) {
        return {};
    }
    QList<DiffFile> files;
    const QList<QStringView> pieces = piecesOfCombinedDiff(diffText);
    for (qsizetype index = 0; index < pieces.size(); ++index) {
        // Only the last piece has an end that is the text's own.
        const bool isLast = index == pieces.size() - 1;
        files += parsed(isLast ? pieces[index] : pieces[index].chopped(1), diffText);
    }
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
