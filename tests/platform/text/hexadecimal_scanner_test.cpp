#include "platform/text/hexadecimal_scanner.h"
#include "support/test_program.h"

#include <QtTest>

namespace hexadecimal_scanner_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class HexadecimalScannerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leadingDigitsMakeTheNumber_data();
    void leadingDigitsMakeTheNumber();
    void withoutADigitThereIsNoNumber_data();
    void withoutADigitThereIsNoNumber();
};

void HexadecimalScannerTest::leadingDigitsMakeTheNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<quint64>("number");
    QTest::newRow("zero") << u"0"_s << quint64(0);
    QTest::newRow("both cases") << u"aBcDeF09"_s << quint64(0xabcdef09);
    QTest::newRow("stops at another character") << u"12g34"_s << quint64(0x12);
    QTest::newRow("prefix") << u"0xff"_s << quint64(0xff);
    QTest::newRow("upper-case prefix") << u"0XFF"_s << quint64(0xff);
    QTest::newRow("one prefix only") << u"0x0xff"_s << quint64(0);
    QTest::newRow("prefix without digits") << u"0xz"_s << quint64(0);
    QTest::newRow("prefix at the end") << u"0x"_s << quint64(0);
    QTest::newRow("white space before") << u" \t\n\u00a0 1f"_s << quint64(0x1f);
    QTest::newRow("white space inside") << u"1 f"_s << quint64(1);
    QTest::newRow("greatest") << u"ffffffffffffffff"_s << ~quint64(0);
    QTest::newRow("leading zeros") << u"00000000000000000000001"_s << quint64(1);
    QTest::newRow("saturates") << u"10000000000000000"_s << ~quint64(0);
    QTest::newRow("saturates far beyond") << u"123456789abcdef0123456789"_s << ~quint64(0);
    QTest::newRow("fullwidth digits are none") << u"1\uff12"_s << quint64(1);
}

void HexadecimalScannerTest::leadingDigitsMakeTheNumber()
{
    QFETCH(QString, text);
    QFETCH(quint64, number);
    const std::optional<quint64> scanned = scanHexadecimal(text);
    QVERIFY(scanned.has_value());
    QCOMPARE(*scanned, number);
}

void HexadecimalScannerTest::withoutADigitThereIsNoNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << u" "_s;
    QTest::newRow("letters") << u"zz"_s;
    QTest::newRow("sign") << u"-1"_s;
    QTest::newRow("hash") << u"#12"_s;
    QTest::newRow("surrogate") << QString(QChar(0xd800));
}

void HexadecimalScannerTest::withoutADigitThereIsNoNumber()
{
    QFETCH(QString, text);
    QVERIFY(!scanHexadecimal(text).has_value());
}

const kelm::test::Registered<HexadecimalScannerTest> registered;

} // namespace hexadecimal_scanner_test

#include "hexadecimal_scanner_test.moc"
