#include "git/service/blame_parser.h"

#include <QHash>

namespace kelm {

QList<GitBlameLine> parseBlame(QStringView output)
{
    constexpr QStringView authorField = u"author ";
    QList<GitBlameLine> lines;
    QHash<QStringView, QString> authors;
    QStringView sha;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        if (line.startsWith(u'\t')) {
            // The line itself ends the group of its header lines.
            lines.append({sha.toString(), authors.value(sha), line.sliced(1).toString()});
            sha = {};
        } else if (sha.isEmpty()) {
            sha = line.first(line.contains(u' ') ? line.indexOf(u' ') : line.size());
        } else if (line.startsWith(authorField)) {
            authors.insert(sha, line.sliced(authorField.size()).toString());
        }
    }
    return lines;
}

} // namespace kelm
