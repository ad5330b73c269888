#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/text/canonical_text.h"
#include "search/localized_needle.h"
#include "search/project_search.h"
#include "search/quick_open.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace project_search_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir project;
    ProjectSearch search;

    void write(const QString& name, const QByteArray& bytes) const
    {
        QDir(project.path()).mkpath(QFileInfo(name).path());
        QFile file(project.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("no file");
        }
    }
    /// What a search finds, as "name:line:text".
    QStringList find(const QString& text) { return findIn(project.path(), text); }
    QStringList findIn(const QString& folder, const QString& text)
    {
        search.start(urlOfFile(folder), text);
        if (!QTest::qWaitFor([this] { return !search.isRunning(); }, 20'000)) {
            qFatal("the search does not end");
        }
        QStringList found;
        for (const SearchResult& result : search.results()) {
            found.append(result.fileName + u':' + QString::number(result.lineNumber) + u':' + result.matchLine);
        }
        return found;
    }
};

} // namespace

class ProjectSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesThatAreNotUtf8AreSearched();
    void textsMatchAsAPersonMeansThem_data();
    void textsMatchAsAPersonMeansThem();
    void longTextsAreFoundAsShortOnes();
    void theQuickLookNeverMissesAMatch_data();
    void theQuickLookNeverMissesAMatch();
    void theQuickLookSparesTheLongOne();
    void letterCaseDoesNotMatter();
    void aSlashAtTheProjectsEndChangesNothing();
    void eachLineGivesOneResult();
    void linesEndAtEachNewline();
    void hiddenFilesAndFoldersAreLeftOut();
    void otherFoldersAreAllSearched();
    void binaryAndUnreadableFilesArePassedOver();
    void linksAreNotFollowed();
    void anEmptyFolderGivesNothing();
    void aProjectThatIsGoneGivesNothing();
    void aLineOfAMegabyteComesWhole();
    void aNameMayHoldALineFeed();
    void identitiesAreFresh();
    void resultsComeInBatchesInOrder();
    void aNewSearchEndsTheOneBefore();
    void anEndedSearchTellsNothing();
    void filesThatAreTooLongAreCounted();
    void quickOpenLooksAtNamesAlone_data();
    void quickOpenLooksAtNamesAlone();
};

void ProjectSearchTest::namesThatAreNotUtf8AreSearched()
{
    Fixture fixture;
    const QByteArray folder = QFile::encodeName(fixture.project.path()) + "/caf\xe9";
    QCOMPARE(::mkdir(folder.constData(), 0700), 0);
    fixture.write(u"plain"_s, "a needle\n");
    const QByteArray file = folder + "/\xff.txt";
    QCOMPARE(std::rename(QFile::encodeName(fixture.project.filePath(u"plain"_s)).constData(), file.constData()), 0);
    QCOMPARE(fixture.find(u"needle"_s), (QStringList{u"\ufffd.txt:1:a needle"_s}));
    QCOMPARE(nativePath(filePath(fixture.search.results().constFirst().fileURL)), file);
    QCOMPARE(fixture.findIn(pathOfNative(folder), u"needle"_s).size(), 1);
    QCOMPARE(::unlink(file.constData()), 0);
    QCOMPARE(::rmdir(folder.constData()), 0);
}

void ProjectSearchTest::textsMatchAsAPersonMeansThem_data()
{
    QTest::addColumn<QString>("needle");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isIn");
    QTest::newRow("another case") << u"ABC"_s << u"xabcx"_s << true;
    QTest::newRow("not there") << u"abc"_s << u"ab c"_s << false;
    QTest::newRow("Korean") << u"한글"_s << u"이 한글은"_s << true;
    QTest::newRow("Korean in single letters")
        << u"한글"_s << u"한글"_s.normalized(QString::NormalizationForm_D) << true;
    QTest::newRow("composed in decomposed") << u"\u00e9"_s << u"cafe\u0301"_s << true;
    QTest::newRow("decomposed in composed") << u"e\u0301"_s << u"caf\u00e9"_s << true;
    QTest::newRow("a letter is no part of an accented one") << u"cafe"_s << u"cafe\u0301"_s << false;
    QTest::newRow("nor of a composed one") << u"e"_s << u"\u00e9"_s << false;
    QTest::newRow("but of the next") << u"e"_s << u"\u00e9e"_s << true;
    QTest::newRow("capital umlaut") << u"\u00e4pfel"_s << u"\u00c4PFEL"_s << true;
    QTest::newRow("sharp s") << u"strasse"_s << u"Stra\u00dfe"_s << true;
    QTest::newRow("Kelvin sign") << u"k"_s << u"\u212a"_s << true;
    QTest::newRow("emoji") << u"🍎"_s << u"an 🍎"_s << true;
    QTest::newRow("unpaired surrogate") << QString(QChar(0xd83c)) << u"plain"_s << false;
    QTest::newRow("an empty text is nowhere") << QString() << u"abc"_s << false;
}

void ProjectSearchTest::textsMatchAsAPersonMeansThem()
{
    QFETCH(QString, needle);
    QFETCH(QString, text);
    QFETCH(bool, isIn);
    QCOMPARE(LocalizedNeedle(needle).isIn(text), isIn);
}

void ProjectSearchTest::longTextsAreFoundAsShortOnes()
{
    bool given = false;
    uint seed = qEnvironmentVariable("KELM_TEST_SEED").toUInt(&given);
    seed = given ? seed : std::random_device()();
    qInfo("seed %u", seed);
    std::mt19937 random(seed);
    const auto below = [&random](qsizetype bound) {
        return std::uniform_int_distribution<qsizetype>(0, bound - 1)(random);
    };
    const QStringList korean{u"한"_s, u"\u1112\u1161\u11ab"_s, u"e"_s, u"e\u0301"_s, u"\u00c9"_s, u"ß"_s};
    const QStringList ascii{u"a"_s, u"A"_s, u"b"_s};
    for (int round = 0; round < 4000; ++round) {
        const QStringList& parts = below(2) == 0 ? korean : ascii;
        // Of two parts most of the time, so that the text nearly stands everywhere.
        const qsizetype first = below(parts.size());
        const auto text = [&](qsizetype count) {
            QString made;
            for (; count > 0; --count) {
                made += parts[below(8) > 0 ? first : below(parts.size())];
            }
            return made;
        };
        const QString line = text(below(120));
        const QString needle = below(2) == 0 || line.isEmpty() ? text(1 + below(50)) : line.mid(below(line.size()), 60);
        const QString folded = decomposedWithoutCase(line);
        const QString wanted = decomposedWithoutCase(needle);
        bool isIn = false;
        for (qsizetype at = 0; at + wanted.size() <= folded.size() && !isIn; ++at) {
            const qsizetype end = at + wanted.size();
            isIn = QStringView(folded).sliced(at, wanted.size()) == wanted && !(at > 0 && folded[at].isMark()) &&
                   !(end < folded.size() && folded[end].isMark());
        }
        QCOMPARE(LocalizedNeedle(needle).isIn(line), isIn);
    }
    // A search that begins anew at each place would take 10^12 steps.
    const QString half(1'000'000, u'a');
    QVERIFY(!LocalizedNeedle(half + u'b').isIn(half + half));
    QVERIFY(LocalizedNeedle(half).isIn(u'b' + half));
    QVERIFY(!LocalizedNeedle(u"\ub098"_s + u"\uac00"_s.repeated(500'000)).isIn(u"\uac00"_s.repeated(1'000'000)));
}

void ProjectSearchTest::theQuickLookNeverMissesAMatch_data()
{
    textsMatchAsAPersonMeansThem_data();
    QTest::newRow("at the very end") << u"xyz"_s << u"aaaxyz"_s << true;
    QTest::newRow("at the very start") << u"xyz"_s << u"xyzaaa"_s << true;
    QTest::newRow("in capitals alone") << u"xyz"_s << u"aaaXYZ"_s << true;
    QTest::newRow("the last capital") << u"z"_s << u"Z"_s << true;
    QTest::newRow("the first capital") << u"a"_s << u"A"_s << true;
    QTest::newRow("the rarest sign elsewhere") << u"zebra"_s << u"z z zz zebrA"_s << true;
    QTest::newRow("signs") << u"a->b"_s << u"if (a->b)"_s << true;
    QTest::newRow("the Greek question mark") << u";"_s << u"\u037e"_s << true;
    QTest::newRow("the Greek grave accent") << u"`"_s << u"\u1fef"_s << true;
    QTest::newRow("cut off") << u"zebra"_s << u"zebr"_s << false;
}

void ProjectSearchTest::theQuickLookNeverMissesAMatch()
{
    QFETCH(QString, needle);
    QFETCH(QString, text);
    QFETCH(bool, isIn);
    if (isIn) {
        QVERIFY(LocalizedNeedle(needle).mayBeIn(text.toUtf8()));
    }
}

void ProjectSearchTest::theQuickLookSparesTheLongOne()
{
    // What is all ASCII is not looked for any further in bytes that do not hold it.
    const LocalizedNeedle needle(u"zebra"_s);
    for (const QByteArrayView bytes :
         {"", "zebr", "ebra", "z z zebro zebrb", "ZEBR", "zzzzz", "{ebra", "\xc3\xa9zebr"}) {
        QVERIFY2(!needle.mayBeIn(bytes), bytes.data());
    }
    QVERIFY(LocalizedNeedle(u"caf\u00e9"_s).mayBeIn("no such thing"));
}

void ProjectSearchTest::letterCaseDoesNotMatter()
{
    Fixture fixture;
    fixture.write(u"a.txt"_s, "abc\nAbc\nABC\nab\n");
    QCOMPARE(fixture.find(u"ABC"_s), (QStringList{u"a.txt:1:abc"_s, u"a.txt:2:Abc"_s, u"a.txt:3:ABC"_s}));
}

void ProjectSearchTest::aSlashAtTheProjectsEndChangesNothing()
{
    Fixture fixture;
    fixture.write(u"deep/a.txt"_s, "needle");
    QCOMPARE(fixture.findIn(fixture.project.path() + u"//"_s, u"needle"_s), QStringList{u"a.txt:1:needle"_s});
    QCOMPARE(fixture.search.results().first().fileURL, QUrl::fromLocalFile(fixture.project.filePath(u"deep/a.txt"_s)));
}

void ProjectSearchTest::eachLineGivesOneResult()
{
    Fixture fixture;
    fixture.write(u"a.txt"_s, "  one one one  ");
    QCOMPARE(fixture.find(u"one"_s), QStringList{u"a.txt:1:  one one one  "_s});
}

void ProjectSearchTest::linesEndAtEachNewline()
{
    Fixture fixture;
    fixture.write(u"a.txt"_s, "x\r\nx\rx\u2028x\n");
    QCOMPARE(fixture.find(u"x"_s), (QStringList{u"a.txt:1:x"_s, u"a.txt:3:x"_s, u"a.txt:4:x"_s, u"a.txt:5:x"_s}));
}

void ProjectSearchTest::hiddenFilesAndFoldersAreLeftOut()
{
    Fixture fixture;
    fixture.write(u".git/config"_s, "word");
    fixture.write(u".hidden"_s, "word");
    fixture.write(u"seen/.also/x"_s, "word");
    QCOMPARE(fixture.find(u"word"_s), QStringList());
}

void ProjectSearchTest::otherFoldersAreAllSearched()
{
    Fixture fixture;
    fixture.write(u"node_modules/a"_s, "word");
    fixture.write(u"build/deep/deeper/b"_s, "word");
    QCOMPARE(fixture.find(u"word"_s).size(), 2);
}

void ProjectSearchTest::binaryAndUnreadableFilesArePassedOver()
{
    Fixture fixture;
    fixture.write(u"binary"_s, QByteArray("word\0\xff\xfe word", 13));
    fixture.write(u"nul"_s, QByteArray("word\0word", 9));
    QCOMPARE(mkfifo(QFile::encodeName(fixture.project.filePath(u"pipe"_s)).constData(), 0600), 0);
    QCOMPARE(fixture.find(u"word"_s).size(), 1);
}

void ProjectSearchTest::linksAreNotFollowed()
{
    Fixture fixture;
    fixture.write(u"real/a"_s, "word");
    QVERIFY(QFile::link(fixture.project.path(), fixture.project.filePath(u"real/loop"_s)));
    QVERIFY(QFile::link(fixture.project.filePath(u"real/a"_s), fixture.project.filePath(u"link"_s)));
    QCOMPARE(fixture.find(u"word"_s).size(), 1);
}

void ProjectSearchTest::anEmptyFolderGivesNothing()
{
    Fixture fixture;
    QCOMPARE(fixture.find(u"word"_s), QStringList());
}

void ProjectSearchTest::aProjectThatIsGoneGivesNothing()
{
    Fixture fixture;
    fixture.project.remove();
    QCOMPARE(fixture.find(u"word"_s), QStringList());
}

void ProjectSearchTest::aLineOfAMegabyteComesWhole()
{
    Fixture fixture;
    const QByteArray line = QByteArray(1'000'000, 'a') + "word" + QByteArray(1000, 'b');
    fixture.write(u"long"_s, line + '\n');
    fixture.find(u"word"_s);
    QCOMPARE(fixture.search.results().size(), 1);
    QCOMPARE(fixture.search.results().first().matchLine.toUtf8(), line);
}

void ProjectSearchTest::aNameMayHoldALineFeed()
{
    Fixture fixture;
    fixture.write(u"two\nlines %20#"_s, "word");
    fixture.find(u"word"_s);
    QCOMPARE(fixture.search.results().first().fileName, u"two\nlines %20#"_s);
    QVERIFY(QFile::exists(fixture.search.results().first().fileURL.toLocalFile()));
}

void ProjectSearchTest::identitiesAreFresh()
{
    Fixture fixture;
    fixture.write(u"a"_s, "word\nword");
    fixture.find(u"word"_s);
    QVERIFY(fixture.search.results().at(0).id != fixture.search.results().at(1).id);
}

void ProjectSearchTest::resultsComeInBatchesInOrder()
{
    Fixture fixture;
    QByteArray lines;
    for (int line = 1; line <= 50'000; ++line) {
        lines += "word " + QByteArray::number(line) + '\n';
    }
    fixture.write(u"a"_s, lines);
    const QSignalSpy batches(&fixture.search, &ProjectSearch::resultsAdded);
    fixture.find(u"word"_s);
    QVERIFY(batches.count() > 1);
    QCOMPARE(fixture.search.results().size(), 50'000);
    for (qsizetype at = 0; at < fixture.search.results().size(); ++at) {
        QCOMPARE(fixture.search.results().at(at).lineNumber, at + 1);
    }
}

void ProjectSearchTest::aNewSearchEndsTheOneBefore()
{
    Fixture fixture;
    fixture.write(u"a"_s, QByteArray("first\n").repeated(200'000));
    fixture.write(u"b"_s, "second\n");
    fixture.search.start(QUrl::fromLocalFile(fixture.project.path()), u"first"_s);
    QTRY_VERIFY(!fixture.search.results().isEmpty());
    QCOMPARE(fixture.find(u"second"_s), QStringList{u"b:1:second"_s});
}

void ProjectSearchTest::anEndedSearchTellsNothing()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("word\n").repeated(300'000));
    file.close();
    {
        ProjectSearch search;
        search.start(QUrl::fromLocalFile(folder.path()), u"word"_s);
        QTRY_VERIFY(!search.results().isEmpty());
    }
    // What was still queued for it is dropped.
    QCoreApplication::processEvents();
}

void ProjectSearchTest::filesThatAreTooLongAreCounted()
{
    Fixture fixture;
    fixture.write(u"short"_s, "word");
    for (const QString& name : {u"a"_s, u"b"_s}) {
        fixture.write(name, "word");
        // The disk keeps nothing of it.
        QVERIFY(QFile::resize(fixture.project.filePath(name), (qint64(1) << 30) + 1));
    }
    const QSignalSpy changes(&fixture.search, &ProjectSearch::tooLongFilesChanged);
    QCOMPARE(fixture.find(u"word"_s), QStringList{u"short:1:word"_s});
    QCOMPARE(fixture.search.tooLongFiles(), qsizetype(2));
    QVERIFY(!changes.isEmpty());
    // They are those of the latest search.
    fixture.search.start(urlOfFile(fixture.project.filePath(u"none"_s)), u"word"_s);
    QCOMPARE(fixture.search.tooLongFiles(), qsizetype(0));
    QTRY_VERIFY(!fixture.search.isRunning());
    QCOMPARE(fixture.search.tooLongFiles(), qsizetype(0));
}

void ProjectSearchTest::quickOpenLooksAtNamesAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("nothing typed") << QString() << QStringList{u"readme.md"_s, u"a.txt"_s, u"Read.txt"_s};
    QTest::newRow("another case") << u"READ"_s << QStringList{u"readme.md"_s, u"Read.txt"_s};
    QTest::newRow("folders are not searched") << u"src"_s << QStringList();
    QTest::newRow("the middle") << u"d.t"_s << QStringList{u"Read.txt"_s};
}

void ProjectSearchTest::quickOpenLooksAtNamesAlone()
{
    QFETCH(QString, text);
    QFETCH(QStringList, names);
    QStringList found;
    for (const QUrl& url : filteredFiles({QUrl::fromLocalFile(u"/src/readme.md"_s),
                                          QUrl::fromLocalFile(u"/src/a.txt"_s), QUrl::fromLocalFile(u"/x/Read.txt"_s)},
                                         text)) {
        found.append(url.fileName());
    }
    QCOMPARE(found, names);
}

const kelm::test::Registered<ProjectSearchTest> registered;

} // namespace project_search_test

#include "project_search_test.moc"
