// Where git keeps the settings of a repository.
#pragma once

#include <QString>

#include <optional>

namespace kelm {

/// The folders of a repository, found from the folder that holds ".git": that may be a file that names another folder,
/// and what several working trees share may stand in a third.
struct RepositoryFiles
{
    QString folder;
    QString gitFolder;
    QString commonFolder;

    /// Absent where ".git" is neither a folder nor a file that names one.
    static std::optional<RepositoryFiles> of(const QString& folder);

    /// False for a HEAD that is no regular file or longer than 8 KiB, which might hold git up. One that is missing is
    /// git's to judge.
    bool hasReadableHead() const;

    QString settings() const { return commonFolder + QStringLiteral("/config"); }
    QString settingsOfTheWorkTree() const { return gitFolder + QStringLiteral("/config.worktree"); }
    QString head() const { return gitFolder + QStringLiteral("/HEAD"); }
    QString index() const { return gitFolder + QStringLiteral("/index"); }
    QString modules() const { return folder + QStringLiteral("/.gitmodules"); }
};

} // namespace kelm
