#include "support/test_program.h"
#include "workbench/status/git_branch.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace git_branch_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class GitBranchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBranchComesFromHead_data();
    void theBranchComesFromHead();
    void withoutTheFileThereIsNone();
    void aHugeFileIsNotRead();
    void aPipeIsNotRead();
};

void GitBranchTest::theBranchComesFromHead_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<std::optional<QString>>("branch");
    const auto row = [](const char* name, const QByteArray& head, const std::optional<QString>& branch) {
        QTest::newRow(name) << head << branch;
    };
    row("a branch", "ref: refs/heads/main\n", u"main"_s);
    row("with slashes", "ref: refs/heads/feature/a b\r\n \n", u"feature/a b"_s);
    row("Korean", "ref: refs/heads/한글\n", u"한글"_s);
    row("a commit", "0123456789012345678901234567890123456789\n", std::nullopt);
    row("another ref", "ref: refs/remotes/origin/main\n", std::nullopt);
    row("other case", "Ref: refs/heads/main\n", std::nullopt);
    row("no UTF-8", "ref: refs/heads/\xff\n", std::nullopt);
    row("nothing behind the prefix", "ref: refs/heads/", QString());
    row("empty", "", std::nullopt);
}

void GitBranchTest::theBranchComesFromHead()
{
    QFETCH(QByteArray, head);
    QFETCH(std::optional<QString>, branch);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u".git"_s));
    QFile file(folder.filePath(u".git/HEAD"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(head);
    file.close();
    QCOMPARE(gitBranch(QUrl::fromLocalFile(folder.path())), branch);
}

void GitBranchTest::withoutTheFileThereIsNone()
{
    const QTemporaryDir folder;
    QCOMPARE(gitBranch(QUrl::fromLocalFile(folder.path())), std::nullopt);
    QVERIFY(QDir(folder.path()).mkpath(u".git/HEAD"_s));
    QCOMPARE(gitBranch(QUrl::fromLocalFile(folder.path())), std::nullopt);
}

void GitBranchTest::aHugeFileIsNotRead()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u".git"_s));
    QFile file(folder.filePath(u".git/HEAD"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("ref: refs/heads/main\n");
    // A hole that no memory could take.
    if (!file.resize(qint64(1) << 40)) {
        QVERIFY(file.resize(qint64(1) << 32));
    }
    file.close();
    QCOMPARE(gitBranch(QUrl::fromLocalFile(folder.path())), std::nullopt);
}

void GitBranchTest::aPipeIsNotRead()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u".git"_s));
    QCOMPARE(::mkfifo(QFile::encodeName(folder.filePath(u".git/HEAD"_s)).constData(), 0600), 0);
    QCOMPARE(gitBranch(QUrl::fromLocalFile(folder.path())), std::nullopt);
}

const kelm::test::Registered<GitBranchTest> registered;

} // namespace git_branch_test

#include "git_branch_test.moc"
