#include "support/random_text.h"
#include "support/test_program.h"
#include "text/find/find_scan.h"

#include <QtTest>

namespace find_scan_test {

using namespace kelm;

class FindScanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyQueryIsCompleteAtOnce();
    void stepsOfAnySizeFindTheSame();
    void aStepOfPlainTextLooksNoFurther();
    void nextAndPreviousGoRound_data();
    void nextAndPreviousGoRound();
    void emptyMatchesAreLeft();
    void jumpsSearchAsFarAsTheyMust();
    void countsUpToItsBound();
    void givesUpWithWhatItHas();
    void editsLeaveTheMatchesOfAFreshScan();
    void editsFarFromTheStartCostNoSearchFromThere();
    void anEditOfAMillionMatchesKeepsTheBound();
    void portionsFromAWorkerMakeTheSameScan();
    void aPatternIsPresumedWhereItStood();
    void aPatternThatTakesLongIsNotSearchedAtOnce();
    void anEmptyMatchAtTheEndIsTheLast();
    void matchesAreKnownWhereTheyAreLookedAt();
};

static FindQuery query(const QString& text, bool isPattern)
{
    FindOptions options;
    options.regularExpression = isPattern;
    return std::get<FindQuery>(FindQuery::compile(text, options));
}

/// What a search of the whole text finds, however it stands in pieces.
static std::vector<TextRange> freshMatches(const FindQuery& query, const TextTree& text)
{
    FindScan fresh(query);
    fresh.finish(text);
    return fresh.matches().all();
}

/// A text of letters that match each other often, now and then with surrogates and marks, in many pieces.
static QString dense(test::RandomText& random, qsizetype longest)
{
    static const QStringList pieces{QStringLiteral("a"), QStringLiteral("aa"), QStringLiteral("ab"),
                                    QStringLiteral("b"), QStringLiteral(" "),  QStringLiteral("\U00010400"),
                                    QStringLiteral("A"), QStringLiteral("."),  QStringLiteral("e\u0301")};
    QString text;
    for (qsizetype count = random.below(longest + 1); count > 0; --count) {
        text += random.below(30) == 0 ? random.text(2) : pieces[random.below(pieces.size())];
    }
    return text;
}

static FindQuery randomQuery(test::RandomText& random, bool isPattern)
{
    static const QStringList texts{QStringLiteral("a"),  QStringLiteral("aa"),         QStringLiteral("aba"),
                                   QStringLiteral("ab"), QStringLiteral("\U00010400"), QStringLiteral("a a"),
                                   QStringLiteral(" "),  QStringLiteral("e\u0301")};
    static const QStringList patterns{QStringLiteral("a+"),       QStringLiteral("a*"),     QStringLiteral("^.*$"),
                                      QStringLiteral("(?<=b)a"),  QStringLiteral("\\bab?"), QStringLiteral("(.)\\1"),
                                      QStringLiteral("a(?=[^b])")};
    FindOptions options;
    options.regularExpression = isPattern;
    options.wholeWord = random.below(2) == 0;
    options.caseSensitive = random.below(2) == 0;
    const QStringList& all = isPattern ? patterns : texts;
    return std::get<FindQuery>(FindQuery::compile(all[random.below(all.size())], options));
}

/// Replaces a range of the text, and tells it as its storage does.
static TextEdit replace(TextTree& text, TextRange range, const QString& by)
{
    TextEdit edit;
    edit.range = range.clampedTo(text.length());
    edit.newLength = by.size();
    text.replace(edit.range, by);
    return edit;
}

static FindScan scan(const QString& text, bool isPattern = false)
{
    return FindScan(query(text, isPattern));
}

void FindScanTest::anEmptyQueryIsCompleteAtOnce()
{
    FindScan empty;
    QCOMPARE(empty.state(), FindScan::State::complete);
    QCOMPARE(empty.advance(TextTree(u"abc"), 10), FindScan::State::complete);
    QVERIFY(empty.matches().isEmpty());
    QCOMPARE(empty.nextFrom(TextTree(u"abc"), 0), std::nullopt);
    QCOMPARE(empty.previousFrom(TextTree(u"abc"), 3), std::nullopt);
    QCOMPARE(empty.indexOf({0, 0}), std::nullopt);

    FindScan inNothing = scan(QStringLiteral("a"));
    QCOMPARE(inNothing.state(), FindScan::State::searching);
    QCOMPARE(inNothing.advance(TextTree(), 1), FindScan::State::complete);
}

void FindScanTest::stepsOfAnySizeFindTheSame()
{
    test::RandomText random;
    const QStringList wanted{QStringLiteral("a"),    QStringLiteral("ab"),   QStringLiteral("word"),
                             QStringLiteral("\n"),   QStringLiteral("\\s*"), QStringLiteral("^"),
                             QStringLiteral("b+|$"), QStringLiteral("aaa")};
    for (int i = 0; i < 3000; ++i) {
        const TextTree text(random.text(40));
        const FindQuery compiled = query(wanted[random.below(wanted.size())], random.below(2) == 0);
        std::vector<TextRange> all;
        compiled.enumerate(text, 0, text.length(), [&](TextRange match) {
            all.push_back(match);
            return true;
        });
        FindScan steps(compiled);
        int count = 0;
        while (steps.state() == FindScan::State::searching) {
            steps.advance(text, random.below(6));
            QVERIFY(++count < 1000);
            for (const TextRange& match : all) {
                QVERIFY(match.location >= steps.searchedTo() || steps.indexOf(match));
            }
        }
        QCOMPARE(steps.state(), FindScan::State::complete);
        QCOMPARE(steps.matches().all(), all);
        FindScan whole(compiled);
        QCOMPARE(whole.finish(text), FindScan::State::complete);
        QCOMPARE(whole.matches().all(), all);
    }
}

void FindScanTest::aStepOfPlainTextLooksNoFurther()
{
    const TextTree text(QString(1000, u'x') + QStringLiteral("ab") + QString(1000, u'x') + QStringLiteral("ab"));
    FindScan steps = scan(QStringLiteral("ab"));
    steps.advance(text, 1000);
    QCOMPARE(steps.searchedTo(), 1000);
    QVERIFY(steps.matches().isEmpty());
    steps.advance(text, 1);
    // The match begins within the step and ends behind it.
    QCOMPARE(steps.matches().all(), (std::vector<TextRange>{{1000, 2}}));
    steps.advance(text, 500);
    QCOMPARE(steps.searchedTo(), 1502);
    QCOMPARE(steps.state(), FindScan::State::searching);
}

void FindScanTest::nextAndPreviousGoRound_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("next");
    QTest::addColumn<int>("previous");
    // "..ab.ab....ab": matches at 2, 5 and 11.
    QTest::newRow("start") << 0 << 0 << 2;
    QTest::newRow("at a match") << 2 << 0 << 2;
    QTest::newRow("within a match") << 3 << 1 << 2;
    QTest::newRow("behind a match") << 4 << 1 << 0;
    QTest::newRow("between") << 8 << 2 << 1;
    QTest::newRow("at the last") << 11 << 2 << 1;
    QTest::newRow("end") << 13 << 0 << 2;
    QTest::newRow("behind the text") << 99 << 0 << 2;
}

void FindScanTest::nextAndPreviousGoRound()
{
    QFETCH(int, offset);
    QFETCH(int, next);
    QFETCH(int, previous);
    const TextTree text(u"..ab.ab....ab");
    for (const bool isPattern : {false, true}) {
        QCOMPARE(scan(QStringLiteral("AB"), isPattern).nextFrom(text, offset), std::optional<qsizetype>(next));
        QCOMPARE(scan(QStringLiteral("AB"), isPattern).previousFrom(text, offset), std::optional<qsizetype>(previous));
    }
    FindScan none = scan(QStringLiteral("x"));
    QCOMPARE(none.nextFrom(text, offset), std::nullopt);
    QCOMPARE(none.previousFrom(text, offset), std::nullopt);
}

void FindScanTest::emptyMatchesAreLeft()
{
    const TextTree text(u"a\nb\nc");
    FindScan lines = scan(QStringLiteral("^"), true);
    QCOMPARE(lines.nextFrom(text, 0), std::optional<qsizetype>(0));
    QCOMPARE(lines.nextFrom(text, 1), std::optional<qsizetype>(1));
    QCOMPARE(lines.previousFrom(text, 2), std::optional<qsizetype>(0));
    QCOMPARE(lines.previousFrom(text, 3), std::optional<qsizetype>(1));
    QCOMPARE(lines.previousFrom(text, 0), std::optional<qsizetype>(2));
}

void FindScanTest::jumpsSearchAsFarAsTheyMust()
{
    const TextTree text(QStringLiteral("ab") + QString(10'000'000, u'x') + QStringLiteral("ab"));
    FindScan steps = scan(QStringLiteral("ab"));
    QCOMPARE(steps.nextFrom(text, 0), std::optional<qsizetype>(0));
    QCOMPARE(steps.state(), FindScan::State::searching);
    QCOMPARE(steps.previousFrom(text, 100), std::optional<qsizetype>(0));
    QCOMPARE(steps.state(), FindScan::State::searching);
    QVERIFY(steps.searchedTo() < 5'000'000);
    QCOMPARE(steps.previousFrom(text, 0), std::optional<qsizetype>(1));
    QCOMPARE(steps.state(), FindScan::State::complete);
    QCOMPARE(steps.indexOf({10'000'002, 2}), std::optional<qsizetype>(1));
    QCOMPARE(steps.indexOf({10'000'002, 1}), std::nullopt);
    QCOMPARE(steps.indexOf({1, 2}), std::nullopt);
}

void FindScanTest::countsUpToItsBound()
{
    const TextTree text(QString(FindScan::mostMatches + 10, u'a'));
    for (const bool isPattern : {false, true}) {
        FindScan steps = scan(QStringLiteral("a"), isPattern);
        QCOMPARE(steps.finish(text), FindScan::State::tooMany);
        QCOMPARE(qsizetype(steps.matches().size()), FindScan::mostMatches);
        QCOMPARE(steps.nextFrom(text, text.length() - 1), std::optional<qsizetype>(0));
    }
}

void FindScanTest::givesUpWithWhatItHas()
{
    const TextTree text(QStringLiteral("aab ") + QString(5000, u'a') + u'!');
    FindScan steps = scan(QStringLiteral("(a|aa)+b"), true);
    QCOMPARE(steps.finish(text), FindScan::State::gaveUp);
    QCOMPARE(steps.matches().all(), (std::vector<TextRange>{{0, 3}}));
    QCOMPARE(steps.nextFrom(text, 2), std::optional<qsizetype>(0));
}

void FindScanTest::editsLeaveTheMatchesOfAFreshScan()
{
    test::RandomText random;
    for (int round = 0; round < 400; ++round) {
        const bool isPattern = random.below(4) == 0;
        const FindQuery wanted = randomQuery(random, isPattern);
        TextTree text(dense(random, round % 10 == 0 ? 20'000 : 60));
        FindScan scanned(wanted);
        for (int step = 0; step < 20; ++step) {
            // Any mixture of steps and edits, several edits between two steps and the other way round.
            if (random.below(2) == 0) {
                scanned.advance(text, random.below(3) == 0 ? text.length() : random.below(40));
            } else {
                const TextEdit edit = replace(text, random.range(text.length()), dense(random, 6));
                scanned.edited(text, edit);
            }
            const std::vector<TextRange> fresh = freshMatches(wanted, text);
            for (const TextRange match : fresh) {
                QVERIFY(match.location >= scanned.searchedTo() || scanned.indexOf(match));
            }
            if (scanned.state() == FindScan::State::complete) {
                QCOMPARE(scanned.matches().all(), fresh);
            }
        }
        scanned.finish(text);
        QCOMPARE(scanned.state(), FindScan::State::complete);
        QCOMPARE(scanned.matches().all(), freshMatches(wanted, text));
    }
}

void FindScanTest::editsFarFromTheStartCostNoSearchFromThere()
{
    TextTree text(QStringLiteral("some ab\n").repeated(300'000));
    FindScan all = scan(QStringLiteral("ab"));
    all.finish(text);
    QCOMPARE(all.matches().size(), 300'000);
    for (const qsizetype at : {qsizetype(2'000'005), qsizetype(6), qsizetype(0), qsizetype(2'399'999)}) {
        all.edited(text, replace(text, {at, 0}, QStringLiteral("ab")));
        // All of it is known at once but for an edit that touches the end.
        QVERIFY(all.searchedTo() > text.length() - 20);
        all.advance(text, 100);
        QCOMPARE(all.state(), FindScan::State::complete);
        QCOMPARE(all.matches().all(), freshMatches(all.query(), text));
    }
}

void FindScanTest::anEditOfAMillionMatchesKeepsTheBound()
{
    const auto most = FindScan::mostMatches;
    TextTree text(QStringLiteral("a ").repeated(most + 2));
    FindScan all = scan(QStringLiteral("a"));
    QCOMPARE(all.finish(text), FindScan::State::tooMany);
    all.edited(text, replace(text, {0, 0}, QStringLiteral("a")));
    QCOMPARE(all.state(), FindScan::State::tooMany);
    QCOMPARE(all.matches().size(), most);
    QCOMPARE(all.matches().at(most - 1), (TextRange{2 * most - 3, 1}));
    // One less, and those behind are found again.
    all.edited(text, replace(text, {0, 3}, QString()));
    QCOMPARE(all.finish(text), FindScan::State::tooMany);
    QCOMPARE(all.matches().all(), freshMatches(all.query(), text));
    all.edited(text, replace(text, {0, 4}, QString()));
    QCOMPARE(all.finish(text), FindScan::State::complete);
    QCOMPARE(all.matches().size(), most - 1);
    QCOMPARE(all.matches().all(), freshMatches(all.query(), text));
}

void FindScanTest::portionsFromAWorkerMakeTheSameScan()
{
    test::RandomText random;
    const std::atomic<bool> goesOn = false;
    for (int round = 0; round < 60; ++round) {
        const FindQuery wanted = randomQuery(random, random.below(2) == 0);
        TextTree text(dense(random, 100'000));
        FindScan scanned(wanted);
        if (random.below(2) == 0) {
            scanned.advance(text, random.below(text.length()));
        }
        FindRun run(wanted, text, scanned.searchedTo());
        int portions = 0;
        while (scanned.state() == FindScan::State::searching) {
            scanned.take(run.next(goesOn));
            QVERIFY(++portions < 100);
        }
        QCOMPARE(scanned.matches().all(), freshMatches(wanted, text));
    }
}

void FindScanTest::aPatternIsPresumedWhereItStood()
{
    TextTree text(u"ab ab ab ab");
    FindScan pattern = scan(QStringLiteral("a[b]"), true);
    pattern.finish(text);
    pattern.edited(text, replace(text, {4, 0}, QStringLiteral("--")));
    QCOMPARE(pattern.state(), FindScan::State::searching);
    QCOMPARE(pattern.searchedTo(), 0);
    QCOMPARE(pattern.matches().all(), (std::vector<TextRange>{{0, 2}, {8, 2}, {11, 2}}));
    QVERIFY(!pattern.knowsNextFrom(0));
    // What is seen at a place stands in for what was presumed there, and what a portion finds for both.
    pattern.presume({8, 3}, {{9, 1}});
    QCOMPARE(pattern.matches().all(), (std::vector<TextRange>{{0, 2}, {9, 1}, {11, 2}}));
    pattern.take({{{0, 2}}, 10, FindQuery::Ending::stopped});
    QCOMPARE(pattern.matches().all(), (std::vector<TextRange>{{0, 2}, {11, 2}}));
    pattern.presume({0, 20}, {{4, 1}, {12, 1}});
    QCOMPARE(pattern.matches().all(), (std::vector<TextRange>{{0, 2}, {12, 1}}));
    QVERIFY(pattern.knowsNextFrom(0));
    QVERIFY(!pattern.knowsNextFrom(1));
    pattern.take({{}, text.length(), FindQuery::Ending::complete});
    QCOMPARE(pattern.matches().all(), (std::vector<TextRange>{{0, 2}}));
}

void FindScanTest::aPatternThatTakesLongIsNotSearchedAtOnce()
{
    const TextTree text(QStringLiteral("ab ") + QString(5000, u'a') + u'!');
    FindScan slow = scan(QStringLiteral("(a|aa)+b"), true);
    QCOMPARE(slow.tryPattern(text, 1000), FindScan::State::searching);
    QCOMPARE(slow.matches().all(), (std::vector<TextRange>{{0, 2}}));
    FindScan quick = scan(QStringLiteral("a+"), true);
    QCOMPARE(quick.tryPattern(text, 1000), FindScan::State::complete);
    QCOMPARE(quick.matches().all(), (std::vector<TextRange>{{0, 1}, {3, 5000}}));
    FindScan often = scan(QStringLiteral("[ab]"), true);
    QCOMPARE(often.tryPattern(text, 100), FindScan::State::searching);
    QCOMPARE(often.tryPattern(text, 100'000), FindScan::State::complete);
    QCOMPARE(often.matches().size(), 5002);
}

void FindScanTest::anEmptyMatchAtTheEndIsTheLast()
{
    const TextTree text(u"aaaaa");
    const FindQuery wanted = query(QStringLiteral("x*"), true);
    const std::atomic<bool> goesOn = false;
    // However far the first look at the pattern comes, the run behind it goes on from there.
    for (qsizetype places = 1; places < 10; ++places) {
        FindScan scanned(wanted);
        scanned.tryPattern(text, places);
        FindRun run(wanted, text, scanned.searchedTo());
        while (scanned.state() == FindScan::State::searching) {
            scanned.take(run.next(goesOn));
        }
        QCOMPARE(scanned.state(), FindScan::State::complete);
        QCOMPARE(scanned.matches().all(), freshMatches(wanted, text));
    }
    FindScan exact(wanted);
    QCOMPARE(exact.tryPattern(text, text.length() + 1), FindScan::State::complete);
    QCOMPARE(exact.matches().size(), 6);
}

void FindScanTest::matchesAreKnownWhereTheyAreLookedAt()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        const FindQuery wanted = randomQuery(random, false);
        const TextTree text(dense(random, round % 5 == 0 ? 10'000 : 100));
        const std::vector<TextRange> all = freshMatches(wanted, text);
        FindScan scanned(wanted);
        scanned.advance(text, random.below(text.length()));
        const TextRange range = random.range(text.length());
        std::vector<TextRange> expected;
        std::copy_if(all.begin(), all.end(), std::back_inserter(expected), [range](TextRange match) {
            return match.end() >= range.location && match.location <= range.end();
        });
        QCOMPARE(scanned.matchesIn(text, range), expected);
    }
}

const kelm::test::Registered<FindScanTest> registered;

} // namespace find_scan_test

#include "find_scan_test.moc"
