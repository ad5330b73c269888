#include "platform/text/canonical_text.h"
#include "support/random.h"
#include "support/test_program.h"

#include <QtTest>

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace canonical_text_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class CanonicalTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreDecomposedAndFolded_data();
    void textsAreDecomposedAndFolded();
    void longRunsOfMarksAreDecomposedAsShortOnes();
    void manyMarksAreTold();
};

void CanonicalTextTest::textsAreDecomposedAndFolded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("withoutCase");
    QTest::newRow("empty") << u""_s << u""_s << u""_s;
    QTest::newRow("plain") << u"let A = b"_s << u"let A = b"_s << u"let a = b"_s;
    QTest::newRow("accent") << u"\u00C9"_s << u"E\u0301"_s << u"e\u0301"_s;
    QTest::newRow("Korean") << u"\uD55C"_s << u"\u1112\u1161\u11AB"_s << u"\u1112\u1161\u11AB"_s;
    QTest::newRow("order of marks") << u"a\u0301\u0323"_s << u"a\u0323\u0301"_s << u"a\u0323\u0301"_s;
    QTest::newRow("sharp s") << u"Straße"_s << u"Straße"_s << u"strasse"_s;
    QTest::newRow("decomposed once more when folded") << u"\u1E9B"_s << u"\u017F\u0307"_s << u"s\u0307"_s;
    QTest::newRow("a mark that folds to a letter") << u"\u0345\u0301"_s << u"\u0301\u0345"_s << u"\u0301\u03B9"_s;
    QTest::newRow("beyond the first plane")
        << u"\U00010400\U0001D15E"_s << u"\U00010400\U0001D157\U0001D165"_s << u"\U00010428\U0001D157\U0001D165"_s;
    QTest::newRow("half a pair") << QString(QChar(0xD800)) << QString(QChar(0xD800)) << QString(QChar(0xD800));
    QTest::newRow("NUL") << QString(QChar(0)) << QString(QChar(0)) << QString(QChar(0));
    QTest::newRow("long") << u"\u00C9"_s.repeated(10'000) << u"E\u0301"_s.repeated(10'000)
                          << u"e\u0301"_s.repeated(10'000);
}

void CanonicalTextTest::textsAreDecomposedAndFolded()
{
    QFETCH(QString, text);
    QFETCH(QString, form);
    QFETCH(QString, withoutCase);
    QCOMPARE(decomposed(text), form);
    QCOMPARE(decomposedWithoutCase(text), withoutCase);
}

void CanonicalTextTest::longRunsOfMarksAreDecomposedAsShortOnes()
{
    Random random;
    // Marks of many classes, those that decompose, and those that begin with no class of their own.
    const QStringList marks{u"\u0301"_s, u"\u0323"_s, u"\u0345"_s,     u"\u0344"_s,    u"\u0F71"_s, u"\u0F73"_s,
                            u"\u0F81"_s, u"\u05B0"_s, u"\U0001D165"_s, u"\u3099"_s,    u"\u0338"_s, u"\u1DFA"_s,
                            u"\u0300"_s, u"\u0340"_s, u"\u0343"_s,     u"\U000E0100"_s};
    const QStringList letters{u"a"_s,
                              u"\u00C9"_s,
                              u"\u1E9B"_s,
                              u"\uD55C"_s,
                              u"\uAC00"_s,
                              u"\u1112"_s,
                              u"\u1161"_s,
                              QString(QChar(0xD834)),
                              QString(QChar(0xDD65)),
                              u"\u0F77"_s};
    for (int round = 0; round < 2000; ++round) {
        QString text;
        for (qsizetype part = random.below(6); part >= 0; --part) {
            for (qsizetype count = random.below(4); count > 0; --count) {
                text += letters[random.below(letters.size())];
            }
            for (qsizetype count = random.below(4) == 0 ? random.below(200) : random.below(4); count > 0; --count) {
                text += marks[random.below(marks.size())];
            }
        }
        // What the library gives for the whole, however long its runs.
        UErrorCode status = U_ZERO_ERROR;
        const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFDInstance(status);
        const auto reference = [&](const icu::UnicodeString& from) { return normalizer->normalize(from, status); };
        const auto string = [](const icu::UnicodeString& from) {
            return QString(reinterpret_cast<const QChar*>(from.getBuffer()), from.length());
        };
        const icu::UnicodeString whole(text.utf16(), int32_t(text.size()));
        QCOMPARE(decomposed(text), string(reference(whole)));
        QCOMPARE(decomposedWithoutCase(text), string(reference(reference(whole).foldCase())));
    }
}

void CanonicalTextTest::manyMarksAreTold()
{
    const QString marks = u"\u0301\u0323"_s.repeated(40);
    QVERIFY(hasManyMarks(marks));
    QVERIFY(hasManyMarks(u"some text e"_s + marks + u"and more"_s));
    QVERIFY(hasManyMarks(u"\U0001D165"_s.repeated(50)));
    QVERIFY(!hasManyMarks(marks.first(40)));
    QVERIFY(!hasManyMarks(u"e\u0301\u0323"_s.repeated(1000)));
    QVERIFY(!hasManyMarks(u"\u1112\u1161\u11AB"_s.repeated(1000)));
    QVERIFY(!hasManyMarks(QString()));
    // A time in proportion to its square would be hours.
    QCOMPARE(decomposed(u"\u0301\u0323"_s.repeated(500'000)),
             u"\u0323"_s.repeated(500'000) + u"\u0301"_s.repeated(500'000));
}

const kelm::test::Registered<CanonicalTextTest> registered;

} // namespace canonical_text_test

#include "canonical_text_test.moc"
