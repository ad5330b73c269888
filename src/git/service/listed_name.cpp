#include "git/service/listed_name.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

const QString references = u"refs/"_s;

QString folderOf(GitNameKind kind)
{
    return kind == GitNameKind::branch ? u"heads/"_s : kind == GitNameKind::tag ? u"tags/"_s : QString();
}

} // namespace

ListedName::ListedName(GitNameKind kind, QString name) : folder_(folderOf(kind)), name_(std::move(name)) {}

QString ListedName::shortForm() const
{
    return !folder_.isEmpty() && name_.startsWith(folder_) ? name_.sliced(folder_.size()) : QString();
}

QStringList ListedName::question() const
{
    return {u"for-each-ref"_s, u"--format=%(refname)"_s, references + folder_ + name_,
            references + folder_ + shortForm()};
}

QString ListedName::nameIn(const QString& answer) const
{
    const QStringList listed = answer.split(u'\n');
    const bool isOwn = listed.contains(references + folder_ + name_);
    const bool isLong = !shortForm().isEmpty() && listed.contains(references + folder_ + shortForm());
    return isLong && !isOwn ? shortForm() : name_;
}

} // namespace kelm
