#include "support/random_text.h"
#include "support/test_program.h"
#include "text/boundaries/grapheme_counter.h"

#include <QTextBoundaryFinder>
#include <QtTest>

#include <random>

namespace grapheme_counter_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

qsizetype countOfAll(QStringView text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    qsizetype count = 0;
    while (finder.toNextBoundary() > 0) {
        ++count;
    }
    return count;
}

/// Pieces that join with what stands beside them.
const QStringList& joiningPieces()
{
    static const QStringList pieces{
        u"a"_s,
        u"bc "_s,
        u"\n"_s,
        u"\r"_s,
        u"\r\n"_s,
        u"\u0301"_s,
        u"é"_s,
        u"한글"_s,
        u"\u1112"_s,
        u"\u1161"_s,
        u"\u11AB"_s,
        u"각\u11A8"_s,
        u"漢字"_s,
        u"かな\u3099"_s,
        u"😀"_s,
        u"👍🏽"_s,
        u"\u200d"_s,
        u"\ufe0f"_s,
        u"©"_s,
        u"│├──"_s,
        u"\u0600"_s,
        u"\u00ad"_s,
        u"\t"_s,
        u"👨‍👩‍👧"_s,
        QString(QChar(0xD83C)),
        QString(QChar(0xDFFB)),
    };
    return pieces;
}

} // namespace

class GraphemeCounterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void charactersAreCounted_data();
    void charactersAreCounted();
    void aCharacterMayComeInPieces_data();
    void aCharacterMayComeInPieces();
    void anyTextIsCountedAsItGrowsAndChanges();
    void aLongTextIsCountedBehindAnEdit();
};

void GraphemeCounterTest::charactersAreCounted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("count");
    QTest::newRow("empty") << QString() << qsizetype(0);
    QTest::newRow("one") << u"a"_s << qsizetype(1);
    QTest::newRow("Korean") << u"한글 abc"_s << qsizetype(6);
    QTest::newRow("Korean, decomposed") << u"\u1112\u1161\u11AB\u1100\u1173\u11AF"_s << qsizetype(2);
    QTest::newRow("line ends") << u"a\r\nb\nc\r"_s << qsizetype(6);
    QTest::newRow("emoji") << u"a😀b"_s << qsizetype(3);
    QTest::newRow("family") << u"👨‍👩‍👧"_s << qsizetype(1);
    QTest::newRow("flags") << u"🇰🇷🇯🇵"_s << qsizetype(2);
    QTest::newRow("accents") << u"e\u0301e\u0301\u0302"_s << qsizetype(2);
}

void GraphemeCounterTest::charactersAreCounted()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, count);
    GraphemeCounter counter;
    QCOMPARE(counter.count(text), count);
    QCOMPARE(counter.count(text), count);
}

void GraphemeCounterTest::aCharacterMayComeInPieces_data()
{
    QTest::addColumn<QStringList>("pieces");
    QTest::addColumn<qsizetype>("count");
    QTest::newRow("line end") << QStringList{u"a\r"_s, u"\nb"_s} << qsizetype(3);
    QTest::newRow("accent") << QStringList{u"abc"_s, u"\u0301"_s, u"\u0302d"_s} << qsizetype(4);
    QTest::newRow("jamo") << QStringList{u"\u1112"_s, u"\u1161"_s, u"\u11AB"_s, u"\u1100"_s} << qsizetype(2);
    QTest::newRow("flag") << QStringList{u"🇰"_s, u"🇷"_s, u"🇯"_s, u"🇵"_s} << qsizetype(2);
    QTest::newRow("joined") << QStringList{u"👨"_s, u"\u200d"_s, u"👩"_s} << qsizetype(1);
    QTest::newRow("surrogates") << QStringList{u"a"_s, QString(QChar(0xD83C)), QString(QChar(0xDFFB))} << qsizetype(1);
}

void GraphemeCounterTest::aCharacterMayComeInPieces()
{
    QFETCH(QStringList, pieces);
    QFETCH(qsizetype, count);
    GraphemeCounter counter;
    QString text;
    qsizetype last = 0;
    for (const QString& piece : pieces) {
        text += piece;
        last = counter.count(text);
        QCOMPARE(last, countOfAll(text));
    }
    QCOMPARE(last, count);
}

void GraphemeCounterTest::anyTextIsCountedAsItGrowsAndChanges()
{
    std::mt19937 random(20261121);
    const auto below = [&random](qsizetype limit) { return qsizetype(random() % std::uint32_t(limit)); };
    const QStringList& pieces = joiningPieces();
    for (int round = 0; round < 300; ++round) {
        GraphemeCounter counter;
        QString text;
        for (int step = 0; step < 40; ++step) {
            QString added;
            for (qsizetype piece = below(6); piece > 0; --piece) {
                added += pieces[below(pieces.size())];
            }
            if (below(4) == 0 && !text.isEmpty()) {
                const qsizetype at = below(text.size());
                counter.textReplaced(at);
                text.replace(at, below(text.size() - at + 1), added);
            } else {
                text += added;
            }
            if (below(3) != 0) {
                QCOMPARE(counter.count(text), countOfAll(text));
            }
        }
    }
}

void GraphemeCounterTest::aLongTextIsCountedBehindAnEdit()
{
    QString text = u"한 줄의 글 😀 and a line\n"_s.repeated(20000);
    GraphemeCounter counter;
    QCOMPARE(counter.count(text), countOfAll(text));
    for (const qsizetype at : {text.size() - 1, text.size() / 2, qsizetype(70000), qsizetype(1), qsizetype(0)}) {
        counter.textReplaced(at);
        text.insert(at, u"\u0301x"_s);
        QCOMPARE(counter.count(text), countOfAll(text));
    }
    counter.textReplaced(0);
    QCOMPARE(counter.count(QString()), qsizetype(0));
    QCOMPARE(counter.count(u"neu"_s), qsizetype(3));
}

const kelm::test::Registered<GraphemeCounterTest> registered;

} // namespace grapheme_counter_test

#include "grapheme_counter_test.moc"
