#include "platform/files/utf8_file.h"
#include "platform/text/character_sets.h"
#include "search/file_search.h"
#include "search/line_pieces_reader.h"
#include "search/project_scan.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

namespace file_search_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype piece = LinePiecesReader::usualPiece;

struct Fixture
{
    QTemporaryDir folder;
    qsizetype tooLong = 0;
    qsizetype asked = 0;
    qsizetype cancelAfter = -1;

    QString path(const QString& name) const { return folder.filePath(name); }
    void write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("no file");
        }
    }
    /// A file of zeros of any length, of which the disk keeps nothing.
    void writeSparse(const QString& name, qint64 size) const
    {
        write(name, "begun ");
        if (truncate(QFile::encodeName(path(name)).constData(), size) != 0) {
            qFatal("no sparse file");
        }
    }
    /// The numbers and texts of the lines of a file that hold a text.
    QStringList find(const QString& name, const QString& text, FileSearch::Limits limits = {})
    {
        const LocalizedNeedle needle(text);
        const std::function<bool()> isCancelled = [this] { return asked++ >= cancelAfter && cancelAfter >= 0; };
        FileSearch search(needle, isCancelled, limits);
        QStringList found;
        const auto outcome = search.search(QFile::encodeName(path(name)), [&](const SearchResult& result) {
            found.append(u"%1:"_s.arg(result.lineNumber) + result.matchLine);
        });
        tooLong += outcome == FileSearch::Outcome::tooLong ? 1 : 0;
        return found;
    }
};

/// What a file search finds, by a look at the whole text.
QStringList naive(const QByteArray& bytes, const QString& text)
{
    QStringList found;
    const auto decoded = decodeUtf8Text(bytes);
    qsizetype number = 1;
    qsizetype start = 0;
    for (qsizetype at = 0; decoded && at <= decoded->size(); ++at) {
        if (at == decoded->size() || isNewline((*decoded)[at].unicode())) {
            if (LocalizedNeedle(text).isIn(QStringView(*decoded).sliced(start, at - start))) {
                found.append(u"%1:"_s.arg(number) + decoded->sliced(start, at - start));
            }
            ++number;
            start = at + 1;
        }
    }
    return found;
}

} // namespace

class FileSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newlinesAreCounted();
    void aLongFileGivesWhatAWholeLookWould();
    void whatIsNoUtf8AtTheEndTellsNothing();
    void aLineOverPiecesComesWhole();
    void piecesAreCutBetweenCharacters();
    void whatIsTooLongIsPassedOverAndCounted();
    void aLongTextIsFoundAcrossPieces_data();
    void aLongTextIsFoundAcrossPieces();
    void aFileThatChangesMeanwhileIsSearchedUpToThere();
    void aLineOverThirtyTwoMegabytesIsTooLong();
    void aFileThatGrowsIsLookedAtUpToTheLimit();
    void aLongFileThatIsNoUtf8IsNotCounted();
    void aSparseFileOfSixtyGigabytesIsPassedOver();
    void eachPieceAsksWhetherToGoOn();
    void aLongLineIsFoundInStretches();
    void aLongLineAsksWhetherToGoOn();
    void threadsKeepTheOrder();
};

void FileSearchTest::newlinesAreCounted()
{
    test::RandomText random;
    for (int round = 0; round < 300; ++round) {
        // An unpaired surrogate has no bytes of its own.
        const QByteArray bytes = encodeUtf8Text(random.text(60));
        const QString text = *decodeUtf8Text(bytes);
        const auto isEnd = [](QChar unit) { return isNewline(unit.unicode()); };
        QCOMPARE(newlinesIn(bytes), qsizetype(std::count_if(text.begin(), text.end(), isEnd)));
        const auto last = std::find_if(text.rbegin(), text.rend(), isEnd);
        const qsizetype behind = text.rend() - last;
        QCOMPARE(behindLastNewline(bytes, 0), behind == 0 ? -1 : encodeUtf8Text(text.first(behind)).size());
    }
}

void FileSearchTest::aLongFileGivesWhatAWholeLookWould()
{
    test::RandomText random;
    Fixture fixture;
    QString text;
    while (text.size() < 3 * piece / 2) {
        text += random.text(200) + u"needle"_s.first(random.below(7)) +
                u"xyz\n"_s.repeated(random.below(3) == 0 ? random.below(20'000) : 0);
    }
    const QByteArray bytes = encodeUtf8Text(text);
    fixture.write(u"a"_s, bytes);
    for (const QString& needle : {u"needle"_s, u"WORD"_s, u"한"_s, u"e\u0301"_s, u"nowhere"_s, u"😀a"_s}) {
        QCOMPARE(fixture.find(u"a"_s, needle), naive(bytes, needle));
    }
    QCOMPARE(fixture.tooLong, qsizetype(0));
}

void FileSearchTest::whatIsNoUtf8AtTheEndTellsNothing()
{
    Fixture fixture;
    fixture.write(u"a"_s, QByteArray("needle\n").repeated(500'000) + "\xff");
    QCOMPARE(fixture.find(u"a"_s, u"needle"_s), QStringList());
}

void FileSearchTest::aLineOverPiecesComesWhole()
{
    Fixture fixture;
    const QByteArray line = QByteArray(5 * piece, 'a') + "word" + QByteArray(piece, 'b');
    fixture.write(u"a"_s, "one\r\n" + line + "\nword\n");
    QCOMPARE(fixture.find(u"a"_s, u"word"_s), (QStringList{u"3:"_s + QString::fromLatin1(line), u"4:word"_s}));
}

void FileSearchTest::piecesAreCutBetweenCharacters()
{
    Fixture fixture;
    // Three bytes each, so that a piece ends within one.
    const QString line = u"가"_s.repeated(piece) + u"word"_s;
    fixture.write(u"a"_s, line.toUtf8() + "\nword\n");
    QCOMPARE(fixture.find(u"a"_s, u"word"_s), (QStringList{u"1:"_s + line, u"2:word"_s}));
}

void FileSearchTest::aLongTextIsFoundAcrossPieces_data()
{
    QTest::addColumn<qsizetype>("length");
    QTest::newRow("less than half a piece") << 2 * piece / 5;
    QTest::newRow("more than half a piece") << 3 * piece / 5;
    QTest::newRow("more than a piece") << 6 * piece / 5;
}

void FileSearchTest::aLongTextIsFoundAcrossPieces()
{
    QFETCH(qsizetype, length);
    Fixture fixture;
    const QByteArray text = QByteArray(length - 1, 'a') + 'q';
    const QByteArray before = QByteArray("bb\n").repeated(piece / 4);
    for (const bool isThere : {true, false}) {
        fixture.write(u"a"_s, before + (isThere ? text : text.chopped(1)) + '\n' + before);
        QCOMPARE(fixture.find(u"a"_s, QString::fromLatin1(text).toUpper()).size(), qsizetype(isThere ? 1 : 0));
    }
}

void FileSearchTest::aFileThatChangesMeanwhileIsSearchedUpToThere()
{
    const Fixture fixture;
    const QByteArray lines = QByteArray("a line\n").repeated(piece / 4);
    fixture.write(u"a"_s, "word\n" + lines + "word\n" + lines + "word\n");
    QFile file(fixture.path(u"a"_s));
    QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    const LocalizedNeedle needle(u"word"_s);
    const std::function<bool()> isCancelled = [] { return false; };
    FileSearch search(needle, isCancelled, {});
    QList<qsizetype> found;
    search.search(QFile::encodeName(file.fileName()), [&](const SearchResult& result) {
        found.append(result.lineNumber);
        // The line feed before the second.
        file.seek(4 + lines.size());
        file.write("\xff");
    });
    QCOMPARE(found, QList<qsizetype>{1});
}

void FileSearchTest::aLineOverThirtyTwoMegabytesIsTooLong()
{
    Fixture fixture;
    fixture.writeSparse(u"a"_s, 32 * piece + piece / 2);
    QCOMPARE(fixture.find(u"a"_s, u"begun"_s), QStringList());
    QCOMPARE(fixture.tooLong, qsizetype(1));
}

void FileSearchTest::aFileThatGrowsIsLookedAtUpToTheLimit()
{
    const Fixture fixture;
    fixture.write(u"a"_s, QByteArray(3 * piece / 2, 'a'));
    QFile file(fixture.path(u"a"_s));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered));
    qsizetype asked = 0;
    const LocalizedNeedle needle(u"word"_s);
    const std::function<bool()> isCancelled = [&] {
        file.write(QByteArray(piece, 'a'));
        return ++asked > 100;
    };
    FileSearch search(needle, isCancelled, {.file = 10 * piece, .line = piece});
    search.search(QFile::encodeName(file.fileName()), [](const SearchResult&) {});
    QVERIFY2(asked < 20, qPrintable(QString::number(asked)));
}

void FileSearchTest::whatIsTooLongIsPassedOverAndCounted()
{
    Fixture fixture;
    fixture.write(u"long file"_s, QByteArray("word\n").repeated(600'000));
    fixture.write(u"long line"_s, "word\n" + QByteArray(3 * piece, 'a') + "\nword");
    const FileSearch::Limits shortFile{.file = 2 * piece, .line = piece};
    QCOMPARE(fixture.find(u"long file"_s, u"word"_s, shortFile), QStringList());
    QCOMPARE(fixture.tooLong, qsizetype(1));
    const FileSearch::Limits shortLine{.file = 9 * piece, .line = piece};
    QCOMPARE(fixture.find(u"long file"_s, u"word"_s, shortLine).size(), qsizetype(600'000));
    QCOMPARE(fixture.tooLong, qsizetype(1));
    QCOMPARE(fixture.find(u"long line"_s, u"word"_s, shortLine), QStringList());
    QCOMPARE(fixture.tooLong, qsizetype(2));
    // What is not in a file need not be looked for by the line.
    QCOMPARE(fixture.find(u"long line"_s, u"wort"_s, shortLine), QStringList());
    QCOMPARE(fixture.tooLong, qsizetype(2));
}

void FileSearchTest::aLongFileThatIsNoUtf8IsNotCounted()
{
    Fixture fixture;
    fixture.write(u"a"_s, QByteArray("word\xff").repeated(600'000));
    QCOMPARE(fixture.find(u"a"_s, u"word"_s, {.file = 2 * piece, .line = piece}), QStringList());
    fixture.write(u"b"_s, QByteArray("word").repeated(600'000) + '\xff' + QByteArray("word").repeated(600'000));
    QCOMPARE(fixture.find(u"b"_s, u"word"_s, {.file = 9 * piece, .line = 3 * piece}), QStringList());
    QCOMPARE(fixture.tooLong, qsizetype(0));
}

void FileSearchTest::aSparseFileOfSixtyGigabytesIsPassedOver()
{
    Fixture fixture;
    fixture.writeSparse(u"a"_s, qint64(60) << 30);
    QCOMPARE(fixture.find(u"a"_s, u"begun"_s), QStringList());
    QCOMPARE(fixture.tooLong, qsizetype(1));
}

void FileSearchTest::eachPieceAsksWhetherToGoOn()
{
    Fixture fixture;
    fixture.writeSparse(u"a"_s, 300 * piece);
    fixture.find(u"a"_s, u"nowhere"_s);
    QVERIFY(fixture.asked >= 299);
    fixture.asked = 0;
    fixture.cancelAfter = 10;
    fixture.find(u"a"_s, u"nowhere"_s);
    QVERIFY(fixture.asked <= 12);
}

void FileSearchTest::aLongLineIsFoundInStretches()
{
    test::RandomText random;
    for (int round = 0; round < 500; ++round) {
        QString text = random.text(120);
        text.remove(u'\n');
        const TextRange range = random.range(text.size());
        const QString needle = random.below(3) == 0 ? random.text(3) : text.sliced(range.location, range.length);
        const LocalizedNeedle localized(needle);
        QCOMPARE(localized.isIn(
                     text, [] { return false; }, 8),
                 localized.isIn(text));
    }
}

void FileSearchTest::aLongLineAsksWhetherToGoOn()
{
    const QString line = u"가나다라 e\u0301"_s.repeated(1'000'000);
    qsizetype asked = 0;
    QVERIFY(!LocalizedNeedle(u"마"_s).isIn(line, [&asked] { return ++asked > 3; }));
    QCOMPARE(asked, qsizetype(4));
    asked = 0;
    QVERIFY(LocalizedNeedle(u"마"_s).isIn(line + u"마"_s, [&asked] { return ++asked > 1000; }));
    QVERIFY(asked >= line.size() / 262'144);
}

void FileSearchTest::threadsKeepTheOrder()
{
    Fixture fixture;
    test::RandomText random;
    for (int folder = 0; folder < 12; ++folder) {
        QDir(fixture.folder.path()).mkpath(u"d%1"_s.arg(folder));
        for (int file = 0; file < 40; ++file) {
            const QString name = u"d%1/f%2"_s.arg(folder).arg(file);
            fixture.write(name, QByteArray("word\n").repeated(random.below(30) == 0 ? 3000 : random.below(4)));
        }
    }
    const auto scan = [&] {
        QStringList found;
        scanProject(fixture.folder.path(), LocalizedNeedle(u"word"_s),
                    {.onResult =
                         [&](const SearchResult& result) {
                             found.append(result.fileURL.path() + u':' + QString::number(result.lineNumber));
                         },
                     .isCancelled = [] { return false; }});
        return found;
    };
    // The system lists an unchanged folder in one order.
    const QStringList first = scan();
    QVERIFY(first.size() > 480);
    for (int round = 0; round < 20; ++round) {
        QCOMPARE(scan(), first);
    }
    QString file;
    qsizetype line = 0;
    QStringList filesInOrder;
    for (const QString& result : first) {
        const QString path = result.section(u':', 0, 0);
        line = path == file ? line + 1 : 1;
        QCOMPARE(result, path + u':' + QString::number(line));
        if (path != file) {
            filesInOrder.append(path);
        }
        file = path;
    }
    QCOMPARE(filesInOrder.removeDuplicates(), qsizetype(0));
}

const kelm::test::Registered<FileSearchTest> registered;

} // namespace file_search_test

#include "file_search_test.moc"
