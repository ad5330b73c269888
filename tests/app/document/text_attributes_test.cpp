#include "app/document/text_attributes.h"
#include "support/test_program.h"

#include <QtTest>

namespace text_attributes_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class TextAttributesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineEndingsStandInMenuOrder();
    void fileEncodingsStandInMenuOrder();
    void aPlatformEncodingMapsToTheMenu_data();
    void aPlatformEncodingMapsToTheMenu();
    void indentStylesCompareByKindAndCount();
    void positionsCompareFieldByField();
};

void TextAttributesTest::lineEndingsStandInMenuOrder()
{
    QStringList labels;
    QStringList rawValues;
    for (const LineEnding each : LineEnding::allCases()) {
        labels << each.label();
        rawValues << each.rawValue();
        QVERIFY(LineEnding::fromRawValue(each.rawValue()) == each);
    }
    QCOMPARE(labels, (QStringList{u"LF (Unix)"_s, u"CRLF (Windows)"_s, u"CR (Classic Mac)"_s}));
    QCOMPARE(rawValues, (QStringList{u"\n"_s, u"\r\n"_s, u"\r"_s}));
    QVERIFY(!LineEnding::fromRawValue(u"LF (Unix)"));
    QVERIFY(!LineEnding::fromRawValue(u"\n\r"));
}

void TextAttributesTest::fileEncodingsStandInMenuOrder()
{
    QStringList rawValues;
    QList<TextEncoding> chosen;
    for (const FileEncoding each : FileEncoding::allCases()) {
        rawValues << each.rawValue();
        chosen << each.platformEncoding();
        QVERIFY(FileEncoding::fromRawValue(each.rawValue()) == each);
        QCOMPARE(FileEncoding::from(each.platformEncoding()), each);
    }
    QCOMPARE(rawValues, (QStringList{u"UTF-8"_s, u"UTF-16"_s, u"ASCII"_s}));
    QCOMPARE(chosen, (QList{TextEncoding::utf8, TextEncoding::utf16, TextEncoding::ascii}));
    QVERIFY(!FileEncoding::fromRawValue(u"utf-8"));
}

void TextAttributesTest::aPlatformEncodingMapsToTheMenu_data()
{
    QTest::addColumn<int>("encoding");
    QTest::addColumn<QString>("label");
    QTest::newRow("UTF-8") << int(TextEncoding::utf8) << u"UTF-8"_s;
    QTest::newRow("UTF-16") << int(TextEncoding::utf16) << u"UTF-16"_s;
    QTest::newRow("UTF-16 big endian") << int(TextEncoding::utf16BigEndian) << u"UTF-16"_s;
    QTest::newRow("UTF-16 little endian") << int(TextEncoding::utf16LittleEndian) << u"UTF-16"_s;
    QTest::newRow("UTF-32") << int(TextEncoding::utf32) << u"UTF-8"_s;
    QTest::newRow("ASCII") << int(TextEncoding::ascii) << u"ASCII"_s;
    QTest::newRow("Latin-1") << int(TextEncoding::isoLatin1) << u"UTF-8"_s;
    QTest::newRow("unknown") << 200 << u"UTF-8"_s;
}

void TextAttributesTest::aPlatformEncodingMapsToTheMenu()
{
    QFETCH(int, encoding);
    QFETCH(QString, label);
    QCOMPARE(FileEncoding::from(TextEncoding(encoding)).rawValue(), label);
}

void TextAttributesTest::indentStylesCompareByKindAndCount()
{
    QVERIFY(IndentStyle::tabs() == IndentStyle::tabs());
    QVERIFY(IndentStyle::spaces(4) == IndentStyle::spaces(4));
    QVERIFY(IndentStyle::spaces(2) != IndentStyle::spaces(4));
    QVERIFY(IndentStyle::spaces(0) != IndentStyle::tabs());
    QVERIFY(IndentStyle::tabs().isTabs());
    QVERIFY(!IndentStyle::spaces(0).isTabs());
    QVERIFY(IndentStyle::spaces(-3).spaceCount() == -3);
}

void TextAttributesTest::positionsCompareFieldByField()
{
    const CursorPosition position{2, 3, 8};
    QVERIFY(position == (CursorPosition{2, 3, 8}));
    QVERIFY(position != (CursorPosition{1, 3, 8}));
    QVERIFY(position != (CursorPosition{2, 1, 8}));
    QVERIFY(position != (CursorPosition{2, 3, 0}));
    const TextSelection selection{position, {}};
    QVERIFY(selection == (TextSelection{position, {}}));
    QVERIFY(selection != (TextSelection{{}, position}));
}

const kelm::test::Registered<TextAttributesTest> registered;

} // namespace text_attributes_test

#include "text_attributes_test.moc"
