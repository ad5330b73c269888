#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "support/random_bytes.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace native_path_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class NativePathTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachNameComesBack_data();
    void eachNameComesBack();
    void randomNamesComeBackAndDiffer();
    void rawBytesAreShownAsReplacements();
    void aUrlHoldsEachName_data();
    void aUrlHoldsEachName();
    void foldersAndFilesAreFound();
    void argumentsKeepTheirBytes();
};

void NativePathTest::eachNameComesBack_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << QByteArray("a/b c") << u"a/b c"_s;
    QTest::newRow("empty") << QByteArray("") << QString();
    QTest::newRow("Korean") << QByteArray("\xed\x95\x9c\xea\xb8\x80") << u"한글"_s;
    QTest::newRow("Latin-1") << QByteArray("caf\xe9") << u"caf\ufffd"_s;
    QTest::newRow("EUC-KR") << QByteArray("\xc7\xd1\xb1\xdb") << u"\ufffd\u0471\ufffd"_s;
    QTest::newRow("mixed") << QByteArray("\xed\x95\x9c\xff/\xf0\x9f\x98\x80\x80z") << u"한\ufffd/😀\ufffdz"_s;
    QTest::newRow("cut off") << QByteArray("a\xed\x95") << u"a\ufffd\ufffd"_s;
    QTest::newRow("an encoded surrogate") << QByteArray("\xed\xb2\x80") << u"\ufffd\ufffd\ufffd"_s;
    QTest::newRow("overlong") << QByteArray("\xc0\xaf") << u"\ufffd\ufffd"_s;
    QTest::newRow("a byte-order mark before") << QByteArray("\xef\xbb\xbf\xff") << u"\ufeff\ufffd"_s;
    QTest::newRow("a real replacement") << QByteArray("\xef\xbf\xbd") << u"\ufffd"_s;
}

void NativePathTest::eachNameComesBack()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, shown);
    const QString path = pathOfNative(bytes);
    QCOMPARE(nativePath(path), bytes);
    QCOMPARE(shownPath(path), shown);
    QCOMPARE(holdsRawBytes(path), path != shown);
}

void NativePathTest::randomNamesComeBackAndDiffer()
{
    test::RandomBytes random;
    std::set<QByteArray> names;
    std::set<QString> paths;
    for (int round = 0; round < 20'000; ++round) {
        const QByteArray name = random.bytes(8);
        const QString path = pathOfNative(name);
        QCOMPARE(nativePath(path), name);
        names.insert(name);
        paths.insert(path);
        if (!name.startsWith('/')) {
            QCOMPARE(nativePath(filePath(urlOfFile(u"/x/"_s + path))), "/x/" + name);
        }
    }
    QCOMPARE(paths.size(), names.size());
}

void NativePathTest::rawBytesAreShownAsReplacements()
{
    const QUrl url = urlOfFile(pathOfNative("/a/caf\xe9.PY"));
    QCOMPARE(lastPathComponent(url), u"caf\ufffd.PY"_s);
    QCOMPARE(pathExtension(url), u"PY"_s);
    QCOMPARE(nativePath(folderPrefix(url)), QByteArray("/a/caf\xe9.PY/"));
}

void NativePathTest::aUrlHoldsEachName_data()
{
    eachNameComesBack_data();
}

void NativePathTest::aUrlHoldsEachName()
{
    QFETCH(QByteArray, bytes);
    const QByteArray path = "/folder/" + bytes + "%41#?";
    const QUrl url = urlOfFile(pathOfNative(path));
    QVERIFY(url.isLocalFile());
    QCOMPARE(nativePath(filePath(url)), path);
    // Also by way of its text, as another start hands it over and the recent files keep it.
    const QUrl again(url.toString(QUrl::FullyEncoded));
    QCOMPARE(again, url);
    QCOMPARE(nativePath(filePath(again)), path);
}

void NativePathTest::foldersAndFilesAreFound()
{
    const QTemporaryDir folder;
    const QByteArray base = QFile::encodeName(folder.path());
    QCOMPARE(::mkdir((base + "/caf\xe9").constData(), 0700), 0);
    QVERIFY(isFolder(pathOfNative(base + "/caf\xe9")));
    QVERIFY(isThere(pathOfNative(base + "/caf\xe9")));
    QVERIFY(!isThere(pathOfNative(base + "/caf\xe8")));
    QVERIFY(!isFolder(folder.path() + QChar(0) + u"x"_s));
    QVERIFY(hasDirectoryPath(urlOfFile(pathOfNative(base + "/caf\xe9"))));
    // The toolkit cannot tidy it away.
    QCOMPARE(::rmdir((base + "/caf\xe9").constData()), 0);
}

void NativePathTest::argumentsKeepTheirBytes()
{
    const std::array<const char*, 3> given{"program", "caf\xe9", "b"};
    QCOMPARE(argumentsOf(3, given.data()), (QStringList{pathOfNative("caf\xe9"), u"b"_s}));
    const QString before = currentFolder();
    const QTemporaryDir folder;
    const QByteArray inner = QFile::encodeName(QDir(folder.path()).canonicalPath()) + "/caf\xe9";
    QCOMPARE(::mkdir(inner.constData(), 0700), 0);
    QCOMPARE(::chdir(inner.constData()), 0);
    const QString there = currentFolder();
    QCOMPARE(::chdir(nativePath(before).constData()), 0);
    QCOMPARE(nativePath(there), inner);
    QCOMPARE(::rmdir(inner.constData()), 0);
}

const kelm::test::Registered<NativePathTest> registered;

} // namespace native_path_test

#include "native_path_test.moc"
