#include "git/service/remote_branch_checkout.h"

#include <QStringList>

namespace kelm {

QString localNameOfRemoteBranch(const QString& name)
{
    const QString local = name.split(u'/', Qt::SkipEmptyParts).mid(1).join(u'/');
    return local.isEmpty() ? name : local;
}

} // namespace kelm
