#include "git/service/git_head.h"
#include "git/service/repository_places.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

#include <sys/stat.h>

namespace repository_places_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// Where repositories of several kinds keep their state, and what their HEAD says.
class RepositoryPlacesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void anOrdinaryRepository();
    void aWorkingTreeOfItsOwn();
    void aSubmodule();
    void pathOfAFileIsReadWithoutItsLineEnd_data();
    void pathOfAFileIsReadWithoutItsLineEnd();
    void whatIsNoRepository();
    void foldersOfReferencesAreFound();
    void foldersThatNeverEndAreNot();
    void headIsNotTooLong_data();
    void headIsNotTooLong();
    void headTells_data();
    void headTells();
    void headOfAnotherWorkingTree();
    void headIsReadFromSmallRegularFilesOnly();
};

namespace {

QByteArray bytes(const QString& path)
{
    return QFile::encodeName(path);
}

} // namespace

void RepositoryPlacesTest::anOrdinaryRepository()
{
    const TemporaryRepository repository;
    const QByteArray folder = bytes(repository.path()) + "/.git/";
    QCOMPARE(repositoryPlaces(repository.path()), (RepositoryPlaces{folder, folder}));
    QCOMPARE(repositoryPlaces(repository.path() + u'/'), (RepositoryPlaces{folder, folder}));
}

void RepositoryPlacesTest::aWorkingTreeOfItsOwn()
{
    const TemporaryRepository repository;
    repository.commitAll(u"first"_s);
    const QTemporaryDir folder;
    const QString tree = QFileInfo(folder.path()).canonicalFilePath() + u"/tree"_s;
    repository.git({u"worktree"_s, u"add"_s, u"-q"_s, tree});
    const RepositoryPlaces places = repositoryPlaces(tree);
    QCOMPARE(places.gitFolder, bytes(repository.path()) + "/.git/worktrees/tree/");
    QCOMPARE(QDir::cleanPath(QFile::decodeName(places.commonFolder)), repository.path() + u"/.git"_s);
    QVERIFY(filesOfState(places).contains(places.gitFolder + "index"));
    QVERIFY(filesOfState(places).contains(places.commonFolder + "refs/heads/"));
}

void RepositoryPlacesTest::aSubmodule()
{
    const TemporaryRepository inner;
    inner.commitAll(u"inner"_s);
    const TemporaryRepository outer;
    outer.git({u"submodule"_s, u"--quiet"_s, u"add"_s, inner.path(), u"part"_s});
    const RepositoryPlaces places = repositoryPlaces(outer.filePath(u"part"_s));
    QCOMPARE(QDir::cleanPath(QFile::decodeName(places.gitFolder)), outer.path() + u"/.git/modules/part"_s);
    QCOMPARE(places.commonFolder, places.gitFolder);
}

void RepositoryPlacesTest::pathOfAFileIsReadWithoutItsLineEnd_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("a line feed") << QByteArray("\n");
    QTest::newRow("a carriage return") << QByteArray("\r");
    QTest::newRow("both") << QByteArray("\r\n");
    QTest::newRow("several") << QByteArray("\n\n");
}

void RepositoryPlacesTest::pathOfAFileIsReadWithoutItsLineEnd()
{
    QFETCH(QByteArray, end);
    const TemporaryRepository repository;
    QVERIFY(QDir().mkpath(repository.filePath(u"tree/elsewhere"_s)));
    repository.write(u"tree/.git"_s, "gitdir: ../.git/own" + end);
    repository.write(u".git/own/commondir"_s, "../../tree/elsewhere" + end);
    const RepositoryPlaces places = repositoryPlaces(repository.filePath(u"tree"_s));
    QCOMPARE(places.gitFolder, bytes(repository.path()) + "/.git/own/");
    QCOMPARE(places.commonFolder, bytes(repository.path()) + "/tree/elsewhere/");
}

void RepositoryPlacesTest::whatIsNoRepository()
{
    const QTemporaryDir folder;
    QCOMPARE(repositoryPlaces(folder.path()), RepositoryPlaces());
    QCOMPARE(filesOfState({}), QList<QByteArray>());
    QFile file(folder.filePath(u".git"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("anything else") > 0);
    file.close();
    QCOMPARE(repositoryPlaces(folder.path()), RepositoryPlaces());
    QCOMPARE(readHead(folder.path()), GitHead());
}

void RepositoryPlacesTest::foldersOfReferencesAreFound()
{
    const TemporaryRepository repository;
    repository.commitAll(u"first"_s);
    repository.git({u"branch"_s, u"a/b/c"_s});
    repository.git({u"update-ref"_s, u"refs/remotes/origin/x"_s, u"HEAD"_s});
    const RepositoryPlaces places = repositoryPlaces(repository.path());
    const QList<QByteArray> files = filesOfState(places);
    for (const char* name : {"index", "HEAD", "packed-refs", "config", "refs/", "refs/heads/", "refs/heads/a/b/",
                             "refs/tags/", "refs/remotes/origin/"}) {
        QVERIFY2(files.contains(places.commonFolder + name), name);
    }
    QVERIFY(!files.contains(places.commonFolder + "refs/heads/main"));
}

void RepositoryPlacesTest::foldersThatNeverEndAreNot()
{
    const TemporaryRepository repository;
    QVERIFY(QFile::link(repository.filePath(u".git/refs"_s), repository.filePath(u".git/refs/heads/round"_s)));
    for (int i = 0; i < 1200; ++i) {
        QVERIFY(QDir().mkpath(repository.filePath(u".git/refs/heads/%1"_s.arg(i))));
    }
    const QList<QByteArray> files = filesOfState(repositoryPlaces(repository.path()));
    QVERIFY2(files.size() < 1010, qPrintable(QString::number(files.size())));
    QVERIFY(!files.join(' ').contains("round"));
}

void RepositoryPlacesTest::headIsNotTooLong_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("missing") << -1 << true;
    QTest::newRow("empty") << 0 << true;
    QTest::newRow("8 KiB") << 8192 << true;
    QTest::newRow("a byte more") << 8193 << false;
    QTest::newRow("much more") << (1 << 20) << false;
}

void RepositoryPlacesTest::headIsNotTooLong()
{
    QFETCH(int, bytes);
    QFETCH(bool, isFound);
    const TemporaryRepository repository;
    QVERIFY(repository.remove(u".git/HEAD"_s));
    if (bytes >= 0) {
        repository.write(u".git/HEAD"_s, QByteArray(bytes, ' '));
    }
    QCOMPARE(findRepository(repository.path()), isFound ? std::optional(repository.path()) : std::nullopt);
}

void RepositoryPlacesTest::headTells_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("branch");
    QTest::addColumn<QString>("commit");
    const QString hash = QString(40, u'a');
    QTest::newRow("a branch") << QByteArray("ref: refs/heads/main\n") << u"main"_s << QString();
    QTest::newRow("a longer name") << QByteArray("ref: refs/heads/a/한글\n") << u"a/한글"_s << QString();
    QTest::newRow("a commit") << hash.toLatin1() + "\n" << QString() << hash;
    QTest::newRow("a longer hash") << QByteArray(64, '0') << QString() << QString(64, u'0');
    QTest::newRow("every digit") << "0123456789abcdef0123456789abcdef" + QByteArray(8, '9') << QString()
                                 << u"0123456789abcdef0123456789abcdef99999999"_s;
    QTest::newRow("capitals") << QByteArray(40, 'A') << QString() << QString();
    QTest::newRow("a sign below the digits") << QByteArray(40, '/') << QString() << QString();
    QTest::newRow("one above them") << QByteArray(40, ':') << QString() << QString();
    QTest::newRow("one below the letters") << QByteArray(40, '`') << QString() << QString();
    QTest::newRow("a last digit that is none") << QByteArray(39, 'a') + 'g' << QString() << QString();
    QTest::newRow("too short a hash") << QByteArray(39, 'a') << QString() << QString();
    QTest::newRow("no hash") << QByteArray(40, 'g') << QString() << QString();
    QTest::newRow("another reference") << QByteArray("ref: refs/tags/v1\n") << QString() << QString();
    QTest::newRow("references in tables") << QByteArray("ref: refs/heads/.invalid\n") << QString() << QString();
    QTest::newRow("nothing") << QByteArray() << QString() << QString();
    QTest::newRow("too much") << "ref: refs/heads/" + QByteArray(20 << 20, 'x') << QString() << QString();
}

void RepositoryPlacesTest::headTells()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, branch);
    QFETCH(QString, commit);
    const TemporaryRepository repository;
    repository.write(u".git/HEAD"_s, file);
    QCOMPARE(readHead(repository.path()), (GitHead{branch, commit}));
}

void RepositoryPlacesTest::headOfAnotherWorkingTree()
{
    const TemporaryRepository repository;
    repository.commitAll(u"first"_s);
    const QTemporaryDir folder;
    repository.git({u"worktree"_s, u"add"_s, u"-q"_s, u"-b"_s, u"side"_s, folder.filePath(u"tree"_s)});
    QCOMPARE(readHead(repository.path()), (GitHead{.branch = u"main"_s}));
    QCOMPARE(readHead(folder.filePath(u"tree"_s)), (GitHead{.branch = u"side"_s}));
}

void RepositoryPlacesTest::headIsReadFromSmallRegularFilesOnly()
{
    const TemporaryRepository repository;
    QVERIFY(repository.remove(u".git/HEAD"_s));
    QCOMPARE(readHead(repository.path()), GitHead());
    QVERIFY(::mkfifo(bytes(repository.filePath(u".git/HEAD"_s)).constData(), 0600) == 0);
    QCOMPARE(readHead(repository.path()), GitHead());
}

const kelm::test::Registered<RepositoryPlacesTest> registered;

} // namespace repository_places_test

#include "repository_places_test.moc"
