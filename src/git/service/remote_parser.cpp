#include "git/service/remote_parser.h"

#include <QSet>

namespace kelm {

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
        QString url = pieces[1].toString();
        url.remove(QStringLiteral(" (fetch)"));
        url.remove(QStringLiteral(" (push)"));
        remotes.append({QUuid::createUuid(), pieces[0].toString(), url});
    }
    return remotes;
}

} // namespace kelm
