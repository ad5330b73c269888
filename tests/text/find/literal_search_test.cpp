#include "support/random_text.h"
#include "support/test_program.h"
#include "text/boundaries/word_boundary.h"
#include "text/find/literal_search.h"

#include <QtTest>

namespace literal_search_test {

using namespace kelm;

class LiteralSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheFirstPlace_data();
    void findsTheFirstPlace();
    void wholeWordsEndWhereWordsEnd_data();
    void wholeWordsEndWhereWordsEnd();
    void searchesWithinItsRangeAlone();
    void unitsCompareByTheirSimpleFolding_data();
    void unitsCompareByTheirSimpleFolding();
    void agreesWithTheNaiveSearch();
    void repetitionIsNoTrap();
};

using Case = LiteralSearch::Case;
using Words = LiteralSearch::Words;

static qsizetype firstPlace(const QString& text, const QString& wanted, Case letterCase, Words words = Words::partsToo)
{
    const auto match = LiteralSearch(wanted, letterCase, words).find(text, {0, text.size()});
    return match && match->length == wanted.size() ? match->location : -1;
}

void LiteralSearchTest::findsTheFirstPlace_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<int>("exact");
    QTest::addColumn<int>("anyCase");
    const auto row = [](const char* name, const QString& text, const QString& wanted, int exact, int anyCase) {
        QTest::newRow(name) << text << wanted << exact << anyCase;
    };
    row("nothing wanted", QStringLiteral("abc"), QString(), -1, -1);
    row("nothing there", QString(), QStringLiteral("a"), -1, -1);
    row("at the start", QStringLiteral("abc"), QStringLiteral("ab"), 0, 0);
    row("at the end", QStringLiteral("abc"), QStringLiteral("bc"), 1, 1);
    row("longer than the text", QStringLiteral("abc"), QStringLiteral("abcd"), -1, -1);
    row("another case first", QStringLiteral("AB ab"), QStringLiteral("ab"), 3, 0);
    row("another case wanted", QStringLiteral("ab AB"), QStringLiteral("AB"), 3, 0);
    row("after a false start", QStringLiteral("aabaaab"), QStringLiteral("aaab"), 3, 3);
    row("Korean", QStringLiteral("가나다 나다"), QStringLiteral("나다"), 1, 1);
    row("Korean letters apart", QStringLiteral("\u1112\u1161\u11ab"), QStringLiteral("한"), -1, -1);
    row("emoji", QStringLiteral("a😀b😁"), QStringLiteral("😁"), 4, 4);
    row("half a pair", QStringLiteral("😀"), QString(QChar(0xde00)), 1, 1);
    row("over a pair of line ends", QStringLiteral("a\r\nb"), QStringLiteral("\r\nB"), -1, 1);
    row("a line feed in a pair", QStringLiteral("a\r\nb"), QStringLiteral("\n"), 2, 2);
    row("NUL", QStringLiteral("a") + QChar(0) + QStringLiteral("b"), QChar(0) + QStringLiteral("B"), -1, 1);
    row("before a combining mark", QStringLiteral("e\u0301"), QStringLiteral("e"), 0, 0);
    row("Greek", QStringLiteral("ΟΔΟΣ"), QStringLiteral("οδος"), -1, 0);
}

void LiteralSearchTest::findsTheFirstPlace()
{
    QFETCH(QString, text);
    QFETCH(QString, wanted);
    QFETCH(int, exact);
    QFETCH(int, anyCase);
    QCOMPARE(firstPlace(text, wanted, Case::matters), exact);
    QCOMPARE(firstPlace(text, wanted, Case::isIgnored), anyCase);
}

void LiteralSearchTest::wholeWordsEndWhereWordsEnd_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<int>("place");
    const auto row = [](const char* name, const QString& text, const QString& wanted, int place) {
        QTest::newRow(name) << text << wanted << place;
    };
    row("alone", QStringLiteral("cat"), QStringLiteral("cat"), 0);
    row("within", QStringLiteral("concat catch cat"), QStringLiteral("cat"), 13);
    row("nowhere", QStringLiteral("concat catch"), QStringLiteral("cat"), -1);
    row("underscore and digit", QStringLiteral("cat_ 1cat cat2 (cat)"), QStringLiteral("cat"), 16);
    row("punctuation", QStringLiteral("a.b"), QStringLiteral("b"), 2);
    row("begins with no word", QStringLiteral("f(x)"), QStringLiteral("(x"), 1);
    row("ends with no word", QStringLiteral("f(x)"), QStringLiteral("f("), 0);
    row("no word at all", QStringLiteral("a+=b"), QStringLiteral("+="), 1);
    row("two words", QStringLiteral("xone two one two"), QStringLiteral("one two"), 9);
    row("Korean", QStringLiteral("한글은 한글"), QStringLiteral("한글"), 4);
    row("combining mark behind", QStringLiteral("cafe\u0301 cafe"), QStringLiteral("cafe"), 6);
    row("emoji is no word", QStringLiteral("😀cat😀"), QStringLiteral("cat"), 2);
    row("a letter beyond the basic plane", QStringLiteral("𐐨cat cat𐐨 cat"), QStringLiteral("cat"), 12);
    row("overlapping candidates", QStringLiteral("aab-aabaab- aab"), QStringLiteral("aab"), 0);
    row("a later candidate overlaps", QStringLiteral("xab-ab-ab x"), QStringLiteral("ab-ab"), 4);
}

void LiteralSearchTest::wholeWordsEndWhereWordsEnd()
{
    QFETCH(QString, text);
    QFETCH(QString, wanted);
    QFETCH(int, place);
    QCOMPARE(firstPlace(text, wanted, Case::matters, Words::wholeOnly), place);
}

void LiteralSearchTest::searchesWithinItsRangeAlone()
{
    const LiteralSearch search(u"ab", Case::matters, Words::partsToo);
    const QString text = QStringLiteral("ab ab ab");
    QCOMPARE(search.find(text, {0, 2}), std::optional(TextRange{0, 2}));
    QCOMPARE(search.find(text, {1, 7}), std::optional(TextRange{3, 2}));
    QCOMPARE(search.find(text, {1, 3}), std::nullopt);
    QCOMPARE(search.find(text, {4, 100}), std::optional(TextRange{6, 2}));
    QCOMPARE(search.find(text, {100, 1}), std::nullopt);
    // What stands outside still makes a word.
    const LiteralSearch word(u"b", Case::matters, Words::wholeOnly);
    QCOMPARE(word.find(u"ab", {1, 1}), std::nullopt);
}

void LiteralSearchTest::unitsCompareByTheirSimpleFolding_data()
{
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("equal");
    QTest::newRow("Kelvin sign") << QStringLiteral("\u212a") << QStringLiteral("k") << true;
    QTest::newRow("long s") << QStringLiteral("ſ") << QStringLiteral("S") << true;
    QTest::newRow("sigmas") << QStringLiteral("ς") << QStringLiteral("Σ") << true;
    QTest::newRow("capital sharp s") << QStringLiteral("ẞ") << QStringLiteral("ß") << true;
    QTest::newRow("sharp s keeps its length") << QStringLiteral("ß") << QStringLiteral("ss") << false;
    QTest::newRow("dotted i") << QStringLiteral("İ") << QStringLiteral("i") << false;
    QTest::newRow("dotless i") << QStringLiteral("ı") << QStringLiteral("I") << false;
    QTest::newRow("accents") << QStringLiteral("É") << QStringLiteral("é") << true;
    QTest::newRow("accents count") << QStringLiteral("É") << QStringLiteral("e") << false;
    QTest::newRow("forms of an accent") << QStringLiteral("é") << QStringLiteral("e\u0301") << false;
    QTest::newRow("beyond the basic plane") << QStringLiteral("𐐀") << QStringLiteral("𐐨") << false;
}

void LiteralSearchTest::unitsCompareByTheirSimpleFolding()
{
    QFETCH(QString, one);
    QFETCH(QString, other);
    QFETCH(bool, equal);
    QCOMPARE(firstPlace(one, other, Case::isIgnored) == 0, equal);
    QCOMPARE(firstPlace(other, one, Case::isIgnored) == 0, equal);
    QVERIFY(firstPlace(one, other, Case::matters) < 0);
}

void LiteralSearchTest::agreesWithTheNaiveSearch()
{
    test::RandomText random;
    const QStringList pieces{QStringLiteral("a"), QStringLiteral("ab"), QStringLiteral("A"),
                             QStringLiteral(" "), QStringLiteral("b"),  QStringLiteral("_")};
    for (int i = 0; i < 5000; ++i) {
        QString text;
        QString wanted;
        for (qsizetype j = random.below(20); j > 0; --j) {
            text += random.below(9) == 0 ? random.text(2) : pieces[random.below(pieces.size())];
        }
        for (qsizetype j = random.below(4); j >= 0; --j) {
            wanted += pieces[random.below(pieces.size())];
        }
        const bool ignores = random.below(2) == 0;
        const bool whole = random.below(2) == 0;
        const TextRange range = random.range(text.size());
        std::optional<TextRange> expected;
        for (qsizetype at = range.location; at + wanted.size() <= range.end() && !expected; ++at) {
            const QStringView there = QStringView(text).sliced(at, wanted.size());
            if (there.compare(wanted, ignores ? Qt::CaseInsensitive : Qt::CaseSensitive) == 0 &&
                !(whole && (isInsideWord(text, at) || isInsideWord(text, at + wanted.size())))) {
                expected = TextRange{at, wanted.size()};
            }
        }
        const LiteralSearch search(wanted, ignores ? Case::isIgnored : Case::matters,
                                   whole ? Words::wholeOnly : Words::partsToo);
        QCOMPARE(search.find(text, range), expected);
    }
}

void LiteralSearchTest::repetitionIsNoTrap()
{
    // A search that begins anew at each place would take 10^12 steps.
    const QString text(2'000'000, u'a');
    const QString half(1'000'000, u'a');
    QCOMPARE(firstPlace(text, half + u'b', Case::matters), -1);
    QCOMPARE(firstPlace(text, u'b' + half, Case::isIgnored), -1);
    QCOMPARE(firstPlace(text, half, Case::isIgnored, Words::wholeOnly), -1);
    QCOMPARE(firstPlace(text + u' ' + half, half, Case::isIgnored, Words::wholeOnly), 2'000'001);
}

const kelm::test::Registered<LiteralSearchTest> registered;

} // namespace literal_search_test

#include "literal_search_test.moc"
