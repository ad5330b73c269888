#include "editor/transforms/text_transformer.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace text_transformer_test {

using namespace kelm;

class TextTransformerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void caseIsMappedInFull_data();
    void caseIsMappedInFull();
    void unpairedSurrogatesStay();
    void onlyTheFirstLetterOfAWordIsCapital_data();
    void onlyTheFirstLetterOfAWordIsCapital();
    void wordsEndAtBlanksUnderscoresHyphensAndHumps_data();
    void wordsEndAtBlanksUnderscoresHyphensAndHumps();
    void wordsBecomeCamelAndSnakeCase_data();
    void wordsBecomeCamelAndSnakeCase();
    void capitalisingTwiceChangesNothingMore();
};

void TextTransformerTest::caseIsMappedInFull_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("upper");
    QTest::addColumn<QString>("lower");
    const auto row = [](const char* name, const char* text, const char* upper, const char* lower) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(upper) << QString::fromUtf8(lower);
    };
    row("empty", "", "", "");
    row("ASCII", "Foo bar_1\r\n\tBaz", "FOO BAR_1\r\n\tBAZ", "foo bar_1\r\n\tbaz");
    row("sharp s", "Straße", "STRASSE", "straße");
    row("ligature", "ﬃ", "FFI", "ﬃ");
    row("final sigma", "ΟΔΟΣ ΣΑΣ'", "ΟΔΟΣ ΣΑΣ'", "οδος σας'");
    row("dotted and dotless i", "İıIi", "İIII", "i̇ıii");
    row("digraph", "ǅ", "Ǆ", "ǆ");
    row("beyond the basic plane", "𐐨𐐀", "𐐀𐐀", "𐐨𐐨");
    row("no case", "한글 😀 漢字", "한글 😀 漢字", "한글 😀 漢字");
    row("combining mark", "e\u0301É", "E\u0301É", "e\u0301é");
}

void TextTransformerTest::caseIsMappedInFull()
{
    QFETCH(QString, text);
    QFETCH(QString, upper);
    QFETCH(QString, lower);
    QCOMPARE(TextTransformer::toUpperCase(text), upper);
    QCOMPARE(TextTransformer::toLowerCase(text), lower);
}

void TextTransformerTest::unpairedSurrogatesStay()
{
    const QString text = QStringLiteral("a%1B%2").arg(QChar(0xd800), QChar(0xdc00));
    QCOMPARE(TextTransformer::toUpperCase(text), QStringLiteral("A%1B%2").arg(QChar(0xd800), QChar(0xdc00)));
    QCOMPARE(TextTransformer::toLowerCase(text), QStringLiteral("a%1b%2").arg(QChar(0xd800), QChar(0xdc00)));
    QCOMPARE(TextTransformer::toCapitalized(text), QStringLiteral("A%1B%2").arg(QChar(0xd800), QChar(0xdc00)));
}

void TextTransformerTest::onlyTheFirstLetterOfAWordIsCapital_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("capitalized");
    const auto row = [](const char* name, const char* text, const char* capitalized) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(capitalized);
    };
    row("empty", "", "");
    row("words", "hello WORLD\nnext\tone", "Hello World\nNext\tOne");
    row("apostrophe", "don't DON\u2019T", "Don't Don\u2019t");
    row("underscore", "foo_bar", "Foo_Bar");
    row("full stop", "foo.bar", "Foo.bar");
    row("digit", "1st a1b", "1St A1B");
    row("hyphen and slash", "foo-bar/baz", "Foo-Bar/Baz");
    row("combining mark", "e\u0301cole", "E\u0301cole");
    row("marks between letters", "a.'b \"c", "A.'b \"C");
    row("apostrophe in front", "'tis", "'Tis");
    row("sharp s and ligature in front", "ßa ﬁx", "Ssa Fix");
    row("digraph", "ǆungla Ǆungla", "ǅungla ǅungla");
    row("final sigma", "ΟΔΟΣ ΑΣΑ ΑΣ. Σ", "Οδος Ασα Ας. Σ");
    row("final sigma and ignorables", "ΑΣ'Β ΑΣ'", "Ασ'β Ας'");
    row("dotted i", "aİ İ", "Ai̇ İ");
    row("beyond the basic plane", "𐐨𐐨 𐐀𐐀", "𐐀𐐨 𐐀𐐨");
    row("letters without case part words", "a한b", "A한B");
}

void TextTransformerTest::onlyTheFirstLetterOfAWordIsCapital()
{
    QFETCH(QString, text);
    QFETCH(QString, capitalized);
    QCOMPARE(TextTransformer::toCapitalized(text), capitalized);
}

void TextTransformerTest::wordsEndAtBlanksUnderscoresHyphensAndHumps_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("words");
    const auto row = [](const char* name, const char* text, const QStringList& words) {
        QTest::newRow(name) << QString::fromUtf8(text) << words;
    };
    row("empty", "", {});
    row("separators alone", " _-\t__", {});
    row("hump and hyphen", "fooBar baz-qux",
        {QStringLiteral("foo"), QStringLiteral("Bar"), QStringLiteral("baz"), QStringLiteral("qux")});
    row("between a lower and an upper letter alone", "HTTPServer", {QStringLiteral("HTTPServer")});
    row("humps in a row", "aBcDeF",
        {QStringLiteral("a"), QStringLiteral("Bc"), QStringLiteral("De"), QStringLiteral("F")});
    row("underscore before a capital", "a_B", {QStringLiteral("a"), QStringLiteral("B")});
    row("digits make no hump", "a1B", {QStringLiteral("a1B")});
    row("letters outside a to z make no hump", "éA aÉ", {QStringLiteral("éA"), QStringLiteral("aÉ")});
    row("line ends stay inside", "a b\nc d\r\n",
        {QStringLiteral("a"), QStringLiteral("b\nc"), QStringLiteral("d\r\n")});
    row("other space separators", "a\u00a0b\u3000c\u2003d\u2028e",
        {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d\u2028e")});
    row("empty pieces are dropped", "__a--b  c_", {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
}

void TextTransformerTest::wordsEndAtBlanksUnderscoresHyphensAndHumps()
{
    QFETCH(QString, text);
    QFETCH(QStringList, words);
    QCOMPARE(TextTransformer::splitIntoWords(text), words);
}

void TextTransformerTest::wordsBecomeCamelAndSnakeCase_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("camel");
    QTest::addColumn<QString>("snake");
    const auto row = [](const char* name, const char* text, const char* camel, const char* snake) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(camel) << QString::fromUtf8(snake);
    };
    row("words", "fooBar baz-qux", "fooBarBazQux", "foo_bar_baz_qux");
    row("one word", "HTTPServer", "httpserver", "httpserver");
    row("empty", "", "", "");
    row("no words", " -_ ", " -_ ", "");
    row("line ends stay", "foo bar\nbaz qux", "fooBar\nBazQux", "foo_bar\nbaz_qux");
    row("digits and apostrophes", "say don't 1st", "sayDon't1St", "say_don't_1st");
    row("Korean", "한글 fooBar", "한글FooBar", "한글_foo_bar");
}

void TextTransformerTest::wordsBecomeCamelAndSnakeCase()
{
    QFETCH(QString, text);
    QFETCH(QString, camel);
    QFETCH(QString, snake);
    QCOMPARE(TextTransformer::toCamelCase(text), camel);
    QCOMPARE(TextTransformer::toSnakeCase(text), snake);
}

void TextTransformerTest::capitalisingTwiceChangesNothingMore()
{
    test::RandomText random;
    for (int i = 0; i < 500; ++i) {
        const QString once = TextTransformer::toCapitalized(random.text(40));
        QCOMPARE(TextTransformer::toCapitalized(once), once);
    }
}

const kelm::test::Registered<TextTransformerTest> registered;

} // namespace text_transformer_test

#include "text_transformer_test.moc"
