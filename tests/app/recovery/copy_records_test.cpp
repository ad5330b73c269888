#include "app/recovery/copy_bytes.h"
#include "app/recovery/copy_file.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

namespace copy_records_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

CopyHeader someHeader()
{
    return {QUrl(u"file:///home/a%20b/%ED%95%9C.py"_s), 1'700'000'000'000, Language(Language::python),
            FileIdentity{3, 4, 5, 6}};
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class CopyRecordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headersComeBack_data();
    void headersComeBack();
    void aHeaderOfALaterVersionIsRefused();
    void textsComeBackUnitForUnit_data();
    void textsComeBackUnitForUnit();
    void aCopyThatIsCutOffAnywhereIsRefused();
    void aCopyThatIsDamagedAnywhereIsRefused();
    void editsAreAppliedUpToTheFirstDamagedOne();
    void theSummaryIsOfTheLatestHeader();
    void aKeptUpFileHoldsWhatWasWrittenLast();
    void aLongTextIsNotWrittenAgainForAnEdit();
    void editsThatOutgrowTheCopyAreFoldedIntoANewOne();
    void anEditThatFailsLeavesTheCopyWhole();
    void aRemovedFileIsWrittenAnew();
};

void CopyRecordsTest::headersComeBack_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<bool>("hasLanguage");
    QTest::addColumn<bool>("hasIdentity");
    QTest::addColumn<bool>("isReplaced");
    QTest::newRow("untitled") << QUrl() << false << false << false;
    QTest::newRow("language alone") << QUrl() << true << false << false;
    QTest::newRow("file") << QUrl(u"file:///a/b.txt"_s) << false << true << false;
    QTest::newRow("odd name") << QUrl::fromLocalFile(u"/a/ 100%#?한\n.txt"_s) << true << true << true;
}

void CopyRecordsTest::headersComeBack()
{
    QFETCH(const QUrl, url);
    QFETCH(const bool, hasLanguage);
    QFETCH(const bool, hasIdentity);
    QFETCH(const bool, isReplaced);
    CopyHeader header{url.isEmpty() ? std::nullopt : std::optional(url), 42};
    header.language = hasLanguage ? std::optional(Language(Language::sql)) : std::nullopt;
    header.identity = hasIdentity ? std::optional(FileIdentity{~0ULL, 2, 1LL << 40, -1}) : std::nullopt;
    header.isReplaced = isReplaced;
    QCOMPARE(decodeHeader(encodeHeader(header)), std::optional(header));
}

void CopyRecordsTest::aHeaderOfALaterVersionIsRefused()
{
    QByteArray bytes = encodeHeader(someHeader());
    QVERIFY(decodeHeader(bytes));
    bytes[1] = char(bytes[1] + 1);
    QVERIFY(!decodeHeader(bytes));
    QVERIFY(!decodeHeader(QByteArray()));
}

void CopyRecordsTest::textsComeBackUnitForUnit_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("narrow") << u"caf\u00e9\r\n\0\u00ff"_s;
    QTest::newRow("wide") << u"한글 😀 \u2028"_s;
    QTest::newRow("lone surrogates") << QString(QChar(0xde00)) + u"a"_s + QChar(0xd83d);
    // A pair on both sides of a stretch's end.
    QTest::newRow("cut pair") << QString(65535, u'x') + u"😀"_s + QString(3, u'y');
    QTest::newRow("mark") << u"\ufeffx\ufffe\uffff"_s;
}

void CopyRecordsTest::textsComeBackUnitForUnit()
{
    QFETCH(const QString, text);
    const std::optional<CopyContent> content = contentOf(copyOf(someHeader(), TextTree(text)));
    QVERIFY(content);
    QCOMPARE(content->text.toString(), text);
    QCOMPARE(content->header, someHeader());
}

void CopyRecordsTest::aCopyThatIsCutOffAnywhereIsRefused()
{
    const QByteArray whole = copyOf(someHeader(), TextTree(u"some text, 한글"_s));
    QVERIFY(contentOf(whole));
    for (qsizetype size = 0; size < whole.size(); ++size) {
        QVERIFY2(!contentOf(whole.first(size)), qPrintable(QString::number(size)));
        QVERIFY2(!summaryOf(whole.first(size)), qPrintable(QString::number(size)));
    }
}

void CopyRecordsTest::aCopyThatIsDamagedAnywhereIsRefused()
{
    const QByteArray whole = copyOf(someHeader(), TextTree(u"some text, 한글"_s));
    for (qsizetype at = 0; at < whole.size(); ++at) {
        QByteArray damaged = whole;
        damaged[at] = char(damaged[at] ^ 0x10);
        QVERIFY2(!contentOf(damaged), qPrintable(QString::number(at)));
    }
}

void CopyRecordsTest::editsAreAppliedUpToTheFirstDamagedOne()
{
    const QByteArray first = copyOf(someHeader(), TextTree(u"one three"_s));
    CopyHeader later = someHeader();
    later.time += 1000;
    const QByteArray edit = editRecord({4, 0}, TextTree(u"two "_s), {0, 4});
    const QByteArray header = copyRecord(CopyRecord::header, encodeHeader(later));
    const QByteArray second = editRecord({0, 3}, TextTree(u"한"_s), {0, 1});
    for (qsizetype cut = 0; cut < second.size(); ++cut) {
        const std::optional<CopyContent> content = contentOf(first + edit + header + second.first(cut));
        QVERIFY(content);
        QCOMPARE(content->text.toString(), u"one two three"_s);
        QCOMPARE(content->header.time, later.time);
    }
    QCOMPARE(contentOf(first + edit + header + second)->text.toString(), u"한 two three"_s);
    // One that has no place, and what follows it.
    QCOMPARE(contentOf(first + editRecord({8, 2}, TextTree(), {0, 0}) + edit)->text.toString(), u"one three"_s);
}

void CopyRecordsTest::theSummaryIsOfTheLatestHeader()
{
    CopyHeader later = someHeader();
    later.url = QUrl(u"file:///b"_s);
    const std::optional<CopySummary> summary =
        summaryOf(copyOf(someHeader(), TextTree(u"\n\t first\n  words"_s)) + editRecord({0, 0}, TextTree(), {0, 0}) +
                  copyRecord(CopyRecord::header, encodeHeader(later)));
    QVERIFY(summary);
    QCOMPARE(summary->header, later);
    QCOMPARE(summary->firstWords, u"first words"_s);
}

void CopyRecordsTest::aKeptUpFileHoldsWhatWasWrittenLast()
{
    test::RandomText random;
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.copy"_s);
    CopyFile file(QFile::encodeName(path));
    TextTree text(random.text(100).repeated(CopyFile::leastLong / 50));
    CopyHeader header = someHeader();
    for (int round = 0; round < 40; ++round) {
        for (qsizetype edits = random.below(3); edits >= 0; --edits) {
            text.replace(random.range(text.length()), random.text(round % 10 == 9 ? 40'000 : 5));
        }
        header.time += 1;
        header.url = QUrl(u"file:///"_s + QString::number(random.below(3)));
        QVERIFY(!file.write(header, text));
        const std::optional<CopyContent> content = contentOf(bytesOf(path));
        QVERIFY(content);
        QVERIFY(content->text == text);
        QCOMPARE(content->header.url, header.url);
    }
}

void CopyRecordsTest::aLongTextIsNotWrittenAgainForAnEdit()
{
    QTemporaryDir folder;
    CopyFile file(QFile::encodeName(folder.filePath(u"a.copy"_s)));
    TextTree text(QString(1'000'000, u'x'));
    QVERIFY(!file.write(someHeader(), text));
    const qint64 once = file.writtenBytes();
    QVERIFY(once >= text.length());
    for (int key = 0; key < 100; ++key) {
        text.replace({key * 9000, 0}, u"typed");
        QVERIFY(!file.write(someHeader(), text));
    }
    QVERIFY2(file.writtenBytes() - once < 100 * 300, qPrintable(QString::number(file.writtenBytes() - once)));
    // And nothing at all where nothing has changed but the time.
    const qint64 before = file.writtenBytes();
    CopyHeader later = someHeader();
    later.time += 1;
    QVERIFY(!file.write(later, text));
    QCOMPARE(file.writtenBytes(), before);
}

void CopyRecordsTest::editsThatOutgrowTheCopyAreFoldedIntoANewOne()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.copy"_s);
    CopyFile file(QFile::encodeName(path));
    TextTree text(QString(100'000, u'x'));
    QVERIFY(!file.write(someHeader(), text));
    const qint64 once = QFileInfo(path).size();
    for (int round = 0; round < 60; ++round) {
        text.replace({round * 100, 9'000}, QString(9'000, QChar(u'a' + round % 20)));
        QVERIFY(!file.write(someHeader(), text));
        QVERIFY(QFileInfo(path).size() <= 2 * once + 1000);
        QVERIFY(contentOf(bytesOf(path))->text == text);
    }
}

void CopyRecordsTest::anEditThatFailsLeavesTheCopyWhole()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.copy"_s);
    CopyFile file(QFile::encodeName(path));
    TextTree text(QString(100'000, u'x'));
    QVERIFY(!file.write(someHeader(), text));
    const TextTree before = text;

    // No file of this process can grow beyond that: the disk is full in the middle of a record.
    struct rlimit limit = {};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    struct rlimit tight = limit;
    tight.rlim_cur = rlim_t(QFileInfo(path).size() + 40);
    std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    text.replace({10, 10}, u"typed typed typed");
    const std::optional<FileError> error = file.write(someHeader(), text);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);

    QVERIFY(error);
    QVERIFY(contentOf(bytesOf(path))->text == before);
    QVERIFY(!file.write(someHeader(), text));
    QVERIFY(contentOf(bytesOf(path))->text == text);
}

void CopyRecordsTest::aRemovedFileIsWrittenAnew()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.copy"_s);
    CopyFile file(QFile::encodeName(path));
    TextTree text(QString(100'000, u'x'));
    QVERIFY(!file.write(someHeader(), text));
    QVERIFY(QFile::remove(path));
    text.replace({0, 0}, u"typed");
    QVERIFY(!file.write(someHeader(), text));
    QVERIFY(contentOf(bytesOf(path))->text == text);
}

const kelm::test::Registered<CopyRecordsTest> registered;

} // namespace copy_records_test

#include "copy_records_test.moc"
