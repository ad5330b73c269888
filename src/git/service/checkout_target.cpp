#include "git/service/checkout_target.h"

#include "git/service/listed_name.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

const QString heads = u"refs/heads/"_s;
const QString remotes = u"refs/remotes/"_s;

QString shortened(const QString& name)
{
    return ListedName(GitNameKind::branch, name).shortForm();
}

bool isHead(const QStringList& references, const QString& name)
{
    return !name.isEmpty() && references.contains(heads + name);
}

} // namespace

QStringList CheckoutTarget::question() const
{
    QStringList arguments{u"for-each-ref"_s, u"--format=%(refname)"_s, heads + name_, remotes + u"**/"_s + name_};
    if (const QString other = shortened(name_); !other.isEmpty()) {
        arguments.append(heads + other);
    }
    return arguments;
}

std::optional<QString> CheckoutTarget::nameIn(const QString& answer) const
{
    const QStringList references = answer.split(u'\n');
    if (isHead(references, name_)) {
        return name_;
    }
    if (const QString other = shortened(name_); isHead(references, other)) {
        return other;
    }
    const bool isRemote =
        !name_.isEmpty() && std::any_of(references.begin(), references.end(), [this](const QString& reference) {
            return reference.startsWith(remotes) && reference.endsWith(u'/' + name_);
        });
    return isRemote ? std::optional(name_) : std::nullopt;
}

bool CheckoutTarget::isLocalIn(const QString& answer) const
{
    const QStringList references = answer.split(u'\n');
    return isHead(references, name_) || isHead(references, shortened(name_));
}

} // namespace kelm
