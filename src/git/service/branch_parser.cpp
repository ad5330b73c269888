#include "git/service/branch_parser.h"

#include <QSet>

namespace kelm {

namespace {

/// The folders that the branches of such lines stand in. No branch has the name of one: git keeps none of a name and
/// others below that name at once.
QSet<QStringView> foldersOf(QStringView output)
{
    // Git puts it before a name that a branch of this repository has too.
    constexpr QStringView longForm = u"remotes/";
    QSet<QStringView> folders;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const qsizetype skipped = line.startsWith(longForm) ? longForm.size() : 0;
        for (qsizetype slash = line.indexOf(u'/'); slash >= 0; slash = line.indexOf(u'/', slash + 1)) {
            folders.insert(line.first(slash));
            if (skipped > 0 && slash > skipped) {
                folders.insert(line.sliced(skipped, slash - skipped));
            }
        }
    }
    return folders;
}

} // namespace

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
    const QSet<QStringView> folders = foldersOf(output);
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        if (!line.endsWith(u"/HEAD") && !folders.contains(line)) {
            branches.append({QUuid::createUuid(), line.toString(), true, false, std::nullopt});
        }
    }
    return branches;
}

} // namespace kelm
