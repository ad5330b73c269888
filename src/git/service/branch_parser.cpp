#include "git/service/branch_parser.h"

namespace kelm {

QList<GitBranch> parseLocalBranches(QStringView output)
{
    QList<GitBranch> branches;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const QList<QStringView> pieces = line.split(QChar(u'\0'));
        if (pieces.size() < 3) {
            continue;
        }
        GitBranch branch{QUuid::createUuid(), pieces[0].toString(), false, pieces[1] == u'*', std::nullopt};
        if (!pieces[2].isEmpty()) {
            branch.upstream = pieces[2].toString();
        }
        branches.append(branch);
    }
    return branches;
}

QList<GitBranch> parseRemoteBranches(QStringView output)
{
    QList<GitBranch> branches;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        if (!line.endsWith(u"/HEAD")) {
            branches.append({QUuid::createUuid(), line.toString(), true, false, std::nullopt});
        }
    }
    return branches;
}

} // namespace kelm
