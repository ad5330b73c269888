#include "support/script_texts.h"
#include "support/test_program.h"
#include "text/boundaries/text_boundaries.h"

#include <QtTest>

#include <algorithm>

namespace text_boundaries_test {

using namespace kelm;

class TextBoundariesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void charactersOfATreeAreThoseOfItsText();
    void charactersOfALongLineAreTold();
    void wordsOfATreeAreThoseOfItsText();
    void noWordStopFallsWithinACharacter();
    void wordStopsAheadAndBackAgree();
    void wordsEndBehindTheirRun_data();
    void wordsEndBehindTheirRun();
    void wordsStartBeforeTheirRun_data();
    void wordsStartBeforeTheirRun();
    void aDoubleClickTakesTheRunOfOneKind_data();
    void aDoubleClickTakesTheRunOfOneKind();
};

/// A tree of pieces that end anywhere.
TextTree treeOf(const QString& text, test::Random& random)
{
    std::vector<TextTree> parts;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype size = std::min(1 + random.below(5000), text.size() - at);
        parts.emplace_back(QStringView(text).sliced(at, size));
        at += size;
    }
    return TextTree::joined(parts);
}

void TextBoundariesTest::charactersOfATreeAreThoseOfItsText()
{
    test::RandomScripts random;
    for (int round = 0; round < 20; ++round) {
        QString text;
        while (text.size() < 12'000) {
            text += random.text(60);
        }
        const TextTree tree = treeOf(text, random);
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        for (qsizetype index = 0, at = 0; index + 1 < boundaries.size(); ++index) {
            const qsizetype next = nextGraphemeBoundary(tree, at);
            QCOMPARE(next, boundaries[index + 1]);
            QCOMPARE(previousGraphemeBoundary(tree, next), at);
            QCOMPARE(graphemeBoundaryAtOrBefore(tree, next - 1), at);
            QCOMPARE(graphemeBoundaryAtOrBefore(tree, next), next);
            at = next;
        }
    }
}

void TextBoundariesTest::charactersOfALongLineAreTold()
{
    // More flags and marks than any piece of the tree holds.
    const QString text = QStringLiteral("x") + QStringLiteral("🇰🇷").repeated(20'000) + QStringLiteral("e") +
                         QStringLiteral("\u0301").repeated(20'000) + QStringLiteral("y");
    const TextTree tree(text);
    const qsizetype marked = text.indexOf(u'e');
    for (qsizetype offset = marked - 9; offset < marked; ++offset) {
        const qsizetype flag = offset - (offset - 1) % 4;
        QCOMPARE(graphemeBoundaryAtOrBefore(tree, offset), flag);
        QCOMPARE(nextGraphemeBoundary(tree, offset), flag + 4);
    }
    for (const qsizetype offset : {marked + 1, marked + 10'000, text.size() - 2}) {
        QCOMPARE(graphemeBoundaryAtOrBefore(tree, offset), marked);
        QCOMPARE(nextGraphemeBoundary(tree, offset), text.size() - 1);
    }
    QCOMPARE(nextGraphemeBoundary(TextTree(), 0), qsizetype(0));
    QCOMPARE(previousGraphemeBoundary(TextTree(), 0), qsizetype(0));
}

void TextBoundariesTest::wordsOfATreeAreThoseOfItsText()
{
    test::RandomScripts random;
    for (int round = 0; round < 12; ++round) {
        QString text;
        while (text.size() < 6'000) {
            // Words that are longer than what is looked at, now and then.
            text += random.below(4) == 0 ? QStringLiteral("कम").repeated(random.below(1200)) : random.text(60);
        }
        const TextTree tree = treeOf(text, random);
        for (int place = 0; place < 150; ++place) {
            const qsizetype offset = random.below(text.size() + 1);
            QCOMPARE(nextWordEnd(tree, offset), nextWordEnd(text, offset));
            QCOMPARE(previousWordStart(tree, offset), previousWordStart(text, offset));
            QCOMPARE(wordAt(tree, offset), wordAt(text, offset));
        }
    }
}

void TextBoundariesTest::noWordStopFallsWithinACharacter()
{
    test::RandomScripts random;
    for (int round = 0; round < 100; ++round) {
        const QString text = random.text(12);
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        const auto isBoundary = [&](qsizetype place) {
            return text.isEmpty() || std::binary_search(boundaries.begin(), boundaries.end(), place);
        };
        for (qsizetype offset = 0; offset <= text.size(); ++offset) {
            const qsizetype end = nextWordEnd(text, offset);
            const qsizetype start = previousWordStart(text, offset);
            QVERIFY(isBoundary(end));
            QVERIFY(isBoundary(start));
            // Every step gets on.
            QVERIFY(end > offset || offset == text.size());
            QVERIFY(start < offset || offset == 0);
            const TextRange word = wordAt(text, offset);
            QVERIFY(isBoundary(word.location));
            QVERIFY(isBoundary(word.end()));
            // Between a carriage return and its line feed it is the word before both.
            const qsizetype at = graphemeBoundaryAtOrBefore(text, offset);
            QVERIFY(word.location <= at && at <= word.end());
        }
    }
}

void TextBoundariesTest::wordStopsAheadAndBackAgree()
{
    // Without white space each stop is the end of one word and the start of the next.
    test::RandomScripts random;
    for (int round = 0; round < 200; ++round) {
        QString text = random.text(20);
        text.removeIf([](QChar unit) { return unit.isSpace(); });
        if (text.size() > 200) {
            continue;
        }
        QList<qsizetype> ahead{0};
        while (ahead.last() < text.size()) {
            ahead.append(nextWordEnd(text, ahead.last()));
        }
        QList<qsizetype> back{text.size()};
        while (back.first() > 0) {
            back.prepend(previousWordStart(text, back.first()));
        }
        QCOMPARE(back, ahead);
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
    QTest::newRow("a mark belongs to its sign") << QStringLiteral("a=\u0338b") << 1 << 3;
    QTest::newRow("a mark on a blank") << QStringLiteral("a \u0301b") << 1 << 4;
    QTest::newRow("from within a character") << QStringLiteral("ae\u0301 b") << 2 << 3;
    QTest::newRow("from within a blank") << QStringLiteral("a\r\nb c") << 2 << 4;
    QTest::newRow("a joiner in a word") << QStringLiteral("क्\u200dष ब") << 0 << 4;
    QTest::newRow("Thai") << QStringLiteral("ภาษาไทย") << 0 << 4;
    QTest::newRow("Chinese") << QStringLiteral("今天天气") << 0 << 2;
    QTest::newRow("a name of several scripts") << QStringLiteral("변수_1x 값") << 0 << 5;
    QTest::newRow("Chinese with a number") << QStringLiteral("价格1=") << 0 << 3;
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
    QTest::newRow("a mark belongs to its sign") << QStringLiteral("a=\u0338") << 3 << 1;
    QTest::newRow("a mark belongs to its letter") << QStringLiteral("=e\u0301") << 3 << 1;
    QTest::newRow("from within a character") << QStringLiteral("b ae\u0301") << 4 << 2;
    QTest::newRow("from within a line end") << QStringLiteral("ab\r\nc") << 3 << 0;
    QTest::newRow("flags are signs") << QStringLiteral("a🇰🇷🇰🇷") << 9 << 1;
    QTest::newRow("Thai") << QStringLiteral("ภาษาไทย") << 7 << 4;
    QTest::newRow("Chinese") << QStringLiteral("今天天气") << 4 << 2;
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
    QTest::newRow("a sign with its mark") << QStringLiteral("a=\u0338b") << 2 << 1 << 3;
    QTest::newRow("Thai") << QStringLiteral("ภาษาไทย") << 5 << 4 << 7;
    QTest::newRow("the start of a word within a run") << QStringLiteral("今天天气") << 2 << 2 << 4;
    QTest::newRow("the end of a run") << QStringLiteral("今天天气") << 4 << 2 << 4;
    QTest::newRow("beyond the text") << QStringLiteral("ab cd") << 9 << 3 << 5;
    QTest::newRow("nothing") << QString() << 0 << 0 << 0;
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
