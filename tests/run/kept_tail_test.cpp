#include "run/kept_tail.h"
#include "support/random_text.h"
#include "support/test_program.h"

namespace kept_tail_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class KeptTailTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsShortIsKeptWhole();
    void theEndOfAnyTextIsKept();
    void aCharacterIsNotCut();
    void noHalfOfAPairIsLeftOfALongCharacter();
    void theFirstLineSaysHowMuchWasLetGo();
    void clearingBeginsAnew();
};

void KeptTailTest::whatIsShortIsKeptWhole()
{
    KeptTail tail(100, 10);
    QCOMPARE(tail.textBehindLetGoLine(), QString());
    tail.append(u"a"_s.repeated(60));
    tail.append(u"b"_s.repeated(50));
    QCOMPARE(tail.textBehindLetGoLine(), u"a"_s.repeated(60) + u"b"_s.repeated(50));
    QCOMPARE(tail.letGo(), qsizetype(0));
}

void KeptTailTest::theEndOfAnyTextIsKept()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        const qsizetype most = 20 + random.below(300);
        const qsizetype slack = 10 + random.below(40);
        KeptTail tail(most, slack);
        QString all;
        for (int piece = 0; piece < 60; ++piece) {
            const QString text = random.text(random.below(8) == 0 ? 400 : 12);
            tail.append(text);
            all += text;
            const QString kept = tail.text();
            QCOMPARE(kept, all.last(kept.size()));
            QCOMPARE(kept.size() + tail.letGo(), all.size());
            QCOMPARE(tail.units(), kept.size());
            const qsizetype units = random.below(kept.size() + 20);
            QCOMPARE(tail.end(units), kept.last(std::min(units, kept.size())));
            QVERIFY(kept.size() >= std::min(most, all.size()));
            QVERIFY(kept.size() <= most + 2 * slack);
        }
    }
}

void KeptTailTest::aCharacterIsNotCut()
{
    KeptTail tail(100, 40);
    tail.append(u"🇰🇷"_s.repeated(300));
    const qsizetype kept = tail.units();
    QVERIFY(tail.letGo() > 0);
    QCOMPARE(kept % 4, qsizetype(0));
    QCOMPARE(tail.text(), u"🇰🇷"_s.repeated(kept / 4));

    // One that is longer than the slack is.
    tail.clear();
    tail.append(u'e' + u"\u0301"_s.repeated(1000));
    QVERIFY(tail.units() <= 100 + 2 * 40);
}

void KeptTailTest::noHalfOfAPairIsLeftOfALongCharacter()
{
    const QString mark = QString::fromUcs4(U"\U000E0100");
    for (qsizetype most = 20; most < 24; ++most) {
        KeptTail tail(most, 8);
        tail.append(u"a"_s + mark.repeated(40));
        const QString kept = tail.text();
        QVERIFY(!kept.isEmpty());
        QVERIFY(!kept.front().isLowSurrogate());
    }
}

void KeptTailTest::theFirstLineSaysHowMuchWasLetGo()
{
    KeptTail tail;
    const QString mebibyte = u"0123456789abcde\n"_s.repeated(1 << 16);
    for (int piece = 0; piece < 67; ++piece) {
        tail.append(mebibyte);
    }
    QCOMPARE(tail.letGo(), qsizetype(2) << 20);
    QVERIFY(tail.textBehindLetGoLine().startsWith(u"[The first 2.0 MiB were let go.]\n0123456789abcde\n"_s));
    QCOMPARE(tail.text().size(), qsizetype(65) << 20);
}

void KeptTailTest::clearingBeginsAnew()
{
    KeptTail tail(10, 2);
    tail.append(u"x"_s.repeated(100));
    QVERIFY(tail.letGo() > 0);
    tail.clear();
    QVERIFY(tail.isEmpty());
    tail.append(u"new"_s);
    QCOMPARE(tail.textBehindLetGoLine(), u"new"_s);
}

const kelm::test::Registered<KeptTailTest> registered;

} // namespace kept_tail_test

#include "kept_tail_test.moc"
