#include "support/random_text.h"
#include "support/test_program.h"
#include "text/find/find_query.h"

#include <QtTest>

namespace find_query_test {

using namespace kelm;

using Matches = QList<std::pair<int, int>>;

class FindQueryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theEmptyTextFindsNothing();
    void findsAllMatchesInOrder_data();
    void findsAllMatchesInOrder();
    void saysWhyAPatternIsNone_data();
    void saysWhyAPatternIsNone();
    void stopsWhenTheReceiverHasEnough();
    void givesUpAPatternThatExplodes();
    void replacesOneMatch_data();
    void replacesOneMatch();
    void replacesAllAsOneEdit_data();
    void replacesAllAsOneEdit();
    void replacingAllAgreesWithReplacingOneByOne();
    void replacingAMillionMatchesIsLinear();
    void aReplacementTooLongIsNotBuilt();
    void whatIsNotReplacedIsShared();
};

static FindOptions options(const QString& letters)
{
    return {letters.contains(u'c'), letters.contains(u'w'), letters.contains(u'r')};
}

static FindQuery query(const QString& text, const QString& letters)
{
    auto compiled = FindQuery::compile(text, options(letters));
    return std::holds_alternative<FindQuery>(compiled) ? std::get<FindQuery>(compiled) : FindQuery();
}

static Matches matches(const FindQuery& query, const QString& text, qsizetype from = 0)
{
    Matches all;
    query.enumerate(TextTree(text), from, text.size(), [&](TextRange match) {
        all.append({int(match.location), int(match.length)});
        return true;
    });
    return all;
}

void FindQueryTest::theEmptyTextFindsNothing()
{
    for (const QString& letters : {QString(), QStringLiteral("cw"), QStringLiteral("r"), QStringLiteral("rw")}) {
        const auto compiled = FindQuery::compile(QString(), options(letters));
        QVERIFY(std::get<FindQuery>(compiled).isEmpty());
        QVERIFY(matches(std::get<FindQuery>(compiled), QStringLiteral("abc")).isEmpty());
    }
    QVERIFY(FindQuery().isEmpty());
    QCOMPARE(FindQuery().replaceAll(TextTree(u"abc"), u"x").outcome, ReplaceAllResult::Outcome::nothingFound);
    QCOMPARE(FindQuery().replacementFor(TextTree(u"abc"), {0, 0}, u"x"), std::nullopt);
}

void FindQueryTest::findsAllMatchesInOrder_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("letters");
    QTest::addColumn<Matches>("expected");
    const auto row = [](const char* name, const char* text, const char* wanted, const char* letters,
                        const Matches& expected) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(wanted) << QString::fromUtf8(letters)
                            << expected;
    };
    row("none", "abc", "x", "", {});
    row("any case", "ab AB aB", "ab", "", {{0, 2}, {3, 2}, {6, 2}});
    row("case matters", "ab AB ab", "ab", "c", {{0, 2}, {6, 2}});
    row("none overlaps another", "aaaa a", "aa", "", {{0, 2}, {2, 2}});
    row("whole words", "cat concat CAT", "cat", "w", {{0, 3}, {11, 3}});
    row("a pattern's letters are plain", "a.c abc", "a.c", "c", {{0, 3}});
    row("pattern", "a1 b22", "[a-z]\\d+", "r", {{0, 2}, {3, 3}});
    row("pattern in any case", "Ab aB", "ab", "r", {{0, 2}, {3, 2}});
    row("pattern whose case matters", "Ab ab", "ab", "rc", {{3, 2}});
    row("anchors at lines", "ab\nab\r\nab", "^a|b$", "r", {{0, 1}, {1, 1}, {3, 1}, {4, 1}, {7, 1}, {8, 1}});
    row("a full stop ends at lines", "ab\ncd", ".+", "r", {{0, 2}, {3, 2}});
    row("empty matches advance", "ab", "x*", "r", {{0, 0}, {1, 0}, {2, 0}});
    row("an empty match behind a match", "aab", "a*", "r", {{0, 2}, {2, 0}, {3, 0}});
    row("empty matches step over pairs", "😀", "x*", "r", {{0, 0}, {2, 0}});
    row("line starts", "a\nb\n", "^", "r", {{0, 0}, {2, 0}});
    row("whole words of a pattern", "ab abc ab", "[a-z]b", "rw", {{0, 2}, {7, 2}});
    row("a pattern tries another way for whole words", "ab a", "a|ab", "rw", {{0, 2}, {3, 1}});
    row("whole words of an alternative", "xa b", "a|b", "rw", {{3, 1}});
    row("whole words of no word", "f(x)", "\\(", "rw", {{1, 1}});
    row("whole words and a comment", "a ab", "(?x) a # one", "rw", {{0, 1}});
    row("whole words and an open quotation", "a.b a.bc axb", "\\Qa.b", "rw", {{0, 3}});
    row("looking around", "ab cb", "(?<=a)b", "r", {{1, 1}});
    row("Korean", "한글 한 글", "한.", "r", {{0, 2}, {3, 2}});
    row("emoji are one character", "a😀b", "a.b", "r", {{0, 4}});
}

void FindQueryTest::findsAllMatchesInOrder()
{
    QFETCH(QString, text);
    QFETCH(QString, wanted);
    QFETCH(QString, letters);
    QFETCH(Matches, expected);
    QVERIFY(std::holds_alternative<FindQuery>(FindQuery::compile(wanted, options(letters))));
    QCOMPARE(matches(query(wanted, letters), text), expected);
}

void FindQueryTest::saysWhyAPatternIsNone_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("message");
    QTest::newRow("parenthesis") << QStringLiteral("a(b") << QStringLiteral("Unbalanced parentheses");
    QTest::newRow("bracket") << QStringLiteral("[a") << QStringLiteral("A bracket is not closed");
    QTest::newRow("interval") << QStringLiteral("a{2,1}")
                              << QStringLiteral("In a {min,max} interval, max is less than min");
    QTest::newRow("escape") << QStringLiteral("\\") << QStringLiteral("Unknown escape sequence");
    QTest::newRow("property") << QStringLiteral("\\p{Nonsense}") << QStringLiteral("Unknown character property");
    QTest::newRow("reference") << QStringLiteral("\\2") << QStringLiteral("Reference to a group that does not exist");
    QTest::newRow("looking behind") << QStringLiteral("(?<=a*)b")
                                    << QStringLiteral("What is looked behind for must be bounded in length");
    QTest::newRow("nothing to repeat") << QStringLiteral("*a") << QStringLiteral("Syntax error in the pattern");
    QTest::newRow("closing what whole words open")
        << QStringLiteral("a)|(b") << QStringLiteral("Unbalanced parentheses");
}

void FindQueryTest::saysWhyAPatternIsNone()
{
    QFETCH(QString, pattern);
    QFETCH(QString, message);
    for (const QString& letters : {QStringLiteral("r"), QStringLiteral("rcw")}) {
        const auto compiled = FindQuery::compile(pattern, options(letters));
        QVERIFY(std::holds_alternative<FindError>(compiled));
        QCOMPARE(std::get<FindError>(compiled).message, message);
        QVERIFY(std::get<FindError>(compiled).offset <= pattern.size());
    }
    // The same as plain text is looked for.
    QCOMPARE(matches(query(pattern, QString()), pattern).size(), 1);
}

void FindQueryTest::stopsWhenTheReceiverHasEnough()
{
    for (const QString& letters : {QString(), QStringLiteral("r")}) {
        int count = 0;
        const auto ending =
            query(QStringLiteral("a"), letters).enumerate(TextTree(u"aaaa"), 1, 4, [&](TextRange match) {
                return match.location == ++count && count < 2;
            });
        QCOMPARE(ending, FindQuery::Ending::stopped);
        QCOMPARE(count, 2);
    }
}

void FindQueryTest::givesUpAPatternThatExplodes()
{
    const FindQuery pattern = query(QStringLiteral("(a+)+$b|(a|aa)+x"), QStringLiteral("rc"));
    const QString text = QString(5000, u'a') + u'!';
    const auto ending = pattern.enumerate(TextTree(text), 0, text.size(), [](TextRange) { return true; });
    QCOMPARE(ending, FindQuery::Ending::gaveUp);
    const ReplaceAllResult replaced = pattern.replaceAll(TextTree(text), u"x");
    QCOMPARE(replaced.outcome, ReplaceAllResult::Outcome::gaveUp);
    QVERIFY(replaced.text.isEmpty());
    QCOMPARE(replaced.count, 0);
}

void FindQueryTest::replacesOneMatch_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("letters");
    QTest::addColumn<int>("location");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* text, const char* wanted, const char* letters, int location,
                        int length, const char* replacement, const QString& expected) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(wanted) << QString::fromUtf8(letters)
                            << location << length << QString::fromUtf8(replacement) << expected;
    };
    row("plain", "a b a", "a", "", 4, 1, "x", QStringLiteral("x"));
    row("plain text knows no template", "a", "a", "", 0, 1, "$0\\$", QStringLiteral("$0\\$"));
    row("group", "key=1", "(\\w+)=(\\d)", "r", 0, 5, "$2=$1", QStringLiteral("1=key"));
    row("whole match", "ab", "b", "r", 1, 1, "[$0]", QStringLiteral("[b]"));
    row("escaped", "ab", "b", "r", 1, 1, "\\$0\\\\", QStringLiteral("$0\\"));
    row("group that took no part", "b", "(a)?b", "r", 0, 1, "<$1>", QStringLiteral("<>"));
    row("empty match", "ab", "(?=b)", "r", 1, 0, "-", QStringLiteral("-"));
    row("what is looked behind for is seen", "ab", "(?<=a)b", "r", 1, 1, "x", QStringLiteral("x"));
    row("groups of whole words", "ab", "(a)(b)", "rw", 0, 2, "$2$1", QStringLiteral("ba"));
    row("empty replacement", "a", "a", "", 0, 1, "", QStringLiteral(""));
}

void FindQueryTest::replacesOneMatch()
{
    QFETCH(QString, text);
    QFETCH(QString, wanted);
    QFETCH(QString, letters);
    QFETCH(int, location);
    QFETCH(int, length);
    QFETCH(QString, replacement);
    QFETCH(QString, expected);
    const FindQuery compiled = query(wanted, letters);
    QCOMPARE(compiled.replacementFor(TextTree(text), {location, length}, replacement), std::optional(expected));
    // What is no match is not replaced.
    QCOMPARE(compiled.replacementFor(TextTree(text), {location, length + 1}, replacement), std::nullopt);
    QCOMPARE(compiled.replacementFor(TextTree(u"zzzzzzzz"), {location, length}, replacement), std::nullopt);
    QCOMPARE(compiled.replacementFor(TextTree(text), {100, length}, replacement), std::nullopt);
}

void FindQueryTest::replacesAllAsOneEdit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("letters");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("location");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* text, const char* wanted, const char* letters,
                        const char* replacement, int count, int location, int length, const char* expected) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(wanted) << QString::fromUtf8(letters)
                            << QString::fromUtf8(replacement) << count << location << length
                            << QString::fromUtf8(expected);
    };
    row("from the first to the last", "x a y a z", "a", "", "bb", 2, 2, 5, "bb y bb");
    row("one", "xax", "a", "", "", 1, 1, 1, "");
    row("adjoining", "aaa", "a", "", "b", 3, 0, 3, "bbb");
    row("groups", "a=1\r\nb=2\r\n", "(\\w)=(\\w)", "r", "$2=$1", 2, 0, 8, "1=a\r\n2=b");
    row("empty matches", "ab", "x*", "r", "-", 3, 0, 2, "-a-b-");
    row("line starts", "a\nb", "^", "r", "> ", 2, 0, 2, "> a\n> ");
    row("whole words", "cat concat cat", "cat", "w", "dog", 2, 0, 14, "dog concat dog");
    row("what grows is not searched again", "aa", "a", "", "aa", 2, 0, 2, "aaaa");
    row("Korean and emoji", "한😀글😀", "😀", "", "-", 2, 1, 5, "-글-");
}

void FindQueryTest::replacesAllAsOneEdit()
{
    QFETCH(QString, text);
    QFETCH(QString, wanted);
    QFETCH(QString, letters);
    QFETCH(QString, replacement);
    QFETCH(int, count);
    QFETCH(int, location);
    QFETCH(int, length);
    QFETCH(QString, expected);
    const ReplaceAllResult result = query(wanted, letters).replaceAll(TextTree(text), replacement);
    QCOMPARE(result.outcome, ReplaceAllResult::Outcome::replaced);
    QCOMPARE(result.count, count);
    QCOMPARE(result.range, (TextRange{location, length}));
    QCOMPARE(result.text.toString(), expected);
    QCOMPARE(query(wanted, letters).replaceAll(TextTree(u"zz"), replacement).outcome,
             wanted == u"x*" || wanted == u"^" ? ReplaceAllResult::Outcome::replaced
                                               : ReplaceAllResult::Outcome::nothingFound);
}

void FindQueryTest::replacingAllAgreesWithReplacingOneByOne()
{
    test::RandomText random;
    const QStringList wanted{QStringLiteral("a"),      QStringLiteral("[ab]+"), QStringLiteral("\\s*"),
                             QStringLiteral("(.)\\1"), QStringLiteral("^|$"),   QStringLiteral("b(?=\\n)"),
                             QStringLiteral("w|\\r")};
    for (int i = 0; i < 1000; ++i) {
        const QString text = random.text(30);
        const FindQuery compiled = query(wanted[random.below(wanted.size())], QStringLiteral("r"));
        QString expected = text;
        Matches all = matches(compiled, text);
        for (auto match = all.rbegin(); match != all.rend(); ++match) {
            const auto with = compiled.replacementFor(TextTree(text), {match->first, match->second}, u"<$0>");
            QVERIFY(with);
            expected.replace(match->first, match->second, *with);
        }
        const ReplaceAllResult result = compiled.replaceAll(TextTree(text), u"<$0>");
        QCOMPARE(result.count, all.size());
        QCOMPARE(QString(text).replace(result.range.location, result.range.length, result.text.toString()), expected);
    }
}

void FindQueryTest::replacingAMillionMatchesIsLinear()
{
    const QString text = QStringLiteral("ab\n").repeated(1'000'000);
    for (const QString& letters : {QString(), QStringLiteral("r")}) {
        const ReplaceAllResult result = query(QStringLiteral("b"), letters).replaceAll(TextTree(text), u"xyz");
        QCOMPARE(result.count, 1'000'000);
        QCOMPARE(result.text.length(), 5 * 1'000'000 - 2);
    }
}

void FindQueryTest::aReplacementTooLongIsNotBuilt()
{
    for (const QString& letters : {QString(), QStringLiteral("r")}) {
        const FindQuery compiled = query(QStringLiteral("b"), letters);
        QCOMPARE(compiled.replaceAll(TextTree(u"ab ab ab"), u"xyz", 3 + 2 + 3 + 2 + 3).outcome,
                 ReplaceAllResult::Outcome::replaced);
        const ReplaceAllResult tooLong = compiled.replaceAll(TextTree(u"ab ab ab"), u"xyz", 3 + 2 + 3 + 2 + 2);
        QCOMPARE(tooLong.outcome, ReplaceAllResult::Outcome::tooLong);
        QVERIFY(tooLong.text.isEmpty());
        QCOMPARE(tooLong.count, 0);
    }
}

void FindQueryTest::whatIsNotReplacedIsShared()
{
    const QString far = QStringLiteral("text ").repeated(200'000);
    const TextTree text(QStringLiteral("b") + far + QStringLiteral("b b b") + far + QStringLiteral("b"));
    QSet<const QChar*> pieces;
    text.forEachPiece({0, text.length()}, [&pieces](QStringView piece) {
        pieces.insert(piece.data());
        return true;
    });
    for (const QString& letters : {QString(), QStringLiteral("r")}) {
        const ReplaceAllResult result = query(QStringLiteral("b"), letters).replaceAll(text, u"xyz");
        QCOMPARE(result.count, 5);
        QVERIFY(result.text == text.toString().replace(u'b', QStringLiteral("xyz")));
        qsizetype copied = 0;
        result.text.forEachPiece({0, result.text.length()}, [&](QStringView piece) {
            copied += pieces.contains(piece.data()) ? 0 : piece.size();
            return true;
        });
        QVERIFY2(copied < 50'000, qPrintable(QString::number(copied)));
    }
}

const kelm::test::Registered<FindQueryTest> registered;

} // namespace find_query_test

#include "find_query_test.moc"
