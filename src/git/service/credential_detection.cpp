#include "git/service/credential_detection.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

QString CredentialStatus::hint() const
{
    return hasSSHKey || hasGitHubCLI || hasGitCredentialHelper
               ? u"Authenticated git clone of private repos should work."_s
               : u"No credentials found — public repos OK, private repos will prompt."_s;
}

PathTests PathTests::ofDisk()
{
    return {.exists = [](const QString& path) { return QFileInfo::exists(path); },
            .isExecutable = [](const QString& path) { return QFileInfo(path).isExecutable(); }};
}

CredentialStatus detectCredentials(const QString& home, const PathTests& tests)
{
    const QStringList keys{home + u"/.ssh/id_ed25519"_s, home + u"/.ssh/id_rsa"_s, home + u"/.ssh/id_ecdsa"_s};
    const QStringList tools{u"/usr/local/bin/gh"_s, u"/opt/homebrew/bin/gh"_s, home + u"/.local/bin/gh"_s};
    const QStringList helpers{home + u"/.git-credentials"_s, u"/usr/local/share/git-core/git-credential-osxkeychain"_s,
                              u"/opt/homebrew/share/git-core/git-credential-osxkeychain"_s};
    return {.hasSSHKey = std::any_of(keys.begin(), keys.end(), tests.exists),
            .hasGitHubCLI = std::any_of(tools.begin(), tools.end(), tests.isExecutable),
            .hasGitCredentialHelper = std::any_of(helpers.begin(), helpers.end(), tests.exists)};
}

} // namespace kelm
