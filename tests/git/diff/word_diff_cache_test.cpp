#include "git/diff/word_diff_cache.h"
#include "platform/events/worker_pool.h"
#include "support/blocked_workers.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace word_diff_cache_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class WordDiffCacheTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neighboursAreOnePiece();
    void shortLinesAreComparedAtOnce();
    void longLinesAreComparedElsewhere();
    void severalLongPairsAreAllCompared();
    void lengthsOfBothLinesCount_data();
    void lengthsOfBothLinesCount();
    void manyPairsAreNotAllKept();
    void forgottenPairsAreNotTold();
    void cacheMayGoWhileLinesAreCompared();
    void forgottenPairsDoNotHoldUpOthers();
    void transfersFindTheirWorkersFree();
};

void WordDiffCacheTest::neighboursAreOnePiece()
{
    // The tokens "b", " " and "c" are removed, each a segment of its own.
    const ChangedWords words = ChangedWords::of(WordDiff::diff(u"a-b c"_s, u"a-"_s));
    QCOMPARE(words.oldLine, (std::vector<LineStretch>{{2, 3}}));
    QVERIFY(words.newLine.empty());
    QCOMPARE(ChangedWords::of(WordDiff::diff(u"x = 1;"_s, u"y = 2;"_s)).newLine,
             (std::vector<LineStretch>{{0, 1}, {4, 1}}));
}

void WordDiffCacheTest::shortLinesAreComparedAtOnce()
{
    int told = 0;
    WordDiffCache cache([&] { ++told; });
    const DiffHunk hunk = hunkOf({u"-let x = 1"_s, u"+let y = 1"_s, u"+let z = 1"_s});
    const ChangedWords* words = cache.words(hunk, 1, 2);
    QVERIFY(words != nullptr);
    QCOMPARE(words->oldLine, (std::vector<LineStretch>{{4, 1}}));
    QCOMPARE(cache.words(hunk, 1, 2), words);
    QCOMPARE(cache.size(), 1);
    QVERIFY(cache.words(hunk, 1, 3) != nullptr);
    QCOMPARE(cache.size(), 2);
    QCOMPARE(told, 0);
}

void WordDiffCacheTest::longLinesAreComparedElsewhere()
{
    int told = 0;
    WordDiffCache cache([&] { ++told; });
    const QString line = u"word,"_s.repeated(100'000);
    const DiffHunk hunk = hunkOf({u"-old "_s + line, u"+new "_s + line});
    QVERIFY(cache.words(hunk, 1, 2) == nullptr);
    QVERIFY(cache.words(hunk, 1, 2) == nullptr);
    QTRY_COMPARE(told, 1);
    const ChangedWords* words = cache.words(hunk, 1, 2);
    QVERIFY(words != nullptr);
    QCOMPARE(words->oldLine, (std::vector<LineStretch>{{0, 3}}));
    QCOMPARE(words->newLine, (std::vector<LineStretch>{{0, 3}}));
}

void WordDiffCacheTest::severalLongPairsAreAllCompared()
{
    WordDiffCache cache([] {});
    QStringList lines;
    for (int pair = 0; pair < 5; ++pair) {
        lines << u"-old "_s + u"x "_s.repeated(2000) << u"+new "_s + u"x "_s.repeated(2000);
    }
    const DiffHunk hunk = hunkOf(lines);
    for (int pair = 0; pair < 5; ++pair) {
        QVERIFY(cache.words(hunk, 2 * pair + 1, 2 * pair + 2) == nullptr);
    }
    for (int pair = 0; pair < 5; ++pair) {
        QTRY_VERIFY(cache.words(hunk, 2 * pair + 1, 2 * pair + 2) != nullptr);
    }
}

void WordDiffCacheTest::lengthsOfBothLinesCount_data()
{
    QTest::addColumn<qsizetype>("oldUnits");
    QTest::addColumn<qsizetype>("newUnits");
    QTest::addColumn<bool>("isAtOnce");
    constexpr qsizetype most = WordDiffCache::longestAtOnce;
    QTest::newRow("as long as may be") << most - 1 << qsizetype(1) << true;
    QTest::newRow("the other way round") << qsizetype(1) << most - 1 << true;
    QTest::newRow("one unit more in the old") << most << qsizetype(1) << false;
    QTest::newRow("one unit more in the new") << qsizetype(1) << most << false;
    QTest::newRow("both half of it") << most / 2 << most / 2 << true;
}

void WordDiffCacheTest::lengthsOfBothLinesCount()
{
    QFETCH(qsizetype, oldUnits);
    QFETCH(qsizetype, newUnits);
    WordDiffCache cache([] {});
    const DiffHunk hunk = hunkOf({u'-' + QString(oldUnits, u'x'), u'+' + QString(newUnits, u'y')});
    QTEST(cache.words(hunk, 1, 2) != nullptr, "isAtOnce");
    QTRY_VERIFY(cache.words(hunk, 1, 2) != nullptr);
}

void WordDiffCacheTest::manyPairsAreNotAllKept()
{
    WordDiffCache cache([] {});
    QStringList lines{u"-a"_s};
    constexpr qsizetype pairs = 50'000;
    for (qsizetype pair = 0; pair < pairs; ++pair) {
        lines.append(u"+b"_s);
    }
    const DiffHunk hunk = hunkOf(lines);
    qsizetype most = 0;
    for (qsizetype pair = 0; pair < pairs; ++pair) {
        const ChangedWords* const words = cache.words(hunk, 1, pair + 2);
        QVERIFY(words != nullptr && words->newLine == (std::vector<LineStretch>{{0, 1}}));
        most = std::max(most, cache.size());
    }
    // Many more than a screen shows, and far fewer than there are.
    QVERIFY2(most > 1000 && most < pairs / 2, qPrintable(QString::number(most)));
}

void WordDiffCacheTest::forgottenPairsAreNotTold()
{
    int told = 0;
    WordDiffCache cache([&] { ++told; });
    const DiffHunk hunk = hunkOf({u"-old "_s + u"x "_s.repeated(2000), u"+new "_s + u"x "_s.repeated(2000)});
    const DiffHunk other = hunkOf({u"-old "_s + u"y "_s.repeated(2000), u"+new "_s + u"y "_s.repeated(2000)});
    QVERIFY(cache.words(hunk, 1, 2) == nullptr);
    cache.clear();
    QVERIFY(cache.words(other, 1, 2) == nullptr);
    QTRY_COMPARE(told, 1);
    QVERIFY(cache.words(other, 1, 2) != nullptr);
    QCOMPARE(cache.size(), 1);
}

void WordDiffCacheTest::cacheMayGoWhileLinesAreCompared()
{
    bool isTold = false;
    {
        WordDiffCache cache([&] { isTold = true; });
        const DiffHunk hunk = hunkOf({u"-old "_s + u"x "_s.repeated(2000), u"+new "_s + u"x "_s.repeated(2000)});
        QVERIFY(cache.words(hunk, 1, 2) == nullptr);
    }
    QVERIFY(backgroundWorkers().waitForDone());
    QCoreApplication::processEvents();
    QVERIFY(!isTold);
}

void WordDiffCacheTest::forgottenPairsDoNotHoldUpOthers()
{
    int told = 0;
    // Compared to the end, this pair would take far longer than the test waits.
    const DiffHunk endless = hunkOf({u"-x"_s + u"a,"_s.repeated(500'000), u"+"_s + u"b,"_s.repeated(500'000) + u'y'});
    const DiffHunk other = hunkOf({u"-old "_s + u"x "_s.repeated(2000), u"+new "_s + u"x "_s.repeated(2000)});
    {
        WordDiffCache cache([&] { ++told; });
        QVERIFY(cache.words(endless, 1, 2) == nullptr);
        cache.clear();
        QVERIFY(cache.words(other, 1, 2) == nullptr);
        QTRY_COMPARE(told, 1);
        QVERIFY(cache.words(other, 1, 2) != nullptr);
        QVERIFY(cache.words(endless, 1, 2) == nullptr);
    }
    // Nor does it go on behind a cache that is gone.
    QVERIFY(backgroundWorkers().waitForDone());
    QCoreApplication::processEvents();
    QCOMPARE(told, 1);
}

void WordDiffCacheTest::transfersFindTheirWorkersFree()
{
    WordDiffCache cache([] {});
    const BlockedWorkers blocked;
    const DiffHunk hunk = hunkOf({u"-old "_s + u"x "_s.repeated(2000), u"+new "_s + u"x "_s.repeated(2000)});
    QVERIFY(cache.words(hunk, 1, 2) == nullptr);
    // What is compared waits for a worker of background tasks: none of those that transfers run on has it.
    QVERIFY(commonWorkers().waitForDone());
    QCoreApplication::processEvents();
    QVERIFY(cache.words(hunk, 1, 2) == nullptr);
}

const kelm::test::Registered<WordDiffCacheTest> registered;

} // namespace word_diff_cache_test

#include "word_diff_cache_test.moc"
