#include "platform/text/regular_expression.h"
#include "support/test_program.h"

#include <QtTest>

#include <thread>

namespace regular_expression_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

using Range = RegularExpressionMatch::Range;
using Ending = RegularExpression::Ending;

namespace {

RegularExpression compiled(QStringView pattern, RegularExpression::Options options = RegularExpression::none)
{
    const auto expression = RegularExpression::compile(pattern, options);
    return expression.value();
}

QString found(const RegularExpression& expression, QStringView text, qsizetype from = 0)
{
    QStringList ranges;
    for (const RegularExpressionMatch& match : expression.matches(text, from)) {
        ranges += QStringLiteral("%1+%2").arg(match.location()).arg(match.length());
    }
    return ranges.join(u' ');
}

} // namespace

class RegularExpressionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesHaveUtf16Offsets_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<RegularExpression::Options>("options");
        QTest::addColumn<QString>("ranges");
        using Options = RegularExpression::Options;
        const Options none = RegularExpression::none;
        const Options everyLine = RegularExpression::anchorsMatchLines;
        QTest::newRow("nothing") << u"a"_s << u"bcd"_s << none << QString();
        QTest::newRow("in an empty text") << u"a"_s << QString() << none << QString();
        QTest::newRow("an empty match in an empty text") << u"a*"_s << QString() << none << u"0+0"_s;
        QTest::newRow("all, none overlapping") << u"aa"_s << u"aaaaa"_s << none << u"0+2 2+2"_s;
        QTest::newRow("empty matches between") << u"x*"_s << u"axb"_s << none << u"0+0 1+1 2+0 3+0"_s;
        QTest::newRow("the empty pattern matches everywhere") << QString() << u"ab"_s << none << u"0+0 1+0 2+0"_s;
        QTest::newRow("behind an emoji") << u"b"_s << u"a😀b"_s << none << u"3+1"_s;
        QTest::newRow("an emoji is one character") << u"a.b"_s << u"a😀b"_s << none << u"0+4"_s;
        QTest::newRow("a lone surrogate is one too")
            << u"a.b"_s << QString(u"a"_s + QChar(0xd83d) + u"b"_s) << none << u"0+3"_s;
        QTest::newRow("NUL is a character") << u"\\x{0}b"_s << QString(u"a"_s + QChar(0) + u"b"_s) << none << u"1+2"_s;
        QTest::newRow("anchors match the text's ends") << u"^.*$"_s << u"a\nb"_s << none << QString();
        QTest::newRow("anchors match every line")
            << u"^.*$"_s << u"a\nb\r\nc\u2028d"_s << everyLine << u"0+1 2+1 5+1 7+1"_s;
        QTest::newRow("letter case counts") << u"a"_s << u"Aa"_s << none << u"1+1"_s;
        QTest::newRow("and does not") << u"é"_s << u"É"_s << Options(RegularExpression::caseInsensitive) << u"0+1"_s;
        QTest::newRow("a point stops at line ends") << u"a.*"_s << u"ab\nc"_s << none << u"0+2"_s;
        QTest::newRow("and does not") << u"a.*"_s << u"ab\nc"_s << Options(RegularExpression::dotMatchesLineSeparators)
                                      << u"0+4"_s;
        QTest::newRow("digits of every script") << u"\\d+"_s << u"1\u0663x"_s << none << u"0+2"_s;
        QTest::newRow("a boundary looks through marks") << u"a\\b"_s << u"a\u0301 a"_s << none << u"3+1"_s;
    }
    void matchesHaveUtf16Offsets()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(RegularExpression::Options, options);
        QFETCH(QString, ranges);
        QCOMPARE(found(compiled(pattern, options), text), ranges);
    }

    void aSearchMayBeginInsideTheText()
    {
        const RegularExpression word = compiled(u"\\bb|^b");
        QCOMPARE(found(word, u"ab b", 1), u"3+1"_s);
        QCOMPARE(found(word, u"b", 1), QString());
        QCOMPARE(found(word, u"b", -5), u"0+1"_s);
        QCOMPARE(found(word, u"b", 99), QString());
        QCOMPARE(compiled(u"b").firstMatch(u"abab", 2)->location(), 3);
        QVERIFY(!compiled(u"c").firstMatch(u"abab"));
        QVERIFY(compiled(u"b").matchesIn(u"abab"));
        QVERIFY(!compiled(u"c").matchesIn(u"abab"));
    }

    void groupsAreTold()
    {
        const QString text = u"key=值"_s;
        const RegularExpression expression = compiled(u"(\\w+)(:)?=(.)()");
        QCOMPARE(expression.groupCount(), 4);
        const auto match = expression.firstMatch(text);
        QVERIFY(match);
        QCOMPARE(match->groupCount(), 4);
        QCOMPARE(match->group(0), std::optional<Range>({0, 5}));
        QCOMPARE(match->group(1), std::optional<Range>({0, 3}));
        QVERIFY(!match->group(2));
        QCOMPARE(match->group(3), std::optional<Range>({4, 1}));
        QCOMPARE(match->group(4), std::optional<Range>({5, 0}));
        QVERIFY(!match->group(5));
        QVERIFY(!match->group(-1));
        QCOMPARE(match->groupText(3, text), u"值");
        QVERIFY(match->groupText(2, text).isNull());
        QVERIFY(!match->groupText(4, text).isNull());
    }

    void aBadPatternIsAValue_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("name");
        QTest::addColumn<qsizetype>("offset");
        QTest::newRow("an open group") << u"a(b"_s << u"U_REGEX_MISMATCHED_PAREN"_s << qsizetype(3);
        QTest::newRow("an open group with half a control")
            << u"(\\c-d"_s << u"U_REGEX_MISMATCHED_PAREN"_s << qsizetype(5);
        QTest::newRow("an open set") << u"[a"_s << u"U_REGEX_MISSING_CLOSE_BRACKET"_s << qsizetype(2);
        QTest::newRow("nothing to repeat") << u"*a"_s << u"U_REGEX_RULE_SYNTAX"_s << qsizetype(1);
        QTest::newRow("a lone backslash") << u"a\\"_s << u"U_REGEX_BAD_ESCAPE_SEQUENCE"_s << qsizetype(2);
    }
    void aBadPatternIsAValue()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, name);
        QFETCH(qsizetype, offset);
        RegularExpressionError error;
        QVERIFY(!RegularExpression::compile(pattern, RegularExpression::none, &error));
        QCOMPARE(error.name, name);
        QCOMPARE(error.offset, offset);
        QVERIFY(!RegularExpression::compile(pattern));
    }

    void aReceiverMayHaveEnough()
    {
        int count = 0;
        const auto ending = compiled(u"a").enumerateMatches(u"aaaa", 0, [&](const auto&) { return ++count < 2; });
        QVERIFY(ending == Ending::stopped);
        QCOMPARE(count, 2);
        QVERIFY(compiled(u"a").enumerateMatches(u"aaaa", 0, [](const auto&) { return true; }) == Ending::complete);
    }

    void aPatternThatExplodesGivesUp()
    {
        RegularExpression expression = compiled(u"(a+)+b");
        expression.setEffort(RegularExpression::typedPatternEffort);
        const QString text(60, u'a');
        QVERIFY(expression.enumerateMatches(text, 0, [](const auto&) { return true; }) == Ending::gaveUp);
        QVERIFY(expression.matches(text).empty());
        QCOMPARE(expression.replaceMatches(text, u"x"), text);
    }

    void theBoundHoldsForAllMatchesTogether()
    {
        RegularExpression expression = compiled(u"a*b|x");
        expression.setEffort({100, 0});
        const QString text = (u'x' + QString(1500, u'a')).repeated(200);
        std::size_t count = 0;
        QVERIFY(expression.enumerateMatches(text, 0, [&](const auto&) { return ++count > 0; }) == Ending::gaveUp);
        QVERIFY(count > 0 && count < 200);
    }

    void theBoundSparesOrdinarySearches()
    {
        RegularExpression expression = compiled(u"\\b(\\w+)\\s*=\\s*\"[^\"]*\"");
        expression.setEffort(RegularExpression::typedPatternEffort);
        const QString text = u"name = \"value\"\n"_s.repeated(20'000);
        std::size_t count = 0;
        QVERIFY(expression.enumerateMatches(text, 0, [&](const auto&) { return ++count > 0; }) == Ending::complete);
        QCOMPARE(count, std::size_t(20'000));
    }

    void theStackIsBoundOnlyWhenAskedFor()
    {
        RegularExpression expression = compiled(u"\"(?:[^\"\\\\]|\\\\.)*\"");
        const QString text = u'"' + QString(1'000'000, u'a') + u'"';
        QCOMPARE(found(expression, text), u"0+1000002"_s);
        expression.setEffort({0, 1'000'000});
        QVERIFY(expression.enumerateMatches(text, 0, [](const auto&) { return true; }) == Ending::gaveUp);
    }

    void templatesStandForGroups_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<QString>("result");
        QTest::newRow("plain") << u"b"_s << u"x"_s << u"axc"_s;
        QTest::newRow("nothing") << u"b"_s << QString() << u"ac"_s;
        QTest::newRow("the whole match") << u"b"_s << u"<$0>"_s << u"a<b>c"_s;
        QTest::newRow("groups") << u"(a)(b)"_s << u"$2$1"_s << u"bac"_s;
        QTest::newRow("a group that took no part") << u"(x)?b"_s << u"[$1]"_s << u"a[]c"_s;
        QTest::newRow("a group that does not exist") << u"(b)"_s << u"[$2]"_s << u"a[]c"_s;
        QTest::newRow("one digit for few groups") << u"(b)"_s << u"$12"_s << u"ab2c"_s;
        QTest::newRow("two digits for many groups") << u"(b)()()()()()()()()()(c)"_s << u"$11$01$1x"_s << u"acbbx"_s;
        QTest::newRow("a lone dollar") << u"b"_s << u"$ $x$"_s << u"a$ $x$c"_s;
        QTest::newRow("an escaped dollar") << u"b"_s << u"\\$0"_s << u"a$0c"_s;
        QTest::newRow("an escaped backslash") << u"b"_s << u"\\\\$0"_s << u"a\\bc"_s;
        QTest::newRow("an escaped letter is itself") << u"b"_s << u"\\n"_s << u"anc"_s;
        QTest::newRow("a backslash at the end") << u"b"_s << u"x\\"_s << u"ax\\c"_s;
        QTest::newRow("other digits are none") << u"b"_s << u"$\u0661"_s << u"a$\u0661c"_s;
        QTest::newRow("empty matches") << u"x*"_s << u"-"_s << u"-a-b-c-"_s;
        QTest::newRow("the replacement is not searched again") << u"b"_s << u"bb"_s << u"abbc"_s;
    }
    void templatesStandForGroups()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, replacement);
        QFETCH(QString, result);
        QCOMPARE(compiled(pattern).replaceMatches(u"abc", replacement), result);
    }

    void escapedTextStandsForItself()
    {
        QString odd;
        for (char16_t c = 1; c < 0x250; ++c) {
            odd += QChar(c);
        }
        odd += u"한글 😀\u2028"_s;
        QCOMPARE(found(compiled(RegularExpression::escapedPattern(odd)), QString(u"x"_s + odd + u"x"_s)),
                 QStringLiteral("1+%1").arg(odd.size()));
        QCOMPARE(compiled(u"b").replaceMatches(u"abc", RegularExpression::escapedTemplate(odd)),
                 QString(u"a"_s + odd + u"c"_s));
        QVERIFY(compiled(u'[' + RegularExpression::escapedPattern(u"]-&[^") + u']').matchesIn(u"-"));
    }

    void aCopySearchesOnItsOwn()
    {
        // A search inside a search, and searches on several threads, on one and the same expression.
        const RegularExpression expression = compiled(u"\\w+");
        const QString text = u"one two three "_s.repeated(200);
        int pairs = 0;
        expression.enumerateMatches(text, 0, [&](const RegularExpressionMatch&) {
            pairs += static_cast<int>(expression.matches(u"a b").size());
            return true;
        });
        QCOMPARE(pairs, 1200);
        std::vector<std::size_t> counts(4);
        std::vector<std::thread> threads;
        for (std::size_t& count : counts) {
            threads.emplace_back([&count, copy = expression, &text] { count = copy.matches(text).size(); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QCOMPARE(counts, std::vector<std::size_t>(4, 600));
    }
};

const kelm::test::Registered<RegularExpressionTest> registered;

} // namespace regular_expression_test

#include "regular_expression_test.moc"
