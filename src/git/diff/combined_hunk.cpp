#include "git/diff/combined_hunk.h"

#include <algorithm>
#include <array>
#include <limits>

namespace kelm {

namespace {

constexpr QChar fileSign = u'@';
constexpr std::array<QStringView, 2> fileStarts{u"diff --cc ", u"diff --combined "};

/// The number of old files, from the header.
qsizetype parentsOf(const DiffHunk& hunk)
{
    qsizetype signs = 0;
    while (signs < hunk.header.size() && hunk.header[signs] == fileSign) {
        ++signs;
    }
    return signs - 1;
}

/// A body line with the sign that the parser took off.
QStringView wholeLine(const DiffLine& line, const QString& source)
{
    const bool isSigned =
        line.kind != DiffLineKind::context || (line.text.data() > source.data() && line.text.data()[-1] == u' ');
    return isSigned ? QStringView(line.text.data() - 1, line.text.size() + 1) : line.text;
}

bool startsFile(QStringView line)
{
    return line.startsWith(fileStarts[0]) || line.startsWith(fileStarts[1]);
}

} // namespace

bool isCombined(const DiffHunk& hunk)
{
    return hunk.header.startsWith(u"@@@");
}

DiffHunk readableCombinedHunk(DiffHunk hunk)
{
    const qsizetype parents = parentsOf(hunk);
    qint64 number = std::max(hunk.newStart, DiffLineNumber::lowest);
    for (DiffLine& line : hunk.lines) {
        if (line.kind == DiffLineKind::hunkHeader || line.kind == DiffLineKind::noNewline) {
            continue;
        }
        const QStringView whole = wholeLine(line, hunk.source);
        const QStringView signs = whole.first(std::min(parents, whole.size()));
        line.kind = signs.contains(u'+')   ? DiffLineKind::added
                    : signs.contains(u'-') ? DiffLineKind::removed
                                           : DiffLineKind::context;
        line.text = whole;
        line.oldLineNumber = {};
        line.newLineNumber = {};
        if (line.kind != DiffLineKind::removed) {
            line.newLineNumber = number;
            number += number < std::numeric_limits<qint64>::max() ? 1 : 0;
        }
    }
    return hunk;
}

QList<QStringView> piecesOfCombinedDiff(QStringView text)
{
    QList<QStringView> pieces;
    qsizetype start = 0;
    for (qsizetype at = text.indexOf(u"\ndiff --c"); at >= 0; at = text.indexOf(u"\ndiff --c", at + 1)) {
        if (startsFile(text.sliced(at + 1))) {
            pieces.append(text.sliced(start, at + 1 - start));
            start = at + 1;
        }
    }
    pieces.append(text.sliced(start));
    return pieces;
}

QString pathOfCombinedDiff(QStringView piece)
{
    for (const QStringView start : fileStarts) {
        if (piece.startsWith(start)) {
            const qsizetype end = piece.indexOf(u'\n');
            return piece.sliced(start.size(), (end < 0 ? piece.size() : end) - start.size()).toString();
        }
    }
    return {};
}

} // namespace kelm
