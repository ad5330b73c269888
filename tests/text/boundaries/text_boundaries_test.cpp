#include "support/random_text.h"
#include "support/test_program.h"
#include "text/boundaries/text_boundaries.h"

#include <QtTest>

namespace text_boundaries_test {

using namespace kelm;

class TextBoundariesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void characterBoundariesAreThoseAPersonSees_data();
    void characterBoundariesAreThoseAPersonSees();
    void randomTextsAgreeWithTheWholeTextsBoundaries();
    void wordsEndBehindTheirRun_data();
    void wordsEndBehindTheirRun();
    void wordsStartBeforeTheirRun_data();
    void wordsStartBeforeTheirRun();
    void aDoubleClickTakesTheRunOfOneKind_data();
    void aDoubleClickTakesTheRunOfOneKind();
};

void TextBoundariesTest::characterBoundariesAreThoseAPersonSees_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<qsizetype>>("boundaries");
    using Boundaries = QList<qsizetype>;
    QTest::newRow("letters") << QStringLiteral("abc") << Boundaries{0, 1, 2, 3};
    QTest::newRow("combining mark") << QStringLiteral("e\u0301x") << Boundaries{0, 2, 3};
    QTest::newRow("CR LF is one") << QStringLiteral("a\r\nb") << Boundaries{0, 1, 3, 4};
    QTest::newRow("lone CR") << QStringLiteral("a\rb") << Boundaries{0, 1, 2, 3};
    QTest::newRow("LF CR are two") << QStringLiteral("\n\r") << Boundaries{0, 1, 2};
    QTest::newRow("emoji") << QStringLiteral("a😀b") << Boundaries{0, 1, 3, 4};
    QTest::newRow("family") << QStringLiteral("👩‍👩‍👧x") << Boundaries{0, 8, 9};
    QTest::newRow("flag") << QStringLiteral("🇰🇷🇰🇷") << Boundaries{0, 4, 8};
    QTest::newRow("skin tone") << QStringLiteral("👍🏽!") << Boundaries{0, 4, 5};
    QTest::newRow("Korean syllables") << QStringLiteral("한글") << Boundaries{0, 1, 2};
    QTest::newRow("Korean letters joined") << QStringLiteral("\u1112\u1161\u11abx") << Boundaries{0, 3, 4};
}

void TextBoundariesTest::characterBoundariesAreThoseAPersonSees()
{
    QFETCH(QString, text);
    QFETCH(QList<qsizetype>, boundaries);
    QList<qsizetype> forward{0};
    while (forward.last() < text.size()) {
        forward.append(nextGraphemeBoundary(text, forward.last()));
    }
    QCOMPARE(forward, boundaries);
    QList<qsizetype> backward{text.size()};
    while (backward.first() > 0) {
        backward.prepend(previousGraphemeBoundary(text, backward.first()));
    }
    QCOMPARE(backward, boundaries);
    QCOMPARE(graphemeCount(text), boundaries.size() - 1);
    for (qsizetype offset = 0; offset <= text.size(); ++offset) {
        const auto behind = std::upper_bound(boundaries.begin(), boundaries.end(), offset);
        QCOMPARE(graphemeBoundaryAtOrBefore(text, offset), *std::prev(behind));
    }
}

void TextBoundariesTest::randomTextsAgreeWithTheWholeTextsBoundaries()
{
    test::RandomText random;
    for (int round = 0; round < 300; ++round) {
        const QString text = random.text(60);
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
        qsizetype previous = 0;
        while (previous < text.size()) {
            finder.setPosition(previous);
            const qsizetype next = finder.toNextBoundary();
            QCOMPARE(nextGraphemeBoundary(text, previous), next);
            QCOMPARE(previousGraphemeBoundary(text, next), previous);
            previous = next;
        }
    }
}

void TextBoundariesTest::wordsEndBehindTheirRun_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::newRow("word") << QStringLiteral("foo bar") << 0 << 3;
    QTest::newRow("blanks are passed over") << QStringLiteral("foo  bar") << 3 << 8;
    QTest::newRow("underscores and digits belong") << QStringLiteral("a_1+2") << 0 << 3;
    QTest::newRow("signs are a run") << QStringLiteral("a+=b") << 1 << 3;
    QTest::newRow("over a line end") << QStringLiteral("a\r\nb") << 1 << 4;
    QTest::newRow("Korean") << QStringLiteral("한글 코드") << 0 << 2;
    QTest::newRow("combining") << QStringLiteral("e\u0301a b") << 0 << 3;
    QTest::newRow("astral letter") << QStringLiteral("𝒜x y") << 0 << 3;
    QTest::newRow("at the end") << QStringLiteral("ab") << 2 << 2;
}

void TextBoundariesTest::wordsEndBehindTheirRun()
{
    QFETCH(QString, text);
    QFETCH(int, from);
    QFETCH(int, to);
    QCOMPARE(nextWordEnd(text, from), qsizetype(to));
}

void TextBoundariesTest::wordsStartBeforeTheirRun_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::newRow("word") << QStringLiteral("foo bar") << 7 << 4;
    QTest::newRow("blanks are passed over") << QStringLiteral("foo  bar") << 5 << 0;
    QTest::newRow("signs are a run") << QStringLiteral("a+=b") << 3 << 1;
    QTest::newRow("emoji is a sign") << QStringLiteral("a😀") << 3 << 1;
    QTest::newRow("at the top") << QStringLiteral("ab") << 0 << 0;
}

void TextBoundariesTest::wordsStartBeforeTheirRun()
{
    QFETCH(QString, text);
    QFETCH(int, from);
    QFETCH(int, to);
    QCOMPARE(previousWordStart(text, from), qsizetype(to));
}

void TextBoundariesTest::aDoubleClickTakesTheRunOfOneKind_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    const QString text = QStringLiteral("foo_1  += x\nbar");
    QTest::newRow("word") << text << 2 << 0 << 5;
    QTest::newRow("blanks") << text << 5 << 5 << 7;
    QTest::newRow("signs") << text << 8 << 7 << 9;
    QTest::newRow("line end takes the word before") << text << 11 << 10 << 11;
    QTest::newRow("next line") << text << 12 << 12 << 15;
    QTest::newRow("empty line") << QStringLiteral("a\n\nb") << 2 << 2 << 2;
    QTest::newRow("end of text") << text << 15 << 12 << 15;
}

void TextBoundariesTest::aDoubleClickTakesTheRunOfOneKind()
{
    QFETCH(QString, text);
    QFETCH(int, at);
    QFETCH(int, start);
    QFETCH(int, end);
    QCOMPARE(wordAt(text, at), TextRange::between(start, end));
}

const kelm::test::Registered<TextBoundariesTest> registered;

} // namespace text_boundaries_test

#include "text_boundaries_test.moc"
