#include "editor/transforms/bounded_text.h"
#include "editor/transforms/json_formatter.h"
#include "editor/transforms/json_key.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace json_formatter_test {

using namespace kelm;

class JsonFormatterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsOneKeyOrElementALine_data();
    void printsOneKeyOrElementALine();
    void keepsTheDigitsOfNumbers_data();
    void keepsTheDigitsOfNumbers();
    void escapesWhatMustBeEscapedAndNothingElse_data();
    void escapesWhatMustBeEscapedAndNothingElse();
    void sortsKeysInThePrintersOrder_data();
    void sortsKeysInThePrintersOrder();
    void sortedMembersKeepTheirNestedObjects();
    void theLastOfEqualKeysCounts_data();
    void theLastOfEqualKeysCounts();
    void anotherIndentReplacesEachTwoBlanks_data();
    void anotherIndentReplacesEachTwoBlanks();
    void givesBackWhatIsNotJson_data();
    void givesBackWhatIsNotJson();
    void givesBackUnpairedSurrogates();
    void everyCutOffTextComesBackAsItWas();
    void deepNestingNeitherOverflowsNorGrowsWithoutBound();
    void formattingTwiceChangesNothingMore();
};

static QString format(const QString& text)
{
    return JSONFormatter::format(text, 2);
}

void JsonFormatterTest::printsOneKeyOrElementALine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("printed");
    QTest::newRow("empty object") << QStringLiteral("{}") << QStringLiteral("{\n\n}");
    QTest::newRow("empty array with blanks") << QStringLiteral(" \t\r\n[ \n ] ") << QStringLiteral("[\n\n]");
    QTest::newRow("b before a") << QStringLiteral("{\"b\":1,\"a\":2}")
                                << QStringLiteral("{\n  \"a\" : 2,\n  \"b\" : 1\n}");
    QTest::newRow("literals") << QStringLiteral("[true,false,null]")
                              << QStringLiteral("[\n  true,\n  false,\n  null\n]");
    QTest::newRow("nested empties") << QStringLiteral("{\"a\":[],\"b\":{},\"c\":[{}]}")
                                    << QStringLiteral(
                                           "{\n  \"a\" : [\n\n  ],\n  \"b\" : {\n\n  },\n  \"c\" : [\n    {\n\n"
                                           "    }\n  ]\n}");
    QTest::newRow("nested") << QStringLiteral("[[1,[2]],{\"k\":[3]}]")
                            << QStringLiteral(
                                   "[\n  [\n    1,\n    [\n      2\n    ]\n  ],\n  {\n    \"k\" : [\n      3\n"
                                   "    ]\n  }\n]");
    QTest::newRow("Korean and emoji") << QStringLiteral("{\"이름\":\"😀 한글\"}")
                                      << QStringLiteral("{\n  \"이름\" : \"😀 한글\"\n}");
    QTest::newRow("byte-order mark") << QStringLiteral("\ufeff[1]") << QStringLiteral("[\n  1\n]");
    QTest::newRow("blanks around everything") << QStringLiteral("{ \"a\" \n: \t1 , \"b\" :[ 1 , 2 ] }\r\n")
                                              << QStringLiteral("{\n  \"a\" : 1,\n  \"b\" : [\n    1,\n    2\n  ]\n}");
}

void JsonFormatterTest::printsOneKeyOrElementALine()
{
    QFETCH(QString, text);
    QFETCH(QString, printed);
    QCOMPARE(format(text), printed);
}

void JsonFormatterTest::keepsTheDigitsOfNumbers_data()
{
    QTest::addColumn<QString>("number");
    for (const char* number : {"0", "-0", "1", "-17", "0.10", "1.0", "1e5", "1E+05", "2.50e-3", "-0.0E-0",
                               "123456789012345678901234567890", "3.14159265358979323846264338327950288", "1e999"}) {
        QTest::newRow(number) << QString::fromLatin1(number);
    }
    QTest::newRow("beyond doubles") << QString(400, u'9');
    QTest::newRow("a long fraction") << QStringLiteral("-0.%1e-%2").arg(QString(400, u'0'), QString(20, u'1'));
}

void JsonFormatterTest::keepsTheDigitsOfNumbers()
{
    QFETCH(QString, number);
    QCOMPARE(format(u'[' + number + u']'), QStringLiteral("[\n  %1\n]").arg(number));
    QCOMPARE(format(QStringLiteral("{\"a\":%1 , \"b\":%1}").arg(number)),
             QStringLiteral("{\n  \"a\" : %1,\n  \"b\" : %1\n}").arg(number));
}

void JsonFormatterTest::escapesWhatMustBeEscapedAndNothingElse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("printed");
    const auto row = [](const char* name, const char* text, const char* printed) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(printed);
    };
    row("slash", R"(a/b)", R"(a/b)");
    row("escaped slash", R"(a\/b)", R"(a/b)");
    row("quote and backslash", R"(\"\\)", R"(\"\\)");
    row("quote and backslash as numbers", R"(\u0022\u005C)", R"(\"\\)");
    row("short forms", R"(\b\f\n\r\t)", R"(\b\f\n\r\t)");
    row("short forms as numbers", R"(\u0008\u000C\u000a\u000D\u0009)", R"(\b\f\n\r\t)");
    row("other control characters", R"(\u0000\u0001\u000B\u001F)", R"(\u0000\u0001\u000b\u001f)");
    row("letter as a number", R"(\u0041\u00e9\uD55C)", "Aé한");
    row("escaped pair", R"(\ud83d\uDE00)", "😀");
    row("delete and line separator", "\x7f\u2028", "\x7f\u2028");
    row("a backslash before the end", R"(C:\\)", R"(C:\\)");
    row("double blanks", "a  b", "a  b");
}

void JsonFormatterTest::escapesWhatMustBeEscapedAndNothingElse()
{
    QFETCH(QString, text);
    QFETCH(QString, printed);
    QCOMPARE(format(QStringLiteral("[\"%1\"]").arg(text)), QStringLiteral("[\n  \"%1\"\n]").arg(printed));
    QCOMPARE(format(QStringLiteral("{\"%1\":1}").arg(text)), QStringLiteral("{\n  \"%1\" : 1\n}").arg(printed));
}

void JsonFormatterTest::sortsKeysInThePrintersOrder_data()
{
    QTest::addColumn<QStringList>("sorted");
    const auto row = [](const char* name, const QStringList& sorted) { QTest::newRow(name) << sorted; };
    row("letters", {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    row("case is ignored first", {QStringLiteral("a"), QStringLiteral("B"), QStringLiteral("c")});
    row("and forced last", {QStringLiteral("Ab"), QStringLiteral("aB"), QStringLiteral("ab"), QStringLiteral("abc")});
    row("numbers by value",
        {QStringLiteral("a2"), QStringLiteral("a10"), QStringLiteral("a10b"), QStringLiteral("a11")});
    row("shorter digits of one value first", {QStringLiteral("7"), QStringLiteral("07"), QStringLiteral("007")});
    row("value before leading zeros", {QStringLiteral("1"), QStringLiteral("01"), QStringLiteral("2")});
    row("a later difference goes before a forced one", {QStringLiteral("01a"), QStringLiteral("1b")});
    row("numbers beyond 64 bits", {QStringLiteral("99999999999999999999998"), QStringLiteral("99999999999999999999999"),
                                   QStringLiteral("100000000000000000000000")});
    row("digits among others",
        {QStringLiteral("x y"), QStringLiteral("x1"), QStringLiteral("x_"), QStringLiteral("xa")});
    row("empty first", {QString(), QStringLiteral(" "), QStringLiteral("a")});
    row("prefix first", {QStringLiteral("ab"), QStringLiteral("abc"), QStringLiteral("ABCD")});
    row("forms of one accent", {QStringLiteral("e"), QStringLiteral("e\u0301"), QStringLiteral("\u00e9"),
                                QStringLiteral("e\u0301a"), QStringLiteral("f")});
    row("accents ignore case", {QStringLiteral("\u00c9"), QStringLiteral("\u00e9"), QStringLiteral("\u00c9a")});
    row("sharp s", {QStringLiteral("STRASSE"), QStringLiteral("straße"), QStringLiteral("strasst")});
    row("Korean", {QStringLiteral("가"), QStringLiteral("나"), QStringLiteral("다10"), QStringLiteral("하")});
    row("by code point", {QStringLiteral("\ufb1d"), QStringLiteral("😀")});
}

void JsonFormatterTest::sortsKeysInThePrintersOrder()
{
    QFETCH(QStringList, sorted);
    const auto object = [](const QStringList& keys) {
        QString text;
        for (const QString& key : keys) {
            text += QStringLiteral(",\"%1\":1").arg(key);
        }
        return u'{' + text.mid(1) + u'}';
    };
    QStringList lines;
    for (const QString& key : sorted) {
        lines += QStringLiteral("  \"%1\" : 1").arg(key);
    }
    const QString printed = QStringLiteral("{\n%1\n}").arg(lines.join(u",\n"));
    QStringList keys = sorted;
    QCOMPARE(format(object(keys)), printed);
    std::reverse(keys.begin(), keys.end());
    QCOMPARE(format(object(keys)), printed);
    for (qsizetype i = 0; i < sorted.size(); ++i) {
        for (qsizetype j = 0; j < sorted.size(); ++j) {
            const int order = JsonKey::compare(JsonKey(sorted[i]), JsonKey(sorted[j]));
            QCOMPARE(order < 0, i < j);
            QCOMPARE(order == 0, i == j);
        }
    }
}

void JsonFormatterTest::sortedMembersKeepTheirNestedObjects()
{
    const QString text = QStringLiteral(R"([{"z":{"y":{"b":1,"a":2},"x":[{"d":3,"c":4},{}]},"m":5,)"
                                        R"("a":{"q":{},"p":[{"n":6}]}},{"l":7,"k":{"j":8,"i":9}}])");
    QString flat = format(text);
    flat.remove(u' ').remove(u'\n');
    QCOMPARE(flat, QStringLiteral(R"([{"a":{"p":[{"n":6}],"q":{}},"m":5,)"
                                  R"("z":{"x":[{"c":4,"d":3},{}],"y":{"a":2,"b":1}}},{"k":{"i":9,"j":8},"l":7}])"));
}

void JsonFormatterTest::theLastOfEqualKeysCounts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("printed");
    QTest::newRow("twice") << QStringLiteral(R"({"a":1,"a":2})") << QStringLiteral("{\n  \"a\" : 2\n}");
    QTest::newRow("thrice, apart") << QStringLiteral(R"({"a":1,"b":2,"a":{"x":1},"c":3,"a":[{}]})")
                                   << QStringLiteral(
                                          "{\n  \"a\" : [\n    {\n\n    }\n  ],\n  \"b\" : 2,\n  \"c\" : 3\n}");
    QTest::newRow("one is escaped") << QStringLiteral(R"({"\u0061":1,"a":2})") << QStringLiteral("{\n  \"a\" : 2\n}");
    QTest::newRow("case differs") << QStringLiteral(R"({"a":1,"A":2})")
                                  << QStringLiteral("{\n  \"A\" : 2,\n  \"a\" : 1\n}");
}

void JsonFormatterTest::theLastOfEqualKeysCounts()
{
    QFETCH(QString, text);
    QFETCH(QString, printed);
    QCOMPARE(format(text), printed);
}

void JsonFormatterTest::anotherIndentReplacesEachTwoBlanks_data()
{
    QTest::addColumn<int>("indent");
    QTest::addColumn<QString>("printed");
    QTest::newRow("four") << 4 << QStringLiteral("{\n    \"a\" : [\n        \"x     y\"\n    ]\n}");
    QTest::newRow("one") << 1 << QStringLiteral("{\n \"a\" : [\n  \"x  y\"\n ]\n}");
    QTest::newRow("none") << 0 << QStringLiteral("{\n\"a\" : [\n\"x y\"\n]\n}");
    QTest::newRow("negative") << -3 << QStringLiteral("{\n\"a\" : [\n\"x y\"\n]\n}");
}

void JsonFormatterTest::anotherIndentReplacesEachTwoBlanks()
{
    QFETCH(int, indent);
    QFETCH(QString, printed);
    QCOMPARE(JSONFormatter::format(QStringLiteral("{\"a\":[\"x   y\"]}"), indent), printed);
}

void JsonFormatterTest::givesBackWhatIsNotJson_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"",
                             " \n ",
                             "1",
                             "\"a\"",
                             "null",
                             "[1,]",
                             "{\"a\":1,}",
                             "[,1]",
                             "{,}",
                             "[1 2]",
                             "[1,,2]",
                             "{\"a\"}",
                             "{\"a\":}",
                             "{\"a\" 1}",
                             "{a:1}",
                             "{'a':1}",
                             "{1:1}",
                             "[01]",
                             "[-]",
                             "[-01]",
                             "[+1]",
                             "[.5]",
                             "[1.]",
                             "[1.e2]",
                             "[1e]",
                             "[1e+]",
                             "[0x1]",
                             "[NaN]",
                             "[Infinity]",
                             "[True]",
                             "[tru]",
                             "[nulll]",
                             "[truefalse]",
                             "[1]x",
                             "[1][2]",
                             "{}{}",
                             "[1]]",
                             "[1}",
                             "{\"a\":1]",
                             "[",
                             "{",
                             "[[]",
                             "[\"a]",
                             "[\"a\nb\"]",
                             "[\"a\tb\"]",
                             "[\"\\x\"]",
                             "[\"\\u12\"]",
                             "[\"\\u12g4\"]",
                             "[\"\\",
                             "[\"\\\"]",
                             "[\"\\ud800\"]",
                             "[\"\\udc00\"]",
                             "[\"\\ud800\\u0041\"]",
                             "[\"\\ud800x\"]",
                             "[\"\\udc00\\ud800\"]",
                             "// c\n[1]",
                             "[1 /* c */]",
                             "\v[1]",
                             "[1]\f",
                             "\u00a0[1]",
                             "[1\u3000]",
                             "]",
                             "}"}) {
        QTest::newRow(text) << QString::fromUtf8(text);
    }
    QTest::newRow("byte-order mark alone") << QStringLiteral("\ufeff");
    QTest::newRow("two byte-order marks") << QStringLiteral("\ufeff\ufeff[1]");
    QTest::newRow("NUL in front") << QChar(0) + QStringLiteral("[1]");
    QTest::newRow("NUL behind") << QStringLiteral("[1]") + QChar(0);
    QTest::newRow("NUL in a string") << QStringLiteral("[\"") + QChar(0) + QStringLiteral("\"]");
    QTest::newRow("NUL for a value") << QStringLiteral("[") + QChar(0) + QStringLiteral("]");
}

void JsonFormatterTest::givesBackWhatIsNotJson()
{
    QFETCH(QString, text);
    QCOMPARE(format(text), text);
}

void JsonFormatterTest::givesBackUnpairedSurrogates()
{
    for (const char16_t unit : {u'\xd800', u'\xdfff'}) {
        for (const QString& pattern : {QStringLiteral("[\"%1\"]"), QStringLiteral("[\"%1a\"]"),
                                       QStringLiteral("{\"%1\":1}"), QStringLiteral("[1]%1")}) {
            const QString text = pattern.arg(QChar(unit));
            QCOMPARE(format(text), text);
        }
    }
}

void JsonFormatterTest::everyCutOffTextComesBackAsItWas()
{
    const QString text = QStringLiteral(R"({"a":[1.5e-3,true,null,"\u00e9\n😀"],"b":{"c":{}},"c":-0})");
    QVERIFY(format(text) != text);
    for (qsizetype length = 0; length < text.size(); ++length) {
        QCOMPARE(format(text.left(length)), text.left(length));
    }
}

void JsonFormatterTest::deepNestingNeitherOverflowsNorGrowsWithoutBound()
{
    const auto nested = [](qsizetype depth, const QString& open, const QString& close) {
        return open.repeated(depth) + QStringLiteral("1") + close.repeated(depth);
    };
    // The levels' blanks come to 10^6: half of a square.
    const QString arrays = format(nested(1000, QStringLiteral("["), QStringLiteral("]")));
    QCOMPARE(arrays.size(), 1000 * 1000 * 2 + 1000 * 2 * 2 + 1);
    const QString objects = format(nested(1000, QStringLiteral("{\"b\":0,\"a\":"), QStringLiteral("}")));
    QCOMPARE(objects.count(u'\n'), 3 * 1000);
    QVERIFY(objects.startsWith(u"{\n  \"a\" : {\n    \"a\" : {"));
    QVERIFY(objects.endsWith(u"\n    \"b\" : 0\n  },\n  \"b\" : 0\n}"));
    // Printed, these would take tens of gigabytes.
    for (const QString& deep : {nested(100'000, QStringLiteral("["), QStringLiteral("]")),
                                nested(100'000, QStringLiteral("{\"b\":0,\"a\":"), QStringLiteral("}"))}) {
        QCOMPARE(format(deep), deep);
    }
    const QString unclosed = QStringLiteral("[").repeated(1'000'000);
    QCOMPARE(format(unclosed), unclosed);
}

void JsonFormatterTest::formattingTwiceChangesNothingMore()
{
    test::RandomText random;
    const QStringList pieces{QStringLiteral("1"),  QStringLiteral("\"a\\u0062\""), QStringLiteral("null"),
                             QStringLiteral("[]"), QStringLiteral("{}"),           QStringLiteral("-1.50e7")};
    const QStringList keys{QStringLiteral("a"),  QStringLiteral("A"),   QStringLiteral("a10"), QStringLiteral("a2"),
                           QStringLiteral("한"), QStringLiteral("\\n"), QStringLiteral("é"),   QStringLiteral("b")};
    const std::function<QString(int)> value = [&](int depth) -> QString {
        const qsizetype kind = depth == 0 ? 0 : random.below(3);
        if (kind == 0) {
            return pieces[random.below(pieces.size())];
        }
        QString text;
        for (qsizetype i = random.below(5); i > 0; --i) {
            const QString key = kind == 1 ? QString() : u'"' + keys[random.below(keys.size())] + QStringLiteral("\": ");
            text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + key + value(depth - 1);
        }
        return kind == 1 ? u'[' + text + u']' : u'{' + text + u'}';
    };
    for (int i = 0; i < 500; ++i) {
        const QString text = u'[' + value(5) + u']';
        const QString once = format(text);
        QVERIFY2(once != text, qPrintable(text));
        QCOMPARE(format(once), once);
    }
}

const kelm::test::Registered<JsonFormatterTest> registered;

} // namespace json_formatter_test

#include "json_formatter_test.moc"
