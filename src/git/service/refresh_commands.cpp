#include "git/service/refresh_commands.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm::refreshCommands {

QStringList branch()
{
    return {u"rev-parse"_s, u"--abbrev-ref"_s, u"HEAD"_s};
}

QStringList status()
{
    return {u"status"_s, u"--porcelain=v1"_s};
}

QStringList aheadBehind()
{
    return {u"rev-list"_s, u"--left-right"_s, u"--count"_s, u"@{u}...HEAD"_s};
}

QStringList localBranches()
{
    return {u"for-each-ref"_s, u"--format=%(refname:short)%00%(HEAD)%00%(upstream:short)"_s, u"refs/heads"_s};
}

QStringList remoteBranches()
{
    return {u"for-each-ref"_s, u"--format=%(refname:short)"_s, u"refs/remotes"_s};
}

QStringList remotes()
{
    return {u"remote"_s, u"-v"_s};
}

QStringList stashes()
{
    return {u"stash"_s, u"list"_s, u"--pretty=format:%gd%x1f%s"_s};
}

QStringList tags()
{
    return {u"for-each-ref"_s,
            u"--format=%(refname:short)%00%(objecttype)%00%(*objectname)%00%(objectname)%00%(contents:subject)"_s,
            u"refs/tags"_s};
}

QStringList log(qint64 limit)
{
    return {u"log"_s, u"-n"_s, QString::number(limit), u"--date=short"_s, u"--pretty=format:%H%x1f%an%x1f%ad%x1f%s"_s};
}

} // namespace kelm::refreshCommands
