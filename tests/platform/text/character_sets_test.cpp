#include "platform/text/character_sets.h"
#include "support/test_program.h"

#include <QtTest>

namespace character_sets_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class CharacterSetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newlinesAreTheSevenOfThem();
    void whitespaceIsTabAndSpaceSeparators();
    void splittingKeepsEmptyPieces_data();
    void splittingKeepsEmptyPieces();
    void trimmingTakesBothEnds();
};

void CharacterSetsTest::newlinesAreTheSevenOfThem()
{
    QList<int> found;
    for (int unit = 0; unit <= 0xffff; ++unit) {
        if (isNewline(char16_t(unit))) {
            found << unit;
        }
    }
    QCOMPARE(found, (QList<int>{0x0a, 0x0b, 0x0c, 0x0d, 0x85, 0x2028, 0x2029}));
}

void CharacterSetsTest::whitespaceIsTabAndSpaceSeparators()
{
    for (int unit = 0; unit <= 0xffff; ++unit) {
        const bool expected = unit == '\t' || QChar(unit).category() == QChar::Separator_Space;
        QVERIFY2(isWhitespace(char16_t(unit)) == expected, qPrintable(QString::number(unit, 16)));
        QCOMPARE(isWhitespaceOrNewline(char16_t(unit)), expected || isNewline(char16_t(unit)));
    }
}

void CharacterSetsTest::splittingKeepsEmptyPieces_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("pieces");
    QTest::newRow("empty") << QString() << QStringList{u""_s};
    QTest::newRow("one") << u"a"_s << QStringList{u"a"_s};
    QTest::newRow("final newline") << u"a\n"_s << QStringList{u"a"_s, u""_s};
    QTest::newRow("CRLF is two") << u"a\r\nb"_s << QStringList{u"a"_s, u""_s, u"b"_s};
    QTest::newRow("all kinds") << u"\na\u2028b\u0085\u000bc"_s << QStringList{u""_s, u"a"_s, u"b"_s, u""_s, u"c"_s};
}

void CharacterSetsTest::splittingKeepsEmptyPieces()
{
    QFETCH(QString, text);
    QFETCH(QStringList, pieces);
    QStringList found;
    for (const QStringView piece : split(text, isNewline)) {
        found << piece.toString();
    }
    QCOMPARE(found, pieces);
}

void CharacterSetsTest::trimmingTakesBothEnds()
{
    QCOMPARE(trimmed(u" \t\u3000a b\n\u00a0", isWhitespaceOrNewline).toString(), u"a b"_s);
    QCOMPARE(trimmed(u"\n a \n", isWhitespace).toString(), u"\n a \n"_s);
    QVERIFY(trimmed(u" \n", isWhitespaceOrNewline).isEmpty());
}

const kelm::test::Registered<CharacterSetsTest> registered;

} // namespace character_sets_test

#include "character_sets_test.moc"
