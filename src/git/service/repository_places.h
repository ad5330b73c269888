// Where a repository keeps what tells of its state.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace kelm {

/// The folders of a repository, by paths in the system's bytes, each with a slash at its end. Both are empty where
/// there is none.
struct RepositoryPlaces
{
    /// That of this working tree: HEAD and the index.
    QByteArray gitFolder = {};
    /// That which all its working trees share: the references and the configuration.
    QByteArray commonFolder = {};

    bool operator==(const RepositoryPlaces&) const = default;
};

/// The folder that holds `folder` and has a ".git", a folder or a file: itself or one of at most nine above it. Absent
/// also where its HEAD would hold git up. Any thread.
std::optional<QString> findRepository(const QString& folder);

/// Those of the working tree in `folder`, whose ".git" may be a file that names another place. Any thread.
RepositoryPlaces repositoryPlaces(const QString& folder);

/// The files whose change tells of another state: the index, HEAD, the packed references and the configuration, and
/// each folder of references, with a slash at its end. Any thread; walks the folders of references.
QList<QByteArray> filesOfState(const RepositoryPlaces& places);

} // namespace kelm
