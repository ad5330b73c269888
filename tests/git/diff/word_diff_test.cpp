#include "git/diff/common_subsequence.h"
#include "git/diff/word_diff.h"
#include "support/test_program.h"

#include <QElapsedTimer>
#include <QtTest>

#include <random>

namespace word_diff_test {

using namespace Qt::Literals::StringLiterals;

using namespace kelm;

namespace {

/// Segments as text: "[x]" the same, "-x" removed, "+x" added.
QStringList described(const QList<WordDiff::Segment>& segments)
{
    QStringList texts;
    for (const WordDiff::Segment& segment : segments) {
        switch (segment.kind) {
        case WordDiff::SegmentKind::same:
            texts.append(u'[' + segment.text + u']');
            break;
        case WordDiff::SegmentKind::removed:
            texts.append(u'-' + segment.text);
            break;
        case WordDiff::SegmentKind::added:
            texts.append(u'+' + segment.text);
            break;
        }
    }
    return texts;
}

QString joined(const QList<WordDiff::Segment>& segments)
{
    QString text;
    for (const WordDiff::Segment& segment : segments) {
        text += segment.text;
    }
    return text;
}

using Numbers = std::vector<std::uint32_t>;

/// The full table and the walk back through it, as plainly as they can be written.
Numbers fullTableSubsequence(const Numbers& a, const Numbers& b)
{
    std::vector<std::vector<int>> table(a.size() + 1, std::vector<int>(b.size() + 1, 0));
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) {
            table[i + 1][j + 1] = a[i] == b[j] ? table[i][j] + 1 : std::max(table[i + 1][j], table[i][j + 1]);
        }
    }
    Numbers common;
    std::size_t i = a.size();
    std::size_t j = b.size();
    while (i > 0 && j > 0) {
        if (a[i - 1] == b[j - 1]) {
            common.push_back(static_cast<std::uint32_t>(i - 1));
            --i;
            --j;
        } else if (table[i - 1][j] < table[i][j - 1]) {
            --j;
        } else {
            --i;
        }
    }
    std::reverse(common.begin(), common.end());
    return common;
}

} // namespace

class WordDiffTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindsAreInOrder();
    void tokensAreRunsOfTwoClasses_data();
    void tokensAreRunsOfTwoClasses();
    void changedTokensAreMarked_data();
    void changedTokensAreMarked();
    void tieStepsBackInTheOldList();
    void subsequenceIsThatOfTheFullTable_data();
    void subsequenceIsThatOfTheFullTable();
    void littleMemoryGivesTheSameSubsequence_data();
    void littleMemoryGivesTheSameSubsequence();
    void comparisonEndsWhenItIsStopped_data();
    void comparisonEndsWhenItIsStopped();
    void diffFollowsTheFullTable();
    void everyTokenGivesOneSegmentAndJoiningGivesTheLineBack();
    void veryLongLinesEnd_data();
    void veryLongLinesEnd();
};

void WordDiffTest::kindsAreInOrder()
{
    QCOMPARE(static_cast<int>(WordDiff::SegmentKind::same), 0);
    QCOMPARE(static_cast<int>(WordDiff::SegmentKind::removed), 1);
    QCOMPARE(static_cast<int>(WordDiff::SegmentKind::added), 2);
}

void WordDiffTest::tokensAreRunsOfTwoClasses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("tokens");
    const auto row = [](const char* name, const QString& text, const QStringList& tokens) {
        QTest::newRow(name) << text << tokens;
    };
    row("empty", u""_s, {});
    row("one word", u"foo_bar1"_s, {u"foo_bar1"_s});
    row("dash", u"foo-bar"_s, {u"foo"_s, u"-"_s, u"bar"_s});
    row("comma and blank are one", u"a, b"_s, {u"a"_s, u", "_s, u"b"_s});
    row("bracket and blank are one", u"x) {"_s, {u"x"_s, u") {"_s});
    row("indentation and bracket", u"    (x"_s, {u"    ("_s, u"x"_s});
    row("blank first", u" a"_s, {u" "_s, u"a"_s});
    row("blanks and tabs", u" \t "_s, {u" \t "_s});
    row("underscores", u"_ __"_s, {u"_"_s, u" "_s, u"__"_s});
    row("Korean", u"또는 이것"_s, {u"또는"_s, u" "_s, u"이것"_s});
    row("letter with marks", u"e\u0301a"_s, {u"e\u0301a"_s});
    row("mark behind punctuation belongs to it", u"-\u0301a"_s, {u"-\u0301"_s, u"a"_s});
    row("mark alone", u"\u0301a"_s, {u"\u0301"_s, u"a"_s});
    row("underscore with a mark is no underscore", u"a_\u0301b"_s, {u"a"_s, u"_\u0301"_s, u"b"_s});
    row("numbers of all kinds", u"1٢Ⅷ½x"_s, {u"1٢Ⅷ½x"_s});
    row("letters beyond the first plane", u"a\U0001D400b"_s, {u"a\U0001D400b"_s});
    row("emoji", u"a👍🏽b"_s, {u"a"_s, u"👍🏽"_s, u"b"_s});
    row("family emoji is one character", u"👨‍👩‍👧x"_s, {u"👨‍👩‍👧"_s, u"x"_s});
    row("Hindi", u"क्षत्रिय, हिन्दी"_s, {u"क्षत्रिय"_s, u", "_s, u"हिन्दी"_s});
    row("Thai", u"กำลัง(ไทย)"_s, {u"กำลัง"_s, u"("_s, u"ไทย"_s, u")"_s});
    row("a flag behind a pictograph", u"a😀🇰🇷b"_s, {u"a"_s, u"😀🇰🇷"_s, u"b"_s});
    row("a sign with a letter's mark", u"a+\u0903b"_s, {u"a"_s, u"+\u0903"_s, u"b"_s});
    row("CR LF", u"a\r\nb"_s, {u"a"_s, u"\r\n"_s, u"b"_s});
    row("CR at the end", u"a;\r"_s, {u"a"_s, u";\r"_s});
    row("unpaired surrogate", u"a"_s + QChar(0xD800) + u"b"_s, {u"a"_s, QString(QChar(0xD800)), u"b"_s});
    row("null", u"a"_s + QChar(0) + u"b"_s, {u"a"_s, QString(QChar(0)), u"b"_s});
}

void WordDiffTest::tokensAreRunsOfTwoClasses()
{
    QFETCH(QString, text);
    QFETCH(QStringList, tokens);
    QCOMPARE(WordDiff::tokenize(text), tokens);
}

void WordDiffTest::changedTokensAreMarked_data()
{
    QTest::addColumn<QString>("oldLine");
    QTest::addColumn<QString>("newLine");
    QTest::addColumn<QStringList>("oldSegments");
    QTest::addColumn<QStringList>("newSegments");
    const auto row = [](const char* name, const QString& oldLine, const QString& newLine,
                        const QStringList& oldSegments, const QStringList& newSegments) {
        QTest::newRow(name) << oldLine << newLine << oldSegments << newSegments;
    };
    row("both empty", u""_s, u""_s, {}, {});
    row("equal", u"a b"_s, u"a b"_s, {u"[a]"_s, u"[ ]"_s, u"[b]"_s}, {u"[a]"_s, u"[ ]"_s, u"[b]"_s});
    row("old empty", u""_s, u"a b"_s, {}, {u"+a"_s, u"+ "_s, u"+b"_s});
    row("new empty", u"a b"_s, u""_s, {u"-a"_s, u"- "_s, u"-b"_s}, {});
    row("nothing in common", u"a-b"_s, u"c+d"_s, {u"-a"_s, u"--"_s, u"-b"_s}, {u"+c"_s, u"++"_s, u"+d"_s});
    row("one word", u"int x = 1;"_s, u"int y = 1;"_s, {u"[int]"_s, u"[ ]"_s, u"-x"_s, u"[ = ]"_s, u"[1]"_s, u"[;]"_s},
        {u"[int]"_s, u"[ ]"_s, u"+y"_s, u"[ = ]"_s, u"[1]"_s, u"[;]"_s});
    row("neighbours stay apart", u"a.b"_s, u"x"_s, {u"-a"_s, u"-."_s, u"-b"_s}, {u"+x"_s});
    row("indentation with a bracket is one change", u"  (x"_s, u"    (x"_s, {u"-  ("_s, u"[x]"_s},
        {u"+    ("_s, u"[x]"_s});
    row("more words in front", u"b a"_s, u"a b a"_s, {u"[b]"_s, u"[ ]"_s, u"[a]"_s},
        {u"+a"_s, u"+ "_s, u"[b]"_s, u"[ ]"_s, u"[a]"_s});
    row("the first of several equal words is taken", u"x"_s, u"x-x"_s, {u"[x]"_s}, {u"[x]"_s, u"+-"_s, u"+x"_s});
    row("canonically equal", u"caf\u00e9 x"_s, u"cafe\u0301 y"_s, {u"[caf\u00e9]"_s, u"[ ]"_s, u"-x"_s},
        {u"[cafe\u0301]"_s, u"[ ]"_s, u"+y"_s});
    row("Korean composed and decomposed", u"한"_s, u"\u1112\u1161\u11AB"_s, {u"[한]"_s}, {u"[\u1112\u1161\u11AB]"_s});
    row("compatible is not equal", u"\uFB01"_s, u"fi"_s, {u"-\uFB01"_s}, {u"+fi"_s});
    row("case counts", u"A"_s, u"a"_s, {u"-A"_s}, {u"+a"_s});
}

void WordDiffTest::changedTokensAreMarked()
{
    QFETCH(QString, oldLine);
    QFETCH(QString, newLine);
    QFETCH(QStringList, oldSegments);
    QFETCH(QStringList, newSegments);
    const WordDiff::Result result = WordDiff::diff(oldLine, newLine);
    QCOMPARE(described(result.oldSegments), oldSegments);
    QCOMPARE(described(result.newSegments), newSegments);
}

void WordDiffTest::tieStepsBackInTheOldList()
{
    QCOMPARE(WordDiff::longestCommonSubsequence({u"x"_s, u"y"_s}, {u"y"_s, u"x"_s}), QStringList{u"x"_s});
    QCOMPARE(WordDiff::longestCommonSubsequence({}, {u"y"_s}), QStringList());
    QCOMPARE(WordDiff::longestCommonSubsequence({u"y"_s}, {}), QStringList());
}

void WordDiffTest::subsequenceIsThatOfTheFullTable_data()
{
    QTest::addColumn<int>("longest");
    QTest::addColumn<int>("kinds");
    QTest::addColumn<int>("turns");
    QTest::newRow("tiny, two kinds") << 6 << 2 << 4000;
    QTest::newRow("short, three kinds") << 40 << 3 << 1000;
    QTest::newRow("about a word") << 70 << 5 << 600;
    QTest::newRow("about two words, many kinds") << 140 << 60 << 300;
    QTest::newRow("several words") << 500 << 20 << 40;
    // More rows than are kept at once.
    QTest::newRow("long enough for checkpoints") << 6500 << 900 << 2;
}

void WordDiffTest::subsequenceIsThatOfTheFullTable()
{
    QFETCH(int, longest);
    QFETCH(int, kinds);
    QFETCH(int, turns);
    std::mt19937 random(20240203);
    const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
    for (int turn = 0; turn < turns; ++turn) {
        const auto sequence = [&] {
            const int length = longest > 1000 ? longest - below(100) : below(longest + 1);
            Numbers numbers(static_cast<std::size_t>(length));
            // Half of the elements are of one kind, as the blanks of a line are.
            std::generate(numbers.begin(), numbers.end(), [&] { return below(2) == 0 ? 0U : unsigned(below(kinds)); });
            return numbers;
        };
        const Numbers a = sequence();
        const Numbers b = sequence();
        QVERIFY2(commonSubsequence(a, b) == fullTableSubsequence(a, b), qPrintable(u"turn %1"_s.arg(turn)));
    }
}

void WordDiffTest::littleMemoryGivesTheSameSubsequence_data()
{
    QTest::addColumn<qulonglong>("mostKept");
    QTest::newRow("nothing") << 0ULL;
    QTest::newRow("less than a row") << 400ULL;
    QTest::newRow("a few rows") << 5000ULL;
    QTest::newRow("some rows at two levels") << 20000ULL;
}

void WordDiffTest::littleMemoryGivesTheSameSubsequence()
{
    QFETCH(qulonglong, mostKept);
    std::mt19937 random(20240501);
    const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
    // So long that with little memory blocks are cut into blocks, several times.
    const auto sequence = [&](std::size_t length) {
        Numbers numbers(length);
        std::generate(numbers.begin(), numbers.end(), [&] { return below(2) == 0 ? 0U : unsigned(below(700)); });
        return numbers;
    };
    const Numbers a = sequence(30'000);
    const Numbers b = sequence(30'100);
    const std::atomic<bool> goOn = false;
    QVERIFY(commonSubsequence(a, b, goOn, static_cast<std::size_t>(mostKept)) == commonSubsequence(a, b));
}

void WordDiffTest::comparisonEndsWhenItIsStopped_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("the steps of all rows are kept") << 1000;
    QTest::newRow("rows are computed twice") << 10000;
}

void WordDiffTest::comparisonEndsWhenItIsStopped()
{
    QFETCH(int, length);
    const Numbers numbers(static_cast<std::size_t>(length), 1);
    std::atomic<bool> stop = false;
    QCOMPARE(commonSubsequence(numbers, numbers, stop).size(), numbers.size());
    stop = true;
    QVERIFY(commonSubsequence(numbers, numbers, stop).empty());
    QCOMPARE(WordDiff::diff(u"a b"_s, u"b a"_s, stop), WordDiff::Result());
}

void WordDiffTest::diffFollowsTheFullTable()
{
    // Words of two letters with a common beginning and end: the part between is computed alone.
    std::mt19937 random(7);
    const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
    for (int turn = 0; turn < 3000; ++turn) {
        const auto list = [&](int longest) {
            QStringList tokens;
            for (int count = below(longest + 1); count > 0; --count) {
                tokens.append(QString(QChar(u'a' + below(3))));
            }
            return tokens;
        };
        const QStringList first = list(4);
        const QStringList last = list(4);
        const QStringList a = first + list(8) + last;
        const QStringList b = first + list(8) + last;
        const auto numbers = [](const QStringList& tokens) {
            Numbers result;
            for (const QString& token : tokens) {
                result.push_back(token.front().unicode());
            }
            return result;
        };
        QStringList expected;
        for (const std::uint32_t index : fullTableSubsequence(numbers(a), numbers(b))) {
            expected.append(a[index]);
        }
        QCOMPARE(WordDiff::longestCommonSubsequence(a, b), expected);
    }
}

void WordDiffTest::everyTokenGivesOneSegmentAndJoiningGivesTheLineBack()
{
    std::mt19937 random(11);
    const QStringList pieces{u"a"_s,  u"b"_s,      u" "_s,        u"("_s,  u"_"_s,
                             u"한"_s, u"\u0301"_s, u"👍🏽"_s, u"\r"_s, QString(QChar(0xDC00)),
                             u"1"_s};
    const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
    for (int turn = 0; turn < 2000; ++turn) {
        QString lines[2];
        for (QString& line : lines) {
            for (int count = below(30); count > 0; --count) {
                line += pieces[below(static_cast<int>(pieces.size()))];
            }
        }
        const auto result = WordDiff::diff(lines[0], lines[1]);
        QCOMPARE(joined(result.oldSegments), lines[0]);
        QCOMPARE(joined(result.newSegments), lines[1]);
        QCOMPARE(result.oldSegments.size(), WordDiff::tokenize(lines[0]).size());
        QCOMPARE(result.newSegments.size(), WordDiff::tokenize(lines[1]).size());
        const auto isSame = [](const WordDiff::Segment& segment) {
            return segment.kind == WordDiff::SegmentKind::same;
        };
        QCOMPARE(std::count_if(result.oldSegments.begin(), result.oldSegments.end(), isSame),
                 std::count_if(result.newSegments.begin(), result.newSegments.end(), isSame));
    }
}

void WordDiffTest::veryLongLinesEnd_data()
{
    QTest::addColumn<int>("tokens");
    QTest::addColumn<int>("kinds");
    QTest::newRow("10,000 tokens, few kinds") << 10000 << 3;
    QTest::newRow("10,000 tokens, all different") << 10000 << 1000000;
#ifdef QT_NO_DEBUG
    QTest::newRow("100,000 characters, a token each") << 100000 << 26;
#endif
}

void WordDiffTest::veryLongLinesEnd()
{
    QFETCH(int, tokens);
    QFETCH(int, kinds);
    std::mt19937 random(3);
    QString lines[2];
    for (QString& line : lines) {
        for (int index = 0; index < tokens; index += 2) {
            const int kind = std::uniform_int_distribution<int>(0, kinds - 1)(random);
            line += kinds <= 26 ? QString(QChar(u'a' + kind)) : QString::number(kind);
            line += u',';
        }
    }
    const auto result = WordDiff::diff(lines[0], lines[1]);
    QCOMPARE(result.oldSegments.size(), tokens);
    QCOMPARE(joined(result.oldSegments), lines[0]);
    QCOMPARE(joined(result.newSegments), lines[1]);
}

const kelm::test::Registered<WordDiffTest> registered;

} // namespace word_diff_test

#include "word_diff_test.moc"
