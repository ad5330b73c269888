#include "support/naive_lines.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/text_tree.h"

#include <QtTest>

#include <atomic>
#include <thread>

namespace text_tree_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Texts of what is cut in two the most easily: pairs of units that mean something together.
QString crumbs(test::RandomText& random, qsizetype length)
{
    static const QString alphabet = u"\r\n\r\n\n\rab\u0085\u2028\u2029\U0001F600\U0001F600 "_s;
    QString text(length, Qt::Uninitialized);
    for (QChar& unit : text) {
        unit = alphabet.at(random.below(alphabet.size()));
    }
    return text;
}

/// Everything that can be asked of a tree, beside the text itself and an index made of it.
void compare(const TextTree& tree, const QString& text, test::RandomText& random)
{
    QCOMPARE(tree.length(), text.size());
    QCOMPARE(tree.toString(), text);
    const test::NaiveLines lines(text);
    QCOMPARE(tree.lineCount(), lines.lineCount());
    QCOMPARE(tree.lineFeeds(), lines.lineFeeds());
    QVERIFY(tree == QStringView(text));
    for (int i = 0; i < 20; ++i) {
        const qsizetype offset = random.below(text.size() + 1);
        QCOMPARE(tree.lineAt(offset), lines.lineAt(offset));
        const qsizetype feeds = QStringView(text).first(offset).count(u'\n');
        QCOMPARE(tree.lineFeedsBefore(offset), feeds);
        QCOMPARE(tree.behindLineFeeds(feeds), offset == 0 ? 0 : text.lastIndexOf(u'\n', offset - 1) + 1);
        const qsizetype line = random.below(lines.lineCount());
        QCOMPARE(tree.lineStart(line), lines.start(line));
        QCOMPARE(tree.at(offset), offset < text.size() ? text.at(offset) : QChar());
        const TextRange range{offset, random.below(5000)};
        QCOMPARE(tree.substring(range), text.mid(range.location, range.length));
    }
}

} // namespace

class TextTreeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyTextHasOneLine();
    void lineEnds_data();
    void lineEnds();
    void whatIsOutsideIsClamped();
    void everyOffsetAndLineOfAShortText();
    void randomEditsLeaveWhatAStringWouldHold();
    void typingInOnePlaceLeavesFewPieces();
    void deletingNearlyAllLeavesFewPieces();
    void aTreePutIntoATreeSharesItsPieces();
    void treesAreEqualByTheirUnits();
    void whatTwoTextsHaveInCommonIsFound();
    void snapshotsAreReadOnAnotherThread();
};

void TextTreeTest::anEmptyTextHasOneLine()
{
    TextTree tree;
    QVERIFY(tree.isEmpty());
    QCOMPARE(tree.lineCount(), 1);
    QCOMPARE(tree.lineAt(0), 0);
    QCOMPARE(tree.lineStart(0), 0);
    QCOMPARE(tree.toString(), QString());
    QVERIFY(tree == TextTree(u""));
    tree.replace({0, 0}, QStringView());
    QVERIFY(tree.isEmpty());
    tree.replace({0, 0}, u"a\n");
    QCOMPARE(tree.lineCount(), 2);
    tree.replace({0, 2}, QStringView());
    QVERIFY(tree.isEmpty());
    QCOMPARE(tree.height(), 0);
}

void TextTreeTest::lineEnds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("feeds");
    QTest::newRow("none") << u"abc"_s << 1 << 0;
    QTest::newRow("line feed") << u"a\nb"_s << 2 << 1;
    QTest::newRow("at the end") << u"a\n"_s << 2 << 1;
    QTest::newRow("pair") << u"a\r\nb"_s << 2 << 1;
    QTest::newRow("carriage return") << u"a\rb"_s << 2 << 0;
    QTest::newRow("carriage return at the end") << u"a\r"_s << 2 << 0;
    QTest::newRow("reversed pair") << u"a\n\rb"_s << 3 << 1;
    QTest::newRow("two returns and a feed") << u"\r\r\n"_s << 3 << 1;
    QTest::newRow("separators") << u"\u0085\u2028\u2029"_s << 4 << 0;
}

void TextTreeTest::lineEnds()
{
    QFETCH(QString, text);
    // Whole, and grown from each place where it can be cut in two.
    for (qsizetype cut = 0; cut <= text.size(); ++cut) {
        const QString filling(5000, u'x');
        TextTree tree(QString(text).insert(cut, filling));
        tree.replace({cut, filling.size()}, QStringView());
        QCOMPARE(tree.toString(), text);
        QTEST(int(tree.lineCount()), "lines");
        QTEST(int(tree.lineFeeds()), "feeds");
    }
}

void TextTreeTest::whatIsOutsideIsClamped()
{
    TextTree tree(u"one\ntwo");
    QCOMPARE(tree.at(-1), QChar());
    QCOMPARE(tree.at(7), QChar());
    QCOMPARE(tree.substring({-3, 6}), u"one"_s);
    QCOMPARE(tree.substring({5, 100}), u"wo"_s);
    QCOMPARE(tree.lineAt(-1), 0);
    QCOMPARE(tree.lineAt(100), 1);
    QCOMPARE(tree.lineStart(-1), 0);
    QCOMPARE(tree.lineStart(5), 7);
    QCOMPARE(tree.part({5, 100}).toString(), u"wo"_s);
    tree.replace({100, 5}, u"!");
    QCOMPARE(tree.toString(), u"one\ntwo!"_s);
}

void TextTreeTest::everyOffsetAndLineOfAShortText()
{
    test::RandomText random;
    for (int round = 0; round < 50; ++round) {
        // Pieces are cut in the middle of what `crumbs` makes, at more places than a fresh text would be.
        QString text;
        TextTree tree;
        for (int i = 0; i < 8; ++i) {
            const QString more = crumbs(random, random.below(4000));
            const qsizetype offset = random.below(text.size() + 1);
            text.insert(offset, more);
            tree.replace({offset, 0}, more);
        }
        const test::NaiveLines lines(text);
        QCOMPARE(tree.lineCount(), lines.lineCount());
        for (qsizetype offset = 0; offset <= text.size(); offset += 1 + random.below(7)) {
            QCOMPARE(tree.lineAt(offset), lines.lineAt(offset));
        }
        for (qsizetype line = 0; line < lines.lineCount(); line += 1 + random.below(7)) {
            QCOMPARE(tree.lineStart(line), lines.start(line));
        }
    }
}

void TextTreeTest::randomEditsLeaveWhatAStringWouldHold()
{
    test::RandomText random;
    QString text = crumbs(random, 60'000);
    TextTree tree(text);
    QList<std::pair<TextTree, QString>> snapshots;
    constexpr int edits = 100'000;
    for (int i = 0; i < edits; ++i) {
        const qsizetype offset = random.below(text.size() + 1);
        // Mostly keys; now and then a paste or a large cut, which keep the length where it is.
        const bool isLarge = random.below(50) == 0;
        const qsizetype cut = random.below(isLarge && text.size() > 60'000 ? 20'000 : 3);
        const QString put = crumbs(random, random.below(isLarge && text.size() <= 60'000 ? 20'000 : 3));
        text.replace(offset, cut, put);
        tree.replace({offset, cut}, put);
        if (i % 5000 == 0) {
            snapshots.append({tree, text});
        }
        if (i % 500 == 0) {
            compare(tree, text, random);
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }
    compare(tree, text, random);
    for (const auto& [snapshot, old] : std::as_const(snapshots)) {
        compare(snapshot, old, random);
    }
    // A tree of n pieces whose halves differ by one in height is no higher than 1.44 log2 n.
    QVERIFY2(tree.height() <= 12, qPrintable(QString::number(tree.height())));
}

void TextTreeTest::typingInOnePlaceLeavesFewPieces()
{
    QString text(100'000, u'x');
    TextTree tree(text);
    for (int i = 0; i < 50'000; ++i) {
        tree.replace({50'000 + i, 0}, u"y");
    }
    QCOMPARE(tree.length(), 150'000);
    // No fuller than they may be, and half full at the least.
    QVERIFY2(tree.pieceCount() <= 2 * 150'000 / 4096 + 1, qPrintable(QString::number(tree.pieceCount())));
}

void TextTreeTest::deletingNearlyAllLeavesFewPieces()
{
    test::RandomText random;
    TextTree tree(QString(1'000'000, u'x'));
    while (tree.length() > 1000) {
        tree.replace({random.below(tree.length()), 1 + random.below(300)}, QStringView());
    }
    QVERIFY2(tree.pieceCount() <= 20, qPrintable(QString::number(tree.pieceCount())));
}

void TextTreeTest::aTreePutIntoATreeSharesItsPieces()
{
    const QString inner(1'000'000, u'i');
    const TextTree part(inner);
    TextTree tree(u"beginning\nend");
    tree.replace({10, 0}, part);
    QCOMPARE(tree.toString(), u"beginning\n"_s + inner + u"end"_s);
    QCOMPARE(tree.part({10, inner.size()}).toString(), inner);
    // The middle of the large text is the same memory in both.
    const QChar* own = nullptr;
    part.forEachPiece({500'000, 1}, [&own](QStringView piece) { return own = piece.data(), true; });
    QVERIFY(tree.forEachPiece({500'010, 1}, [own](QStringView piece) { return piece.data() == own; }));
}

void TextTreeTest::treesAreEqualByTheirUnits()
{
    test::RandomText random;
    const QString text = crumbs(random, 30'000);
    const TextTree whole(text);
    TextTree grown;
    for (qsizetype at = 0; at < text.size(); at += 100) {
        grown.replace({grown.length(), 0}, QStringView(text).mid(at, 100));
    }
    QVERIFY(whole == grown);
    TextTree other = grown;
    QVERIFY(other == grown);
    other.replace({15'000, 1}, u"Z");
    QVERIFY(!(other == grown));
    other.replace({15'000, 1}, QStringView());
    QVERIFY(!(other == whole));
}

void TextTreeTest::whatTwoTextsHaveInCommonIsFound()
{
    test::RandomText random;
    QCOMPARE(commonStart(TextTree(), TextTree(u"a")), 0);
    QCOMPARE(commonEnd(TextTree(u"a"), TextTree(), 0), 0);
    // Few kinds of units, so that the texts are alike where they do not share pieces.
    const auto someText = [&random](qsizetype longest) {
        QString text(random.below(longest + 1), u'a');
        for (qsizetype odd = random.below(3); odd > 0 && !text.isEmpty(); --odd) {
            text[random.below(text.size())] = u'b';
        }
        return text;
    };
    for (int round = 0; round < 30; ++round) {
        TextTree a(someText(60'000));
        TextTree b = random.below(4) == 0 ? TextTree(someText(60'000)) : a;
        for (qsizetype edits = random.below(6); edits > 0; --edits) {
            b.replace(random.range(b.length()), someText(random.below(2) == 0 ? 5 : 9'000));
        }
        const QString ofA = a.toString();
        const QString ofB = b.toString();
        const qsizetype start = std::mismatch(ofA.begin(), ofA.end(), ofB.begin(), ofB.end()).first - ofA.begin();
        QCOMPARE(commonStart(a, b), start);
        const qsizetype end = std::mismatch(ofA.rbegin(), ofA.rend(), ofB.rbegin(), ofB.rend()).first - ofA.rbegin();
        QCOMPARE(commonEnd(a, b, start), std::min(end, std::min(ofA.size(), ofB.size()) - start));
        QCOMPARE(commonEnd(a, b, 0), end);
    }
}

void TextTreeTest::snapshotsAreReadOnAnotherThread()
{
    test::RandomText random;
    const QString text = crumbs(random, 200'000);
    TextTree tree(text);
    std::atomic<int> right = 0;
    std::thread reader([snapshot = tree, &text, &right] {
        for (int i = 0; i < 50; ++i) {
            right += snapshot.toString() == text ? 1 : 0;
        }
    });
    for (int i = 0; i < 5000; ++i) {
        tree.replace({random.below(tree.length()), 2}, u"key");
    }
    reader.join();
    QCOMPARE(right.load(), 50);
}

const kelm::test::Registered<TextTreeTest> registered;

} // namespace text_tree_test

#include "text_tree_test.moc"
