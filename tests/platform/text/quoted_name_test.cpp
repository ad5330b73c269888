#include "platform/text/quoted_name.h"
#include "support/test_program.h"

#include <QtTest>

namespace quoted_name_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

/// Names in git's quotes.
class QuotedNameTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameIsUnquoted_data();
    void nameIsUnquoted();
    void quotedNameHasItsLength();
};

void QuotedNameTest::nameIsUnquoted_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("unquoted");
    const auto row = [](const char* tag, const QString& name, const QString& unquoted) {
        QTest::newRow(tag) << name << unquoted;
    };
    row("plain", u"a.txt"_s, u"a.txt"_s);
    row("empty", u""_s, u""_s);
    row("blank without quotes", u"a b"_s, u"a b"_s);
    row("blank", u"\"a b\""_s, u"a b"_s);
    row("Korean", u"\"\\355\\225\\234.txt\""_s, u"한.txt"_s);
    row("Korean as it is", u"\"한 \\\"\""_s, u"한 \""_s);
    row("letters", u"\"\\a\\b\\f\\n\\r\\t\\v\\\\\\\"\""_s, u"\a\b\f\n\r\t\v\\\""_s);
    row("control character", u"\"\\001\\033\\177\""_s, u"\x01\x1b\x7f"_s);
    row("no UTF-8", u"\"caf\\351.txt\""_s, u"caf"_s + QChar(0xdce9) + u".txt"_s);
    row("nothing between", u"\"\""_s, u""_s);
    row("one quote", u"\""_s, u"\""_s);
    row("no end", u"\"a"_s, u"\"a"_s);
    row("the end is escaped", u"\"a\\\""_s, u"\"a\\\""_s);
    row("more behind the end", u"\"a\"b"_s, u"\"a\"b"_s);
    row("unknown escape", u"\"\\x41\""_s, u"\"\\x41\""_s);
    row("octal too large", u"\"\\400\""_s, u"\"\\400\""_s);
    row("octal too short", u"\"\\12\""_s, u"\"\\12\""_s);
    row("quotes inside of a plain name", u"a\"b\""_s, u"a\"b\""_s);
}

void QuotedNameTest::nameIsUnquoted()
{
    QFETCH(QString, name);
    QTEST(unquotedName(name), "unquoted");
}

void QuotedNameTest::quotedNameHasItsLength()
{
    QCOMPARE(quotedNameLength(u"a \"b\""), 0);
    QCOMPARE(quotedNameLength(u""), 0);
    QCOMPARE(quotedNameLength(u"\"a\" -> b"), 3);
    QCOMPARE(quotedNameLength(u"\"a\\\"b\" \"c\""), 6);
    QCOMPARE(quotedNameLength(u"\"a\\\""), 0);
}

const kelm::test::Registered<QuotedNameTest> registered;

} // namespace quoted_name_test

#include "quoted_name_test.moc"
