#include "git/service/log_parser.h"

namespace kelm {

QList<GitCommit> parseLog(QStringView output)
{
    QList<GitCommit> commits;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const QList<QStringView> pieces = line.split(QChar(0x1F));
        if (pieces.size() == 4) {
            commits.append({pieces[0].toString(), pieces[1].toString(), pieces[2].toString(), pieces[3].toString()});
        }
    }
    return commits;
}

} // namespace kelm
