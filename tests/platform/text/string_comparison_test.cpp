#include "platform/text/string_comparison.h"
#include "support/random.h"
#include "support/test_program.h"

#include <QtTest>

#include <unicode/coll.h>
#include <unicode/locid.h>

namespace string_comparison_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class StringComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsCompareAsTheLocaleOrdersThem_data();
    void textsCompareAsTheLocaleOrdersThem();
    void sortKeysCompareAsTextsDo();
    void longTextsHaveKeys();
    void longRunsOfMarksCompareAsTheCollationSays();
    void unpairedSurrogatesCompare();
    void theCurrentLocaleIgnoresCase();
    void withoutCollationTextsAreFolded();
};

void StringComparisonTest::textsCompareAsTheLocaleOrdersThem_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("order");
    for (const QString& locale : {u""_s, u"en_US.UTF-8"_s, u"ko_KR"_s, u"C"_s, u"C.UTF-8"_s, u"POSIX"_s, u"none"_s}) {
        const auto row = [&](const char* name, const QString& a, const QString& b, int order) {
            QTest::newRow(qPrintable((locale.isEmpty() ? u"(empty)"_s : locale) + u": "_s + QString::fromLatin1(name)))
                << locale << a << b << order;
        };
        row("equal", u"a"_s, u"a"_s, 0);
        row("case is ignored", u"a"_s, u"A"_s, 0);
        row("case of other scripts is ignored", u"ДЯ"_s, u"дя"_s, 0);
        row("capital before later small letter", u"B"_s, u"a"_s, 1);
        row("small letter before later capital", u"a"_s, u"B"_s, -1);
        row("accents count", u"a"_s, u"\u00e1"_s, -1);
        row("accents count less than letters", u"\u00e1"_s, u"b"_s, -1);
        row("canonically equal", u"\u00e9"_s, u"e\u0301"_s, 0);
        row("canonically equal marks in two orders", u"a\u0323\u0301"_s, u"a\u0301\u0323"_s, 0);
        row("canonically equal korean", u"\ud55c"_s, u"\u1112\u1161\u11ab"_s, 0);
        row("empty first", u""_s, u"a"_s, -1);
        row("blank before letter", u" b"_s, u"a"_s, -1);
        row("digits before letters", u"9"_s, u"a"_s, -1);
        row("digits one by one", u"10"_s, u"9"_s, -1);
        row("prefix first", u"ab"_s, u"abc"_s, -1);
        row("korean in order", u"가"_s, u"나"_s, -1);
    }
    QTest::newRow("German sorts \u00e4 with a") << u"de_DE"_s << u"\u00e4"_s << u"z"_s << -1;
    QTest::newRow("Swedish sorts \u00e4 behind z") << u"sv_SE.UTF-8"_s << u"\u00e4"_s << u"z"_s << 1;
    QTest::newRow("Korean sorts hangul before latin") << u"ko_KR.UTF-8"_s << u"가"_s << u"a"_s << -1;
}

void StringComparisonTest::textsCompareAsTheLocaleOrdersThem()
{
    QFETCH(QString, locale);
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, order);
    const StringComparison comparison(locale);
    QCOMPARE(comparison.localizedCaseInsensitiveCompare(a, b), order);
    QCOMPARE(comparison.localizedCaseInsensitiveCompare(b, a), -order);
}

void StringComparisonTest::sortKeysCompareAsTextsDo()
{
    const StringComparison comparison(u"en_US"_s);
    const QStringList texts = {u""_s,    u" "_s,   u"a"_s,   u"A"_s,          u"b"_s, u"\u00e1"_s, u"e\u0301"_s,
                               u"é"_s,   u"abc"_s, u"ABD"_s, u"한글"_s,       u"1"_s, u"\t"_s,     QString(u"\0"_s),
                               u"a b"_s, u"a-b"_s, u"ab"_s,  u"\U0001f600"_s, u"z"_s, u"_"_s,      u"\ufdd0"_s};
    const auto sign = [](int order) { return (order > 0) - (order < 0); };
    for (const QString& a : texts) {
        for (const QString& b : texts) {
            QCOMPARE(sign(comparison.sortKey(a).compare(comparison.sortKey(b))),
                     comparison.localizedCaseInsensitiveCompare(a, b));
        }
    }
}

void StringComparisonTest::longTextsHaveKeys()
{
    const StringComparison comparison(u"ko_KR"_s);
    const QString text = u"똠방각하 \u00e9 "_s.repeated(20000);
    QVERIFY(comparison.sortKey(text) < comparison.sortKey(text + u"a"_s));
    QVERIFY(comparison.sortKey(text) == comparison.sortKey(text.toUpper()));
}

void StringComparisonTest::longRunsOfMarksCompareAsTheCollationSays()
{
    Random random;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale("ko_KR"), status));
    QVERIFY(U_SUCCESS(status));
    collator->setStrength(icu::Collator::SECONDARY);
    collator->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
    const StringComparison comparison(u"ko_KR"_s);
    const QStringList parts{u"\u0301"_s, u"\u0323"_s, u"\u0344"_s, u"\u0F73"_s, u"\u3099"_s, u"\u0338"_s};
    const QStringList letters{u"a"_s, u"E"_s, u"한"_s, u"\u1112\u1161"_s, u"\u00C9"_s};
    const auto text = [&] {
        QString made;
        for (qsizetype count = random.below(3); count >= 0; --count) {
            made += letters[random.below(letters.size())];
            for (qsizetype marks = random.below(2) == 0 ? 100 : 2; marks > 0; --marks) {
                made += parts[random.below(2) == 0 ? 0 : random.below(parts.size())];
            }
        }
        return made;
    };
    for (int round = 0; round < 1000; ++round) {
        const QString a = text();
        // Some that differ by the order of their marks alone.
        QString b = random.below(2) == 0 ? text() : a;
        const qsizetype at = 1 + random.below(b.size() - 1);
        if (b[at].isMark() && b[at - 1].isMark()) {
            std::swap(b[at], b[at - 1]);
        }
        const int expected = collator->compare(QStringView(a).utf16(), int32_t(a.size()), QStringView(b).utf16(),
                                               int32_t(b.size()), status);
        QCOMPARE(comparison.localizedCaseInsensitiveCompare(a, b), expected);
        const QByteArray keyA = comparison.sortKey(a);
        const QByteArray keyB = comparison.sortKey(b);
        QCOMPARE(keyA < keyB ? -1 : keyB < keyA ? 1 : 0, expected);
    }
}

void StringComparisonTest::unpairedSurrogatesCompare()
{
    const StringComparison comparison(u"en_US"_s);
    const QString high(QChar(0xd800));
    QCOMPARE(comparison.localizedCaseInsensitiveCompare(high, high), 0);
    QVERIFY(comparison.localizedCaseInsensitiveCompare(high, u"a") != 0);
}

void StringComparisonTest::theCurrentLocaleIgnoresCase()
{
    QCOMPARE(StringComparison::current().localizedCaseInsensitiveCompare(u"readme", u"README"), 0);
    QCOMPARE(&StringComparison::current(), &StringComparison::current());
}

void StringComparisonTest::withoutCollationTextsAreFolded()
{
    const StringComparison folding = StringComparison::byFolding();
    QCOMPARE(folding.localizedCaseInsensitiveCompare(u"README", u"readme"), 0);
    QCOMPARE(folding.localizedCaseInsensitiveCompare(u"é", u"E\u0301"), 0);
    QVERIFY(folding.localizedCaseInsensitiveCompare(u"a", u"B") < 0);
    QVERIFY(folding.localizedCaseInsensitiveCompare(u"é", u"e") > 0);
    for (const QString& a : {u"a"_s, u"B"_s, u"é"_s, u"한글"_s, QString()}) {
        for (const QString& b : {u"A"_s, u"b"_s, u"e"_s, u"가"_s, QString()}) {
            const int byKey = folding.sortKey(a).compare(folding.sortKey(b));
            const int byText = folding.localizedCaseInsensitiveCompare(a, b);
            QVERIFY((byKey < 0) == (byText < 0) && (byKey > 0) == (byText > 0));
        }
    }
}

const kelm::test::Registered<StringComparisonTest> registered;

} // namespace string_comparison_test

#include "string_comparison_test.moc"
