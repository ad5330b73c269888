#include "editor/highlighter/rule_track.h"
#include "support/test_program.h"

#include <QtTest>

namespace rule_track_test {

using namespace kelm;

namespace {

using Places = std::vector<qsizetype>;
using Matches = std::vector<RuleMatch>;

constexpr qsizetype textLength = 10'000;
constexpr qsizetype margin = ScanWatcher::margin;

Places placesOf(const RuleTrack& track)
{
    Places places;
    for (qsizetype i = 0; i < track.places().size(); ++i) {
        places.push_back(track.places().at(i));
    }
    return places;
}

/// The range of the first long stretch behind an offset; an empty one at -1 if there is none.
TextRange stretchBehind(const RuleTrack& track, qsizetype offset)
{
    const auto stretch = track.stretchBehind(offset);
    return stretch ? TextRange::between(stretch->start, stretch->end) : TextRange{-1, 0};
}

Matches matchesBehind(const RuleTrack& track, qsizetype offset)
{
    const auto stretch = track.stretchBehind(offset);
    return stretch ? Matches(stretch->matches.begin(), stretch->matches.end()) : Matches();
}

/// Places at 1000, 2000, 6000, 7000 and 9000, and long stretches from 2000 to 6000 and from 7000 to 9000.
RuleTrack settledTrack()
{
    RuleTrack track;
    track.reset(textLength);
    Rescan all;
    all.places = {1000, 2000, 6000, 7000, 9000};
    all.stretches = {{2000, 6000, {{2010, 2020}, {3000, 5990}}}, {7000, 9000, {{7000, 8999}}}};
    track.rescanned(std::move(all));
    return track;
}

} // namespace

class RuleTrackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofANewTextNothingIsKnown();
    void whatIsFoundIsKept();
    void anEditTakesWhatIsNearIt_data();
    void anEditTakesWhatIsNearIt();
    void aScanReplacesWhatItWentThrough();
    void aScanThatEndsEarlyLeavesTheRest();
    void aScanToTheEndReplacesTheRest();
};

void RuleTrackTest::ofANewTextNothingIsKnown()
{
    RuleTrack track = settledTrack();
    track.unitsInVain = 7;
    track.reset(textLength);
    QVERIFY(!track.isSettled());
    QCOMPARE(track.dirty().size(), 1);
    QCOMPARE(track.dirty().at(0), (TextRange{0, textLength}));
    QCOMPARE(placesOf(track), Places());
    QCOMPARE(track.placeBefore(textLength), 0);
    QVERIFY(!track.stretchBehind(0));
    QCOMPARE(track.keptBytes(), 0);
    QCOMPARE(track.unitsInVain, 0);
    track.reset(0);
    QVERIFY(track.isSettled());
}

void RuleTrackTest::whatIsFoundIsKept()
{
    const RuleTrack track = settledTrack();
    QVERIFY(track.isSettled());
    QCOMPARE(placesOf(track), (Places{1000, 2000, 6000, 7000, 9000}));
    QCOMPARE(track.placeBefore(999), 0);
    QCOMPARE(track.placeBefore(1000), 1000);
    QCOMPARE(track.placeBefore(1999), 1000);
    QCOMPARE(track.placeBefore(textLength), 9000);
    for (const qsizetype offset : {0, 2000, 5999}) {
        QCOMPARE(stretchBehind(track, offset), (TextRange{2000, 4000}));
        QCOMPARE(matchesBehind(track, offset), (Matches{{10, 20}, {1000, 3990}}));
    }
    for (const qsizetype offset : {6000, 7000, 8999}) {
        QCOMPARE(stretchBehind(track, offset), (TextRange{7000, 2000}));
        QCOMPARE(matchesBehind(track, offset), (Matches{{0, 1999}}));
    }
    QVERIFY(!track.stretchBehind(9000));
    // Eight bytes for each place and for each stretch's start, and more for what is in those.
    QVERIFY(track.keptBytes() > qsizetype((5 + 2) * sizeof(qsizetype) + 3 * sizeof(RuleMatch)));
}

void RuleTrackTest::anEditTakesWhatIsNearIt_data()
{
    QTest::addColumn<TextRange>("range");
    QTest::addColumn<Places>("places");
    QTest::addColumn<TextRange>("first");
    QTest::addColumn<TextRange>("second");
    const TextRange none{-1, 0};
    const TextRange upper{2000, 4000};
    const TextRange lower{7005, 2000};
    const TextRange both{2005, 4000};
    // Each time ten units become fifteen.
    QTest::newRow("far from all") << TextRange{1500, 10} << Places{1000, 2005, 6005, 7005, 9005} << both << lower;
    QTest::newRow("just before a place") << TextRange{990 - margin, 10} << Places{1005, 2005, 6005, 7005, 9005} << both
                                         << lower;
    QTest::newRow("nearer") << TextRange{991 - margin, 10} << Places{2005, 6005, 7005, 9005} << both << lower;
    QTest::newRow("over a place") << TextRange{995, 10} << Places{2005, 6005, 7005, 9005} << both << lower;
    QTest::newRow("just behind a place") << TextRange{1000 + margin, 10} << Places{1000, 2005, 6005, 7005, 9005} << both
                                         << lower;
    QTest::newRow("just before a stretch")
        << TextRange{1990 - margin, 10} << Places{1000, 2005, 6005, 7005, 9005} << both << lower;
    QTest::newRow("nearer to a stretch") << TextRange{1991 - margin, 10} << Places{1000, 6005, 7005, 9005} << lower
                                         << lower;
    QTest::newRow("in a stretch") << TextRange{4000, 10} << Places{1000, 2000, 6005, 7005, 9005} << lower << lower;
    QTest::newRow("at the end of a stretch") << TextRange{5995, 10} << Places{1000, 2000, 7005, 9005} << lower << lower;
    QTest::newRow("near behind a stretch")
        << TextRange{5999 + margin, 10} << Places{1000, 2000, 7005, 9005} << lower << lower;
    QTest::newRow("just behind a stretch")
        << TextRange{6000 + margin, 10} << Places{1000, 2000, 6000, 7005, 9005} << upper << lower;
    QTest::newRow("in the second") << TextRange{8000, 10} << Places{1000, 2000, 6000, 7000, 9005} << upper << none;
    QTest::newRow("behind the second") << TextRange{9500, 10} << Places{1000, 2000, 6000, 7000, 9000} << upper
                                       << TextRange{7000, 2000};
}

void RuleTrackTest::anEditTakesWhatIsNearIt()
{
    QFETCH(TextRange, range);
    QFETCH(Places, places);
    QFETCH(TextRange, first);
    QFETCH(TextRange, second);
    RuleTrack track = settledTrack();
    track.textReplaced(range, range.length + 5);
    QVERIFY(!track.isSettled());
    QCOMPARE(track.dirty().at(0), (TextRange{range.location, range.length + 5}));
    QCOMPARE(placesOf(track), places);
    QCOMPARE(stretchBehind(track, 0), first);
    QCOMPARE(stretchBehind(track, 6500), second);
    QCOMPARE(matchesBehind(track, 6500), second.location < 0 ? Matches() : Matches({{0, 1999}}));
}

void RuleTrackTest::aScanReplacesWhatItWentThrough()
{
    RuleTrack track = settledTrack();
    track.textReplaced({4000, 10}, 15);
    track.textReplaced({8000, 10}, 15);
    QCOMPARE(track.dirty().size(), 2);
    Rescan scan;
    scan.from = 2000;
    scan.to = 6005;
    scan.places = {3000};
    scan.stretches = {{3000, 6005, {{3001, 6000}}}};
    track.rescanned(scan);
    QCOMPARE(track.dirty().size(), 1);
    QCOMPARE(track.dirty().at(0), (TextRange{8000, 15}));
    QCOMPARE(placesOf(track), (Places{1000, 2000, 3000, 6005, 7005, 9010}));
    QCOMPARE(stretchBehind(track, 0), (TextRange{3000, 3005}));
    QCOMPARE(matchesBehind(track, 0), (Matches{{1, 3000}}));
    QVERIFY(!track.stretchBehind(6005));
    // Once more, with nothing in it.
    scan.places = {};
    scan.stretches = {};
    scan.dirtyRanges = 0;
    track.rescanned(scan);
    QCOMPARE(track.dirty().size(), 1);
    QCOMPARE(placesOf(track), (Places{1000, 2000, 6005, 7005, 9010}));
    QVERIFY(!track.stretchBehind(0));
}

void RuleTrackTest::aScanThatEndsEarlyLeavesTheRest()
{
    RuleTrack track = settledTrack();
    track.textReplaced({4000, 10}, 15);
    Rescan scan;
    scan.from = 2000;
    scan.places = {3000};
    scan.stretches = {{2000, 3000, {}}};
    scan.stillDirty = TextRange{3500, 515};
    track.rescanned(scan);
    QVERIFY(!track.isSettled());
    QCOMPARE(track.dirty().size(), 1);
    QCOMPARE(track.dirty().at(0), (TextRange{3500, 515}));
    QCOMPARE(placesOf(track), (Places{1000, 2000, 3000, 6005, 7005, 9005}));
    QCOMPARE(stretchBehind(track, 0), (TextRange{2000, 1000}));
    QCOMPARE(stretchBehind(track, 3000), (TextRange{7005, 2000}));
}

void RuleTrackTest::aScanToTheEndReplacesTheRest()
{
    RuleTrack track = settledTrack();
    track.textReplaced({1500, 0}, 2);
    Rescan scan;
    scan.from = 1000;
    scan.places = {1100, 1200};
    scan.stretches = {{1200, textLength + 2, {{1300, textLength}}}};
    track.rescanned(scan);
    QVERIFY(track.isSettled());
    QCOMPARE(placesOf(track), (Places{1000, 1100, 1200}));
    QCOMPARE(stretchBehind(track, 5000), TextRange::between(1200, textLength + 2));
    QCOMPARE(matchesBehind(track, 5000), (Matches{{100, textLength - 1200}}));
}

const kelm::test::Registered<RuleTrackTest> registered;

} // namespace rule_track_test

#include "rule_track_test.moc"
