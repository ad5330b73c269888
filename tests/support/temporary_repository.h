// Real repositories, made on the spot and independent of the user's settings and clock.
#pragma once

#include "platform/process/process.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QUrl>
#include <QtTest>

namespace kelm::test {

/// Gives every git that the test program starts from now on a configuration of its own, an author and a fixed clock. An
/// empty `userName` leaves git without a user.
inline void useFixedGitEnvironment(const QByteArray& userName = "Test Author")
{
    static const QTemporaryDir home;
    const QString config = home.filePath(QStringLiteral("gitconfig"));
    QFile file(config);
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("no configuration file");
    }
    file.write(
        "[init]\n\tdefaultBranch = main\n[advice]\n\tdetachedHead = false\n[protocol \"file\"]\n\tallow = always\n"
        "[commit]\n\tgpgSign = false\n[gc]\n\tauto = 0\n[maintenance]\n\tauto = false\n");
    if (userName.isEmpty()) {
        // Without this git makes up an address from the machine's names.
        file.write("[user]\n\tuseConfigOnly = true\n");
    } else {
        file.write("[user]\n\tname = " + userName + "\n\temail = test@example.org\n");
    }
    for (const char* name : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE", "GIT_AUTHOR_NAME", "GIT_AUTHOR_EMAIL",
                             "GIT_COMMITTER_NAME", "GIT_COMMITTER_EMAIL", "EMAIL", "GIT_EDITOR", "GIT_PAGER"}) {
        qunsetenv(name);
    }
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("GIT_CONFIG_GLOBAL", config.toLocal8Bit());
    qputenv("GIT_CONFIG_NOSYSTEM", "1");
    qputenv("GIT_TERMINAL_PROMPT", "0");
    qputenv("GIT_AUTHOR_DATE", "2024-02-03T04:05:06+0000");
    qputenv("GIT_COMMITTER_DATE", "2024-02-03T04:05:06+0000");
    qputenv("LC_ALL", "C.UTF-8");
}

/// One repository in a temporary folder of its own, on branch "main", without a commit.
class TemporaryRepository
{
public:
    explicit TemporaryRepository(const QStringList& initArguments = {QStringLiteral("init"), QStringLiteral("-q")})
    {
        git(initArguments);
    }

    QString path() const { return QFileInfo(folder_.path()).canonicalFilePath(); }
    QString filePath(const QString& name) const { return path() + u'/' + name; }
    QUrl url() const { return QUrl::fromLocalFile(path()); }

    void write(const QString& name, const QByteArray& content) const
    {
        QDir(path()).mkpath(QFileInfo(filePath(name)).path());
        QFile file(filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
            qFatal("cannot write %s", qPrintable(name));
        }
    }

    QByteArray read(const QString& name) const
    {
        QFile file(filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool remove(const QString& name) const { return QFile::remove(filePath(name)); }

    /// Runs git and gives what it prints; the test ends when it fails.
    QByteArray git(const QStringList& arguments) const
    {
        const ProcessResult result = tryGit(arguments);
        if (result.launchError || !result.exit.isSuccess()) {
            qFatal("git %s: %s", qPrintable(arguments.join(u' ')), result.standardError.constData());
        }
        return result.standardOutput;
    }

    ProcessResult tryGit(const QStringList& arguments, const std::optional<QByteArray>& input = std::nullopt) const
    {
        return ProcessRunner::system().run({.program = QStringLiteral("/usr/bin/git"),
                                            .arguments = arguments,
                                            .workingDirectory = path(),
                                            .standardInput = input});
    }

    void commitAll(const QString& message) const
    {
        git({QStringLiteral("add"), QStringLiteral("-A")});
        git({QStringLiteral("commit"), QStringLiteral("-q"), QStringLiteral("--allow-empty"), QStringLiteral("-m"),
             message});
    }

    /// Two branches that have changed the only line of "a.txt", each to its own name: "main", which is checked out, and
    /// "side".
    void makeConflictingBranches() const
    {
        const QString file = QStringLiteral("a.txt");
        git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("-b"), QStringLiteral("side")});
        write(file, "side\n");
        commitAll(QStringLiteral("side"));
        git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("main")});
        write(file, "main\n");
        commitAll(QStringLiteral("main"));
    }

    /// What the index holds for a path.
    QByteArray staged(const QString& name) const
    {
        return git({QStringLiteral("cat-file"), QStringLiteral("blob"), QStringLiteral(":") + name});
    }

private:
    QTemporaryDir folder_;
};

} // namespace kelm::test
