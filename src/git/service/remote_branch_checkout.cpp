#include "git/service/remote_branch_checkout.h"

#include <QStringList>
#include <QStringView>

#include <algorithm>

namespace kelm {

QString localNameOfRemoteBranch(const QString& name)
{
    const QString local = name.split(u'/', Qt::SkipEmptyParts).mid(1).join(u'/');
    return local.isEmpty() ? name : local;
}

QString nameOfListedRemoteBranch(const QString& listed, const QList<GitRemote>& remotes)
{
    constexpr QStringView folder = u"remotes/";
    const bool isOwn =
        std::any_of(remotes.begin(), remotes.end(), [](const GitRemote& remote) { return remote.name == u"remotes"; });
    return listed.startsWith(folder) && !isOwn ? listed.sliced(folder.size()) : listed;
}

} // namespace kelm
