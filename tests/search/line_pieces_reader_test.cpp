#include "search/line_pieces_reader.h"
#include "support/test_program.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <unistd.h>

namespace line_pieces_reader_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype piece = LinePiecesReader::usualPiece;

using Step = LinePiecesReader::Step;

struct Fixture
{
    QTemporaryDir folder;
    OpenFile file;
    QByteArray buffer;
    bool isCancelled = false;
    std::function<bool()> asksWhetherCancelled = [this] { return isCancelled; };

    explicit Fixture(const QByteArray& bytes)
    {
        QFile written(folder.filePath(u"a"_s));
        if (!written.open(QIODevice::WriteOnly) || written.write(bytes) != bytes.size()) {
            qFatal("no file");
        }
        written.close();
        file = OpenFile(::open(QFile::encodeName(written.fileName()).constData(), O_RDONLY | O_CLOEXEC));
    }
    LinePiecesReader reader(qsizetype longestLine = 4 * piece)
    {
        return LinePiecesReader(file, buffer, longestLine, asksWhetherCancelled);
    }
};

} // namespace

class LinePiecesReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void piecesMakeTheFile();
    void eachNewlineEndsAPiece_data();
    void eachNewlineEndsAPiece();
    void anEmptyFileIsOneEmptyPiece();
    void readingBeginsAtTheStart();
    void aFileWithoutAPlaceFails();
    void onceCancelledItHasFailed();
    void whatWasReadOfALineThatIsTooLongIsThere();
};

void LinePiecesReaderTest::piecesMakeTheFile()
{
    const QByteArray lines = QByteArray("a line of some length\n").repeated(200'000) + "the last";
    Fixture fixture(lines);
    LinePiecesReader reader = fixture.reader();
    QByteArray all;
    int count = 0;
    while (reader.next() == Step::piece) {
        ++count;
        all += reader.bytes();
        QVERIFY(reader.isLast() || reader.bytes().endsWith('\n'));
        QVERIFY(reader.bytes().size() <= 2 * piece);
    }
    QVERIFY(all == lines);
    QVERIFY(count >= 4);
    QVERIFY(reader.isLast());
    QCOMPARE(reader.next(), Step::end);
}

void LinePiecesReaderTest::eachNewlineEndsAPiece_data()
{
    QTest::addColumn<QByteArray>("newline");
    QTest::addColumn<bool>("isOne");
    QTest::newRow("backspace") << QByteArray("\b") << false;
    QTest::newRow("tab") << QByteArray("\t") << false;
    QTest::newRow("line feed") << QByteArray("\n") << true;
    QTest::newRow("vertical tab") << QByteArray("\v") << true;
    QTest::newRow("form feed") << QByteArray("\f") << true;
    QTest::newRow("carriage return") << QByteArray("\r") << true;
    QTest::newRow("shift out") << QByteArray("\x0e") << false;
    QTest::newRow("U+0084") << QByteArray("\xc2\x84") << false;
    QTest::newRow("U+0085") << QByteArray("\xc2\x85") << true;
    QTest::newRow("U+0086") << QByteArray("\xc2\x86") << false;
    QTest::newRow("another of its last byte") << QByteArray("\xc3\x85") << false;
    QTest::newRow("U+2027") << QByteArray("\xe2\x80\xa7") << false;
    QTest::newRow("U+2028") << QByteArray("\xe2\x80\xa8") << true;
    QTest::newRow("U+2029") << QByteArray("\xe2\x80\xa9") << true;
    QTest::newRow("U+202A") << QByteArray("\xe2\x80\xaa") << false;
    QTest::newRow("another of its two last bytes") << QByteArray("\xe3\x80\xa8") << false;
    QTest::newRow("another of its first and last byte") << QByteArray("\xe2\x81\xa8") << false;
    QTest::newRow("a last byte alone") << QByteArray("\xa8") << false;
}

void LinePiecesReaderTest::eachNewlineEndsAPiece()
{
    QFETCH(QByteArray, newline);
    QFETCH(bool, isOne);
    QCOMPARE(newlinesIn(newline), qsizetype(isOne ? 1 : 0));
    QCOMPARE(newlinesIn("a" + newline + newline + "b"), qsizetype(isOne ? 2 : 0));
    QCOMPARE(behindLastNewline(newline, 0), isOne ? newline.size() : -1);
    QCOMPARE(behindLastNewline("a" + newline + "b", 0), isOne ? 1 + newline.size() : -1);
    // What stands before is not looked at.
    QCOMPARE(behindLastNewline("a" + newline + "b", 1 + newline.size()), qsizetype(-1));
}

void LinePiecesReaderTest::anEmptyFileIsOneEmptyPiece()
{
    Fixture fixture({});
    LinePiecesReader reader = fixture.reader();
    QCOMPARE(reader.next(), Step::piece);
    QVERIFY(reader.bytes().isEmpty() && reader.isLast());
    QCOMPARE(reader.next(), Step::end);
    QCOMPARE(reader.next(), Step::end);
}

void LinePiecesReaderTest::readingBeginsAtTheStart()
{
    Fixture fixture("one\ntwo\n");
    QCOMPARE(::lseek(fixture.file.get(), 4, SEEK_SET), off_t(4));
    LinePiecesReader reader = fixture.reader();
    QCOMPARE(reader.next(), Step::piece);
    QCOMPARE(reader.bytes().toByteArray(), QByteArray("one\ntwo\n"));
}

void LinePiecesReaderTest::aFileWithoutAPlaceFails()
{
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    const OpenFile reading(ends[0]);
    const OpenFile writing(ends[1]);
    QByteArray buffer;
    const std::function<bool()> never = [] { return false; };
    LinePiecesReader reader(reading, buffer, piece, never);
    QCOMPARE(reader.next(), Step::failed);
    QCOMPARE(reader.next(), Step::failed);
}

void LinePiecesReaderTest::onceCancelledItHasFailed()
{
    Fixture fixture(QByteArray("line\n").repeated(1'000'000));
    LinePiecesReader reader = fixture.reader();
    QCOMPARE(reader.next(), Step::piece);
    fixture.isCancelled = true;
    QCOMPARE(reader.next(), Step::failed);
    QVERIFY(reader.bytes().isEmpty());
    fixture.isCancelled = false;
    QCOMPARE(reader.next(), Step::failed);
}

void LinePiecesReaderTest::whatWasReadOfALineThatIsTooLongIsThere()
{
    Fixture fixture("short\n" + QByteArray(5 * piece, 'a') + "\n");
    LinePiecesReader reader = fixture.reader(2 * piece);
    QCOMPARE(reader.next(), Step::piece);
    QCOMPARE(reader.bytes().toByteArray(), QByteArray("short\n"));
    QCOMPARE(reader.next(), Step::tooLongLine);
    QVERIFY(reader.bytes().size() > 2 * piece);
    QCOMPARE(reader.bytes().count('a'), reader.bytes().size());
    QCOMPARE(reader.next(), Step::failed);
}

const kelm::test::Registered<LinePiecesReaderTest> registered;

} // namespace line_pieces_reader_test

#include "line_pieces_reader_test.moc"
