#include "app/recovery/copy_bytes.h"
#include "app/recovery/copy_file.h"
#include "support/test_program.h"

#include <QBuffer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

namespace copy_records_format_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A copy as programs of this format write it, record by record: the mark; a header with all that it can say; "é",
/// a byte a unit; "한", two bytes a unit; the end; an edit that puts "ab" in the place of the second unit.
const QList<QByteArray> writtenLongAgo{
    "4b656c6d57726967687420636f707920310a",
    "4b000000d871b950332735d44800010f0000018bcfe568000000000c66696c653a2f2f2f612e70790000000c005000790074006800"
    "6f006e0000000000000003000000000000000400000000000000050000000000000006",
    "01000000683889390ca1e8a14ee9",
    "020000008af27715b66068b6575cd5",
    "080000003b1c19064c7d2a9d2e0200000000000000",
    "130000001af1d7de3c75f33f45010000000000000001000000000000004e6162",
};

QByteArray bytesOf(const QList<QByteArray>& records)
{
    QByteArray bytes;
    for (const QByteArray& each : records) {
        bytes += QByteArray::fromHex(each);
    }
    return bytes;
}

CopyHeader headerLongAgo()
{
    CopyHeader header{QUrl(u"file:///a.py"_s), 1'700'000'000'000, Language(Language::python), FileIdentity{3, 4, 5, 6}};
    header.isReplaced = true;
    return header;
}

QByteArray headerRecord()
{
    return copyRecord(CopyRecord::header, encodeHeader(headerLongAgo()));
}

QByteArray wholeCopy(const TextTree& text)
{
    return copyOf(headerLongAgo(), text);
}

} // namespace

/// What stands in the file of a copy, byte for byte: the next version of the program reads what this one has left.
class CopyRecordsFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWasWrittenLongAgoIsRead();
    void whatIsWrittenIsWhatWasWrittenLongAgo();
    void aTextIsNarrowUpToTheLastUnitThatOneByteHolds();
    void aTextIsCutIntoStretches();
    void aHeaderOfAnUntitledTextSaysNothingElse();
    void aHeaderWithoutAValidAddressIsNone();
    void anEditNeedsItsPlaceAndItsKind_data();
    void anEditNeedsItsPlaceAndItsKind();
    void whatIsNoEditEndsTheCopy();
    void theSummaryEndsWhereTheCopyEnds();
    void theEndTellsHowLongTheTextIs();
    void noRecordIsLargerThanTheBound();
    void theFirstWordsAreAFewAndOnOneLine();
    void whatWasWrittenIsCounted();
};

void CopyRecordsFormatTest::whatWasWrittenLongAgoIsRead()
{
    const std::optional<CopyContent> content = contentOf(bytesOf(writtenLongAgo));
    QVERIFY(content);
    QCOMPARE(content->header, headerLongAgo());
    QCOMPARE(content->header.title(), u"a.py"_s);
    QCOMPARE(content->text.toString(), u"éab"_s);

    const std::optional<CopySummary> summary = summaryOf(bytesOf(writtenLongAgo));
    QVERIFY(summary);
    QCOMPARE(summary->header, headerLongAgo());
    QCOMPARE(summary->firstWords, u"é"_s);
}

void CopyRecordsFormatTest::whatIsWrittenIsWhatWasWrittenLongAgo()
{
    QCOMPARE(copyMark.toByteArray().toHex(), writtenLongAgo[0]);
    QCOMPARE(headerRecord().toHex(), writtenLongAgo[1]);
    QCOMPARE(copyRecord(CopyRecord::narrow, "\xe9").toHex(), writtenLongAgo[2]);
    QByteArrayList records;
    const auto take = [&records](const QByteArray& record) {
        records << record.toHex();
        return true;
    };
    QVERIFY(forEachTextRecord(TextTree(u"한"_s), take));
    QCOMPARE(records.constFirst(), writtenLongAgo[3]);
    records.clear();
    QVERIFY(forEachTextRecord(TextTree(u"12"_s), take));
    QCOMPARE(records.constLast(), writtenLongAgo[4]);
    QCOMPARE(editRecord({1, 1}, TextTree(u"xaby"_s), {1, 2}).toHex(), writtenLongAgo[5]);
}

void CopyRecordsFormatTest::aTextIsNarrowUpToTheLastUnitThatOneByteHolds()
{
    const auto sizeOf = [](const QString& text) { return editRecord({0, 0}, TextTree(text), {0, text.size()}).size(); };
    const qsizetype nothing = sizeOf(QString());
    QCOMPARE(sizeOf(u"a\u00ff"_s), nothing + 2);
    QCOMPARE(sizeOf(u"a\u0100"_s), nothing + 4);
}

void CopyRecordsFormatTest::aTextIsCutIntoStretches()
{
    qsizetype records = 0;
    const auto count = [&records](const QByteArray&) { return ++records > 0; };
    QVERIFY(forEachTextRecord(TextTree(), count));
    QCOMPARE(std::exchange(records, 0), 1);
    QVERIFY(forEachTextRecord(TextTree(QString(65'536, u'x')), count));
    QCOMPARE(std::exchange(records, 0), 2);
    QVERIFY(forEachTextRecord(TextTree(QString(65'537, u'x')), count));
    QCOMPARE(std::exchange(records, 0), 3);
    // Whoever takes no more is given no more.
    QVERIFY(!forEachTextRecord(TextTree(QString(200'000, u'x')), [&records](const QByteArray&) {
        ++records;
        return false;
    }));
    QCOMPARE(records, 1);
}

void CopyRecordsFormatTest::aHeaderOfAnUntitledTextSaysNothingElse()
{
    const CopyHeader header{std::nullopt, 7};
    QCOMPARE(header.title(), u"Untitled"_s);
    // Version, what it holds, and the time.
    QCOMPARE(encodeHeader(header).toHex(), QByteArray("0001000000000000000007"));
    QCOMPARE(decodeHeader(QByteArray::fromHex("0001000000000000000007")), std::optional(header));
    QVERIFY(!decodeHeader(QByteArray::fromHex("0000000000000000000007")));
    QVERIFY(!decodeHeader(QByteArray::fromHex("0002000000000000000007")));
    QVERIFY(!decodeHeader(QByteArray::fromHex("00010000000000000000")));
}

void CopyRecordsFormatTest::aHeaderWithoutAValidAddressIsNone()
{
    const QByteArray start = QByteArray::fromHex("0001010000000000000007");
    QVERIFY(decodeHeader(start + QByteArray::fromHex("00000002") + "/a"));
    QVERIFY(!decodeHeader(start + QByteArray::fromHex("00000000")));
    QVERIFY(!decodeHeader(start));
    // A language that is not known any more is that of the file's name again.
    const QByteArray withLanguage = QByteArray::fromHex("0001020000000000000007");
    const std::optional<CopyHeader> header = decodeHeader(withLanguage + QByteArray::fromHex("000000020058"));
    QVERIFY(header);
    QCOMPARE(header->language, std::nullopt);
}

void CopyRecordsFormatTest::anEditNeedsItsPlaceAndItsKind_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");
    const auto edit = [](quint8 start, quint8 length, const QByteArray& rest) {
        return QByteArray(1, char(start)) + QByteArray(7, '\0') + QByteArray(1, char(length)) + QByteArray(7, '\0') +
               rest;
    };
    QTest::newRow("at the start") << edit(0, 1, "Nx") << u"x23"_s;
    QTest::newRow("at the end") << edit(3, 0, "Nx") << u"123x"_s;
    QTest::newRow("all of it") << edit(0, 3, QByteArray("W\x5c\xd5", 3)) << u"한"_s;
    QTest::newRow("nothing put in, narrow") << edit(1, 1, "N") << u"13"_s;
    QTest::newRow("nothing put in, wide") << edit(1, 1, "W") << u"13"_s;
    QTest::newRow("begins behind the end") << edit(4, 0, "Nx") << u"123"_s;
    QTest::newRow("ends behind the end") << edit(2, 2, "Nx") << u"123"_s;
    QTest::newRow("half a unit") << edit(0, 1, "Wx") << u"123"_s;
    QTest::newRow("another kind") << edit(0, 1, "Hx") << u"123"_s;
    QTest::newRow("no kind") << edit(0, 1, "") << u"123"_s;
    QTest::newRow("half a place") << QByteArray(8, '\0') << u"123"_s;
    QTest::newRow("nothing") << QByteArray() << u"123"_s;
}

void CopyRecordsFormatTest::anEditNeedsItsPlaceAndItsKind()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, text);
    const auto result = contentOf(wholeCopy(TextTree(u"123"_s)) + copyRecord(CopyRecord::edit, content));
    QVERIFY(result);
    QCOMPARE(result->text.toString(), text);
}

void CopyRecordsFormatTest::whatIsNoEditEndsTheCopy()
{
    const QByteArray edit = editRecord({0, 0}, TextTree(u"x"_s), {0, 1});
    for (const CopyRecord kind : {CopyRecord::narrow, CopyRecord::wide, CopyRecord::whole, CopyRecord('?')}) {
        const auto result = contentOf(wholeCopy(TextTree(u"123"_s)) + copyRecord(kind, "12345678") + edit);
        QVERIFY(result);
        QCOMPARE(result->text.toString(), u"123"_s);
    }
    // A header that is none changes nothing, and what follows counts.
    const auto result = contentOf(wholeCopy(TextTree(u"123"_s)) + copyRecord(CopyRecord::header, "?") + edit);
    QCOMPARE(result->text.toString(), u"x123"_s);
    QCOMPARE(result->header, headerLongAgo());
}

void CopyRecordsFormatTest::theSummaryEndsWhereTheCopyEnds()
{
    CopyHeader later = headerLongAgo();
    later.time += 1;
    const QByteArray whole = wholeCopy(TextTree(u"123"_s));
    const QByteArray header = copyRecord(CopyRecord::header, encodeHeader(later));
    const QByteArray edit = editRecord({0, 0}, TextTree(u"x"_s), {0, 1});
    QCOMPARE(summaryOf(whole + edit + header)->header, later);
    for (const CopyRecord kind : {CopyRecord::narrow, CopyRecord::wide, CopyRecord::whole, CopyRecord('?')}) {
        QCOMPARE(summaryOf(whole + copyRecord(kind, "12345678") + header)->header, headerLongAgo());
    }
    // Zeros, as a machine that lost its power may leave them, are no records.
    QCOMPARE(summaryOf(whole + QByteArray(1000, '\0') + header)->header, headerLongAgo());
}

void CopyRecordsFormatTest::theEndTellsHowLongTheTextIs()
{
    const QByteArray start = copyMark.toByteArray() + headerRecord() + copyRecord(CopyRecord::narrow, "123");
    const auto end = [](char length, qsizetype size = 8) {
        return copyRecord(CopyRecord::whole, (QByteArray(1, length) + QByteArray(8, '\0')).first(size));
    };
    QVERIFY(contentOf(start + end(3)));
    QVERIFY(!contentOf(start + end(2)));
    QVERIFY(!contentOf(start + end(4)));
    QVERIFY(!contentOf(start + end(3, 7)));
    QVERIFY(!contentOf(start + end(3, 9)));
    QVERIFY(!contentOf(start));
    // Nothing but stretches stands before it.
    QVERIFY(!contentOf(start + headerRecord() + end(3)));
    QVERIFY(!contentOf(copyMark.toByteArray() + copyRecord(CopyRecord::narrow, "123") + end(3)));
}

void CopyRecordsFormatTest::noRecordIsLargerThanTheBound()
{
    constexpr qsizetype bound = 67'108'864;
    const QByteArray start = copyMark.toByteArray() + headerRecord();
    QByteArray held = start + copyRecord(CopyRecord::narrow, QByteArray(bound, 'x'));
    QBuffer buffer(&held);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    CopyRecordReader reader(buffer);
    QVERIFY(reader.next());
    QVERIFY(reader.next());
    QCOMPARE(reader.kind(), CopyRecord::narrow);
    QCOMPARE(reader.content()->size(), bound);
    QVERIFY(!reader.next());

    QByteArray larger = start + copyRecord(CopyRecord::narrow, QByteArray(bound + 1, 'x'));
    QBuffer largerBuffer(&larger);
    QVERIFY(largerBuffer.open(QIODevice::ReadOnly));
    CopyRecordReader largerReader(largerBuffer);
    QVERIFY(largerReader.next());
    QVERIFY(!largerReader.next());
}

void CopyRecordsFormatTest::theFirstWordsAreAFewAndOnOneLine()
{
    const auto firstWords = [](const QString& text) { return summaryOf(wholeCopy(TextTree(text)))->firstWords; };
    QCOMPARE(firstWords(QString()), QString());
    QCOMPARE(firstWords(u"\n\n one\t two\n"_s), u"one two"_s);
    QCOMPARE(firstWords(QString(120, u'x')), QString(120, u'x'));
    QCOMPARE(firstWords(QString(121, u'x')), QString(120, u'x'));
    // Not all of a long text is looked at for them.
    QCOMPARE(firstWords(QString(1'999, u' ') + u"xy"_s), u"x"_s);
    // A stretch that is not what was written has none, and the text before its end is the copy's all the same.
    QByteArray damaged = wholeCopy(TextTree(u"text"_s));
    damaged[damaged.indexOf("text")] = 'T';
    QCOMPARE(summaryOf(damaged)->firstWords, QString());
}

void CopyRecordsFormatTest::whatWasWrittenIsCounted()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.copy"_s);
    CopyFile file(QFile::encodeName(path));
    TextTree text(QString(CopyFile::leastLong, u'x'));
    QVERIFY(!file.write(headerLongAgo(), text));
    QCOMPARE(file.writtenBytes(), QFileInfo(path).size());
    text.replace({1, 1}, u"yy");
    QVERIFY(!file.write(headerLongAgo(), text));
    // Behind the copy, and nothing in its place.
    QCOMPARE(file.writtenBytes(), QFileInfo(path).size());
    // What has become short is written whole, and takes the place of both.
    const qint64 before = file.writtenBytes();
    QVERIFY(!file.write(headerLongAgo(), TextTree(QString(CopyFile::leastLong - 1, u'x'))));
    QCOMPARE(file.writtenBytes() - before, QFileInfo(path).size());
    QVERIFY(QFileInfo(path).size() < CopyFile::leastLong + 300);
}

const kelm::test::Registered<CopyRecordsFormatTest> registered(kelm::test::Toolkit::core);

} // namespace copy_records_format_test

#include "copy_records_format_test.moc"
