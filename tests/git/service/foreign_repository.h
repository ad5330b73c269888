// A repository whose own settings are to name programs, and what is read of it, for tests.
#pragma once

#include "git/service/git_service.h"
#include "support/temporary_repository.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>

namespace kelm::test {

/// A commit, a stash and a change of "a.txt", for which the attributes name a filter and a comparison "evil".
class ForeignRepository
{
protected:
    void prepare()
    {
        useFixedGitEnvironment();
        qunsetenv("GIT_EXTERNAL_DIFF");
        folder_ = std::make_unique<QTemporaryDir>();
        marker_ = folder_->filePath(QStringLiteral("marker"));
        repository_ = std::make_unique<TemporaryRepository>();
        git_ = std::make_unique<GitService>(ProcessRunner::sharedSystem());
        repository_->write(QStringLiteral(".gitattributes"), "*.txt filter=evil diff=evil\n");
        repository_->write(QStringLiteral("a.txt"), "line\n");
        repository_->commitAll(QStringLiteral("first"));
        repository_->write(QStringLiteral("a.txt"), "line\nstashed\n");
        repository_->git({QStringLiteral("stash"), QStringLiteral("push"), QStringLiteral("-q")});
        repository_->write(QStringLiteral("a.txt"), "line\nchanged\n");
    }

    /// A shell command that leaves the marker and then behaves as `rest` does.
    QString command(const QString& rest = QStringLiteral("cat")) const
    {
        return QStringLiteral("touch '%1'; %2").arg(marker_, rest);
    }
    /// The same as a program without arguments of its own.
    QString program() const
    {
        const QString path = folder_->filePath(QStringLiteral("program"));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write("#!/bin/sh\ntouch '" + marker_.toUtf8() + "'\ncat 2>/dev/null\nexit 0\n");
        }
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }
    bool takeMarker() const { return QFile::remove(marker_); }
    void set(const QString& key, const QString& value) const
    {
        repository_->git({QStringLiteral("config"), key, value});
    }
    void open()
    {
        QVERIFY(git_->open(repository_->url()));
        clearError();
    }
    void clearError()
    {
        QCoreApplication::sendPostedEvents();
        git_->setLastError({});
    }
    /// Has everything read that fills a list or a sheet.
    void readEverything()
    {
        open();
        git_->refreshAll();
        git_->diff(QStringLiteral("a.txt"), false);
        git_->diff(QStringLiteral("a.txt"), true);
        git_->log(10);
        git_->fileLog(QStringLiteral("a.txt"), 10);
        git_->showCommit(QStringLiteral("HEAD"));
        git_->blame(QStringLiteral("a.txt"));
        git_->stashShow(QStringLiteral("stash@{0}"));
        git_->userName();
    }
    /// The change of "a.txt" is in the status and in the diff, as git itself would show it without any setting.
    void verifyTheChangeIsThere()
    {
        git_->refreshStatus();
        QVERIFY(std::any_of(git_->status().begin(), git_->status().end(), [](const GitFileStatus& file) {
            return file.path == u"a.txt" && file.unstaged == GitFileChange::modified;
        }));
        const QString diff = git_->diff(QStringLiteral("a.txt"), false);
        QVERIFY2(diff.startsWith(QStringLiteral("diff --git a/a.txt b/a.txt\n")) &&
                     diff.contains(QStringLiteral("\n+changed\n")),
                 qPrintable(diff));
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<TemporaryRepository> repository_;
    std::unique_ptr<GitService> git_;
    QString marker_;
};

} // namespace kelm::test
