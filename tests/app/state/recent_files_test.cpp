#include "app/state/recent_files.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

namespace recent_files_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class RecentFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void urlsAreStoredInTheirEncodedForm();
    void urlsComeBack_data();
    void urlsComeBack();
    void bothFormsOfASlashAreRead();
    void onlyWhatExistsIsKept();
};

void RecentFilesTest::urlsAreStoredInTheirEncodedForm()
{
    QCOMPARE(encodeURLs({QUrl::fromLocalFile(u"/a b/한.txt"_s), QUrl(u"https://host/x"_s)}),
             QByteArray("[\"file:///a%20b/%ED%95%9C.txt\",\"https://host/x\"]"));
    QCOMPARE(encodeURLs({}), QByteArray("[]"));
}

void RecentFilesTest::urlsComeBack_data()
{
    QTest::addColumn<QString>("path");
    for (const QString& path : {u"/a.txt"_s, u"/a b/c.txt"_s, u"/한글/\U0001f600.txt"_s, u"/a%20b#c?d&e;f.txt"_s,
                                u"/quote\"backslash\\.txt"_s, u"/tab\tline\nbreak"_s, u"/folder/"_s}) {
        QTest::newRow(qPrintable(path)) << path;
    }
}

void RecentFilesTest::urlsComeBack()
{
    QFETCH(QString, path);
    const QList<QUrl> urls{QUrl::fromLocalFile(path), QUrl(u"file:///other"_s)};
    const std::optional<QList<QUrl>> decoded = decodeURLs(encodeURLs(urls));
    QVERIFY(decoded.has_value());
    QCOMPARE(*decoded, urls);
    QCOMPARE(decoded->first().toLocalFile(), path);
}

void RecentFilesTest::bothFormsOfASlashAreRead()
{
    QVERIFY(decodeURLs(R"(["file:\/\/\/a\/b.txt"])") == (QList{QUrl(u"file:///a/b.txt"_s)}));
    QVERIFY(decodeURLs("[]") == QList<QUrl>());
}

void RecentFilesTest::onlyWhatExistsIsKept()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a b"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QUrl there = QUrl::fromLocalFile(file.fileName());
    const QUrl gone = QUrl::fromLocalFile(folder.filePath(u"gone"_s));
    const QUrl directory = QUrl::fromLocalFile(folder.path());
    QCOMPARE(existingFiles({directory, gone, there, QUrl(u"https://host"_s)}), (QList{directory, there}));
}

const kelm::test::Registered<RecentFilesTest> registered;

} // namespace recent_files_test

#include "recent_files_test.moc"
