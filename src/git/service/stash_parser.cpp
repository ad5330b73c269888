#include "git/service/stash_parser.h"

namespace kelm {

QList<GitStash> parseStashes(QStringView output)
{
    QList<GitStash> stashes;
    qint64 place = 0;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const QList<QStringView> pieces = line.split(QChar(0x1F));
        if (pieces.size() == 2) {
            stashes.append({place, pieces[0].toString(), pieces[1].toString()});
        }
        ++place;
    }
    return stashes;
}

} // namespace kelm
