#include "platform/text/canonical_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace canonical_text_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class CanonicalTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreDecomposedAndFolded_data();
    void textsAreDecomposedAndFolded();
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

const kelm::test::Registered<CanonicalTextTest> registered;

} // namespace canonical_text_test

#include "canonical_text_test.moc"
