// Diffs for tests.
#pragma once

#include "git/diff/diff_parser.h"

#include <QStringList>

namespace kelm::test {

/// The only hunk of a file whose body is `lines`, each with its sign.
inline DiffHunk hunkOf(const QStringList& lines)
{
    return DiffParser::parse((QStringList{QStringLiteral("@@ -1,9 +1,9 @@")} + lines).join(u'\n'))
        .front()
        .hunks.front();
}

/// A diff of one file with a hunk for each list of lines.
inline QString diffOf(const QString& path, const QList<QStringList>& hunks)
{
    QStringList lines{QStringLiteral("diff --git a/%1 b/%1").arg(path), QStringLiteral("index 1111111..2222222 100644"),
                      QStringLiteral("--- a/%1").arg(path), QStringLiteral("+++ b/%1").arg(path)};
    for (qsizetype index = 0; index < hunks.size(); ++index) {
        lines.append(QStringLiteral("@@ -%1,9 +%1,9 @@ section %2").arg(100 * index + 1).arg(index));
        lines.append(hunks[index]);
    }
    return lines.join(u'\n') + u'\n';
}

} // namespace kelm::test
