#include "platform/text/strict_json.h"
#include "support/test_program.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

namespace strict_json_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class StrictJsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsOfTheGrammarAreTaken_data();
    void textsOfTheGrammarAreTaken();
    void allElseIsRefused_data();
    void allElseIsRefused();
};

void StrictJsonTest::textsOfTheGrammarAreTaken_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QJsonValue>("value");
    const auto row = [](const char* name, const QByteArray& text, const QJsonValue& value) {
        QTest::newRow(name) << QByteArray("{\"a\":" + text + "}") << value;
    };
    row("integer", "12", 12);
    row("minus", "-0.5", -0.5);
    row("fraction and exponent", "1.5e+2", 150.0);
    row("zero with a large exponent", "0e999", 0);
    row("blanks", " \t\r\n1 ", 1);
    row("true", "true", true);
    row("null", "null", QJsonValue());
    row("string", "\"b\"", u"b"_s);
    row("dot in a string", "\".5 1. \\\" .\"", u".5 1. \" ."_s);
    row("all escapes", R"("\"\\\/\b\f\n\r\tA")", u"\"\\/\b\f\n\r\tA"_s);
    row("escaped pair", R"("\ud83d\ude00")", u"\U0001f600"_s);
    row("raw astral", "\"\xf0\x9f\x98\x80\"", u"\U0001f600"_s);
    row("backslash at the end", R"("a\\")", u"a\\"_s);
    row("delete character", "\"\x7f\"", u"\x7f"_s);
    QTest::newRow("byte-order mark") << QByteArray("\xef\xbb\xbf{\"a\":1}") << QJsonValue(1);
    QTest::newRow("last of two members") << QByteArray("{\"a\":1,\"a\":2}") << QJsonValue(2);
}

void StrictJsonTest::textsOfTheGrammarAreTaken()
{
    QFETCH(QByteArray, text);
    QFETCH(QJsonValue, value);
    const std::optional<QJsonDocument> document = parseStrictJson(text);
    QVERIFY(document.has_value());
    QCOMPARE(document->object().value(u"a"), value);
}

void StrictJsonTest::allElseIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blank") << QByteArray("  ");
    QTest::newRow("bare number") << QByteArray("1");
    QTest::newRow("bare string") << QByteArray("\"a\"");
    QTest::newRow("cut off") << QByteArray("{\"a\":1");
    QTest::newRow("trailing garbage") << QByteArray("{} x");
    QTest::newRow("trailing NUL") << QByteArray("{}\0", 3);
    QTest::newRow("two documents") << QByteArray("{}{}");
    const auto row = [](const char* name, const QByteArray& text) {
        QTest::newRow(name) << QByteArray("{\"a\":" + text + "}");
        QTest::newRow((QByteArray("in an array: ") + name).constData()) << QByteArray("[" + text + "]");
    };
    row("trailing comma", "1,");
    row("leading zero", "01");
    row("plus", "+1");
    row("dot at the end", "1.");
    row("dot at the start", ".5");
    row("dot before exponent", "1.e5");
    row("dot after minus", "-.5");
    row("exponent without digits", "1e");
    row("beyond doubles", "1e999");
    row("not a number", "NaN");
    row("infinity", "Infinity");
    row("comment", "/**/1");
    row("single quotes", "'a'");
    row("unknown escape", R"("\q")");
    row("hexadecimal escape", R"("\x41")");
    row("short escape", R"("\u12")");
    row("escape with a sign", R"("\u+123")");
    row("lone high surrogate", R"("\ud800")");
    row("lone low surrogate", R"("\udc00")");
    row("high surrogate twice", R"("\ud800\ud800")");
    row("surrogates swapped", R"("\udc00\ud800")");
    row("line feed in a string", "\"a\nb\"");
    row("tab in a string", "\"a\tb\"");
    row("NUL in a string", QByteArray("\"\0\"", 3));
    row("invalid UTF-8", "\"\xff\"");
    row("overlong UTF-8", "\"\xc0\x80\"");
    row("surrogate in UTF-8", "\"\xed\xa0\x80\"");
    row("capital literal", "True");
}

void StrictJsonTest::allElseIsRefused()
{
    QFETCH(QByteArray, text);
    QVERIFY(!parseStrictJson(text).has_value());
}

const kelm::test::Registered<StrictJsonTest> registered;

} // namespace strict_json_test

#include "strict_json_test.moc"
