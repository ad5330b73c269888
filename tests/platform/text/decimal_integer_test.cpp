#include "platform/text/decimal_integer.h"
#include "support/test_program.h"

#include <QtTest>

#include <limits>

namespace decimal_integer_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class DecimalIntegerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyAWholeDecimalNumberHasAValue_data();
    void onlyAWholeDecimalNumberHasAValue();
};

void DecimalIntegerTest::onlyAWholeDecimalNumberHasAValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::optional<qint64>>("value");
    const auto row = [](const char* name, const QString& text, std::optional<qint64> value) {
        QTest::newRow(name) << text << value;
    };
    row("zero", u"0"_s, 0);
    row("several digits", u"1234567890"_s, 1234567890);
    row("leading zeros", u"007"_s, 7);
    row("plus", u"+5"_s, 5);
    row("minus", u"-5"_s, -5);
    row("minus zero", u"-0"_s, 0);
    row("largest", u"9223372036854775807"_s, std::numeric_limits<qint64>::max());
    row("smallest", u"-9223372036854775808"_s, std::numeric_limits<qint64>::min());
    row("one too large", u"9223372036854775808"_s, {});
    row("one too small", u"-9223372036854775809"_s, {});
    row("far too long", u"99999999999999999999999999"_s, {});
    row("empty", u""_s, {});
    row("sign alone", u"-"_s, {});
    row("two signs", u"+-1"_s, {});
    row("blank before", u" 1"_s, {});
    row("blank behind", u"1 "_s, {});
    row("newline behind", u"1\n"_s, {});
    row("letter", u"1a"_s, {});
    row("hexadecimal", u"0x10"_s, {});
    row("point", u"1.0"_s, {});
    row("digits of another script", u"\u0661\u0662"_s, {});
    row("full-width digit", u"\uFF11"_s, {});
}

void DecimalIntegerTest::onlyAWholeDecimalNumberHasAValue()
{
    QFETCH(QString, text);
    QFETCH(std::optional<qint64>, value);
    QCOMPARE(decimalInteger(text), value);
}

const kelm::test::Registered<DecimalIntegerTest> registered;

} // namespace decimal_integer_test

#include "decimal_integer_test.moc"
