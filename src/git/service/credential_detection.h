// Which sources of credentials for git this machine has, judged by file paths alone.
#pragma once

#include <QString>

#include <functional>

namespace kelm {

struct CredentialStatus
{
    bool hasSSHKey = false;
    bool hasGitHubCLI = false;
    bool hasGitCredentialHelper = false;

    /// What the user may expect of a private repository.
    QString hint() const;

    bool operator==(const CredentialStatus&) const = default;
};

/// How the file system is asked, so that a test can answer.
struct PathTests
{
    std::function<bool(const QString& path)> exists;
    std::function<bool(const QString& path)> isExecutable;

    static PathTests ofDisk();
};

/// Looks for keys, the `gh` tool and credential helpers. Nothing is run and no file is read. `home` is the user's home
/// folder, without a slash at its end.
CredentialStatus detectCredentials(const QString& home, const PathTests& tests = PathTests::ofDisk());

} // namespace kelm
