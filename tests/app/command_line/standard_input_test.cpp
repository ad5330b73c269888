#include "app/command_line/standard_input.h"
#include "app/recovery/recovery_folder.h"
#include "platform/files/open_file.h"
#include "support/test_program.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>
#include <unistd.h>

namespace standard_input_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What becomes of bytes that come through a pipe.
std::variant<QString, FileError> keep(const QByteArray& bytes, const QString& folder)
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        return FileError{u"no pipe"_s};
    }
    const OpenFile reader(ends[0]);
    std::thread writer([&bytes, end = ends[1]] {
        OpenFile file(end);
        file.writeAll(bytes.constData(), bytes.size());
    });
    std::variant<QString, FileError> result = keepStandardInput(reader.get(), folder);
    writer.join();
    return result;
}

} // namespace

class StandardInputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatComesIsKept_data();
    void whatComesIsKept();
    void whatIsNoTextIsRefused();
    void nothingStaysBesideTheCopy();
    void aFolderThatCannotBeTellsWhy();
};

void StandardInputTest::whatComesIsKept_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a line") << QByteArray("한글\r\n");
    QTest::newRow("zeros and a mark") << QByteArray("\xef\xbb\xbf\0a", 5);
    QTest::newRow("more than a pipe holds") << QByteArray("0123456789").repeated(1'000'000);
}

void StandardInputTest::whatComesIsKept()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    const auto copy = keep(bytes, folder.filePath(u"unsaved"_s));
    QVERIFY(std::holds_alternative<QString>(copy));
    // Another program can take it at once.
    RecoveryFolder other(folder.filePath(u"unsaved"_s));
    const QList<UnsavedText> texts = other.texts();
    QCOMPARE(texts.size(), 1);
    QCOMPARE(texts[0].id, std::get<QString>(copy));
    const std::optional<CopyContent> content = other.take(texts[0].id, other.newId());
    QVERIFY(content);
    QCOMPARE(content->text.toString().toUtf8(), bytes);
    QVERIFY(!content->header.url);
}

void StandardInputTest::whatIsNoTextIsRefused()
{
    const QTemporaryDir folder;
    const auto copy = keep("a\xff", folder.filePath(u"unsaved"_s));
    QVERIFY(std::holds_alternative<FileError>(copy));
    QVERIFY(std::get<FileError>(copy).reason.contains(u"UTF-8"));
    QVERIFY(!QDir(folder.filePath(u"unsaved"_s)).exists());
}

void StandardInputTest::nothingStaysBesideTheCopy()
{
    const QTemporaryDir folder;
    const QString before = QDir::tempPath();
    const auto restore = qScopeGuard([&before] { qputenv("TMPDIR", before.toUtf8()); });
    QVERIFY(QDir(folder.path()).mkdir(u"tmp"_s));
    qputenv("TMPDIR", folder.filePath(u"tmp"_s).toUtf8());
    QVERIFY(std::holds_alternative<QString>(keep("text", folder.filePath(u"unsaved"_s))));
    QVERIFY(std::holds_alternative<FileError>(keep("\xff", folder.filePath(u"unsaved"_s))));
    QVERIFY(QDir(folder.filePath(u"tmp"_s)).isEmpty());
}

void StandardInputTest::aFolderThatCannotBeTellsWhy()
{
    const QTemporaryDir folder;
    QFile inTheWay(folder.filePath(u"unsaved"_s));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QVERIFY(std::holds_alternative<FileError>(keep("text", inTheWay.fileName())));
}

const kelm::test::Registered<StandardInputTest> registered;

} // namespace standard_input_test

#include "standard_input_test.moc"
