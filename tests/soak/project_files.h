// The files that a run begins with.
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace kelm::soak {

struct ProjectFile
{
    QString name;
    QByteArray bytes;
};

/// Sources of several languages, line ends of all kinds, a byte-order mark, Korean, a file that is no UTF-8 and one of
/// some length.
const std::vector<ProjectFile>& projectFiles();

/// The symbolic link among them, and what it points to, both as names in the project.
inline const QString linkName = QStringLiteral("link.txt");
inline const QString linkTarget = QStringLiteral("nested/target.txt");

/// The script that is run; nothing else on disk ever is.
inline const QString scriptName = QStringLiteral("run.sh");

} // namespace kelm::soak
