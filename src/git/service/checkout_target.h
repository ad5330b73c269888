// Making sure that the name of a branch means a branch.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace kelm {

/// Whether a name is that of a branch. `git checkout NAME` takes what is no branch for a file, and throws its changes
/// away: a list may be older than the repository, and names on a server are anybody's.
class CheckoutTarget
{
public:
    explicit CheckoutTarget(QString name) : name_(std::move(name)) {}

    /// The arguments that make git list the references which the name may mean.
    QStringList question() const;

    /// The name to check out, by what git answered, one full reference a line: that of a local branch, or of one that
    /// remotes have. Absent where there is neither. Git says "heads/x" for a branch that shares its name with another
    /// reference, and takes only "x" for the branch.
    std::optional<QString> nameIn(const QString& answer) const;

    /// Whether it is a local branch's name, which git prefers to a file of that name.
    bool isLocalIn(const QString& answer) const;

private:
    QString name_;
};

} // namespace kelm
