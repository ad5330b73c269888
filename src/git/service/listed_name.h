// The names of branches and tags as git lists them.
#pragma once

#include "git/service/git_refusal.h"

#include <QString>
#include <QStringList>

namespace kelm {

/// The name of a branch or a tag in a list. Git lists "heads/x" for the branch x where another reference is called x
/// too, and "tags/x" for such a tag, but a command for branches alone, or for tags alone, takes only "x" for it.
class ListedName
{
public:
    /// A name of a kind that is neither a branch's nor a tag's is never a long one.
    ListedName(GitNameKind kind, QString name);

    /// The name without what git puts before one that is shared; empty for any other.
    QString shortForm() const;

    /// The arguments that make git list the references which a long name may mean.
    QStringList question() const;

    /// The name for such a command, by what git answered, one full reference a line: the short form, unless there is a
    /// reference that is itself called as the list has it.
    QString nameIn(const QString& answer) const;

private:
    /// "heads/" or "tags/".
    QString folder_;
    QString name_;
};

} // namespace kelm
