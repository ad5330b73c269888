#include "git/service/remote_parser.h"

#include <QSet>

namespace kelm {

namespace {

/// The line's piece without the filter of a partial clone, which stands in brackets behind the use of the URL.
QStringView withoutFilter(QStringView piece)
{
    const qsizetype bracket = piece.endsWith(u']') ? piece.lastIndexOf(u" [") : -1;
    const QStringView before = bracket < 0 ? QStringView() : piece.first(bracket);
    return before.endsWith(u" (fetch)") || before.endsWith(u" (push)") ? before : piece;
}

} // namespace

QList<GitRemote> parseRemotes(QStringView output)
{
    QList<GitRemote> remotes;
    QSet<QStringView> seen;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const QList<QStringView> pieces = line.split(u'\t');
        if (pieces.size() != 2 || seen.contains(pieces[0])) {
            continue;
        }
        seen.insert(pieces[0]);
        QString url = withoutFilter(pieces[1]).toString();
        url.remove(QStringLiteral(" (fetch)"));
        url.remove(QStringLiteral(" (push)"));
        remotes.append({QUuid::createUuid(), pieces[0].toString(), url});
    }
    return remotes;
}

} // namespace kelm
