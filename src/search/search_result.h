// One line that a project search found.
#pragma once

#include <QMetaType>
#include <QString>
#include <QUrl>
#include <QUuid>

namespace kelm {

struct SearchResult
{
    QUuid id = QUuid::createUuid();
    QUrl fileURL = {};
    /// The last component of the file's path.
    QString fileName = {};
    /// From 1; each unit of a CR LF pair ends a line.
    qsizetype lineNumber = 1;
    /// The whole line as it stands.
    QString matchLine = {};

    friend bool operator==(const SearchResult&, const SearchResult&) = default;
};

} // namespace kelm

Q_DECLARE_METATYPE(kelm::SearchResult)
