// Completing the path at the end of a command line.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace kelm {

/// Completes the last word of `line`, whose words are what stands between single blanks, to a name in a folder. A word
/// with a slash is a path below the folder, and so is one that begins with a slash; "~" has no meaning. The comparison
/// is exact, and hidden names count. Names and lines are in the form of `pathOfNative`, so that a name that is not
/// UTF-8 keeps its bytes.
class PathCompletion
{
public:
    /// Looks for names. Relative to `directory`, an absolute path.
    PathCompletion(const QString& line, const QString& directory);

    /// The names that the word can become, in the order in which the folder lists them. Empty when there are none and
    /// when the folder cannot be read.
    const QStringList& names() const { return names_; }

    /// The line with the last word replaced by the path that ends in `name`; nothing is added behind the name.
    QString lineWith(const QString& name) const;

private:
    QStringList words_;
    QStringList names_;
};

} // namespace kelm
