#include "platform/files/file_url.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

namespace file_url_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class FileUrlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void urlsFallIntoTheirParts_data();
    void urlsFallIntoTheirParts();
    void pathIsDecoded();
    void aFolderIsKnownBySlashOrByTheDisk();
    void whatIsNoFileIsNoFolder();
};

void FileUrlTest::urlsFallIntoTheirParts_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("extension");
    const auto local = [](const QString& path) { return QUrl::fromLocalFile(path); };
    QTest::newRow("file") << local(u"/a/main.py"_s) << u"main.py"_s << u"py"_s;
    QTest::newRow("case is kept") << local(u"/a/X.PY"_s) << u"X.PY"_s << u"PY"_s;
    QTest::newRow("two dots") << local(u"/a/x.tar.gz"_s) << u"x.tar.gz"_s << u"gz"_s;
    QTest::newRow("hidden") << local(u"/a/.bashrc"_s) << u".bashrc"_s << QString();
    QTest::newRow("hidden with extension") << local(u"/a/.a.md"_s) << u".a.md"_s << u"md"_s;
    QTest::newRow("trailing dot") << local(u"/a/x."_s) << u"x."_s << QString();
    QTest::newRow("folder") << local(u"/a/b.d/"_s) << u"b.d"_s << u"d"_s;
    QTest::newRow("several slashes") << local(u"/a/b.d//"_s) << u"b.d"_s << u"d"_s;
    QTest::newRow("root") << local(u"/"_s) << u"/"_s << QString();
    QTest::newRow("percent sign") << local(u"/a/50%.txt"_s) << u"50%.txt"_s << u"txt"_s;
    QTest::newRow("encoded slash stays a name")
        << QUrl(u"https://host/a/b%20c.js?x=1.py#y.rb"_s) << u"b c.js"_s << u"js"_s;
    QTest::newRow("no path") << QUrl(u"https://host"_s) << QString() << QString();
    QTest::newRow("empty") << QUrl() << QString() << QString();
}

void FileUrlTest::urlsFallIntoTheirParts()
{
    QFETCH(QUrl, url);
    QFETCH(QString, name);
    QFETCH(QString, extension);
    QCOMPARE(lastPathComponent(url), name);
    QCOMPARE(pathExtension(url), extension);
}

void FileUrlTest::pathIsDecoded()
{
    QCOMPARE(filePath(QUrl::fromLocalFile(u"/a b/50%.py"_s)), u"/a b/50%.py"_s);
    QCOMPARE(filePath(QUrl(u"file:///a%20b/c.py"_s)), u"/a b/c.py"_s);
    QCOMPARE(filePath(QUrl(u"https://host/a%20b/c.py?x#y"_s)), u"/a b/c.py"_s);
    QCOMPARE(filePath(QUrl()), QString());
}

void FileUrlTest::aFolderIsKnownBySlashOrByTheDisk()
{
    const QTemporaryDir folder;
    const QString path = folder.path();
    QFile file(path + u"/file"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(hasDirectoryPath(QUrl::fromLocalFile(path)));
    QVERIFY(hasDirectoryPath(QUrl::fromLocalFile(path + u"/"_s)));
    QVERIFY(hasDirectoryPath(QUrl::fromLocalFile(path + u"/not there/"_s)));
    QVERIFY(!hasDirectoryPath(QUrl::fromLocalFile(path + u"/not there"_s)));
    QVERIFY(!hasDirectoryPath(QUrl::fromLocalFile(path + u"/file"_s)));
    QVERIFY(!hasDirectoryPath(QUrl()));
}

void FileUrlTest::whatIsNoFileIsNoFolder()
{
    // Neither by its slash nor by a folder that is called the same.
    const QTemporaryDir folder;
    for (const QString& text : {u"https://host/"_s, u"https://host/a/"_s, u"KELMPANE://open/"_s, u"https://host"_s}) {
        QVERIFY2(!hasDirectoryPath(QUrl(text)), qPrintable(text));
    }
    QVERIFY(!hasDirectoryPath(QUrl(u"https://host"_s + folder.path())));
    QVERIFY(!hasDirectoryPath(QUrl(folder.path() + u'/')));
}

const kelm::test::Registered<FileUrlTest> registered;

} // namespace file_url_test

#include "file_url_test.moc"
