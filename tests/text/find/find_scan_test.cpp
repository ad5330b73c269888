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
};

static FindQuery query(const QString& text, bool isPattern)
{
    FindOptions options;
    options.regularExpression = isPattern;
    return std::get<FindQuery>(FindQuery::compile(text, options));
}

static FindScan scan(const QString& text, bool isPattern = false)
{
    return FindScan(query(text, isPattern));
}

void FindScanTest::anEmptyQueryIsCompleteAtOnce()
{
    FindScan empty;
    QCOMPARE(empty.state(), FindScan::State::complete);
    QCOMPARE(empty.advance(u"abc", 10), FindScan::State::complete);
    QVERIFY(empty.matches().empty());
    QCOMPARE(empty.nextFrom(u"abc", 0), std::nullopt);
    QCOMPARE(empty.previousFrom(u"abc", 3), std::nullopt);
    QCOMPARE(empty.indexOf({0, 0}), std::nullopt);

    FindScan inNothing = scan(QStringLiteral("a"));
    QCOMPARE(inNothing.state(), FindScan::State::searching);
    QCOMPARE(inNothing.advance(u"", 1), FindScan::State::complete);
}

void FindScanTest::stepsOfAnySizeFindTheSame()
{
    test::RandomText random;
    const QStringList wanted{QStringLiteral("a"),    QStringLiteral("ab"),   QStringLiteral("word"),
                             QStringLiteral("\n"),   QStringLiteral("\\s*"), QStringLiteral("^"),
                             QStringLiteral("b+|$"), QStringLiteral("aaa")};
    for (int i = 0; i < 3000; ++i) {
        const QString text = random.text(40);
        const FindQuery compiled = query(wanted[random.below(wanted.size())], random.below(2) == 0);
        std::vector<TextRange> all;
        compiled.enumerate(text, 0, text.size(), [&](TextRange match) {
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
        QCOMPARE(steps.matches(), all);
        FindScan whole(compiled);
        QCOMPARE(whole.finish(text), FindScan::State::complete);
        QCOMPARE(whole.matches(), all);
    }
}

void FindScanTest::aStepOfPlainTextLooksNoFurther()
{
    const QString text = QString(1000, u'x') + QStringLiteral("ab") + QString(1000, u'x') + QStringLiteral("ab");
    FindScan steps = scan(QStringLiteral("ab"));
    steps.advance(text, 1000);
    QCOMPARE(steps.searchedTo(), 1000);
    QVERIFY(steps.matches().empty());
    steps.advance(text, 1);
    // The match begins within the step and ends behind it.
    QCOMPARE(steps.matches(), (std::vector<TextRange>{{1000, 2}}));
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
    const QString text = QStringLiteral("..ab.ab....ab");
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
    const QString text = QStringLiteral("a\nb\nc");
    FindScan lines = scan(QStringLiteral("^"), true);
    QCOMPARE(lines.nextFrom(text, 0), std::optional<qsizetype>(0));
    QCOMPARE(lines.nextFrom(text, 1), std::optional<qsizetype>(1));
    QCOMPARE(lines.previousFrom(text, 2), std::optional<qsizetype>(0));
    QCOMPARE(lines.previousFrom(text, 3), std::optional<qsizetype>(1));
    QCOMPARE(lines.previousFrom(text, 0), std::optional<qsizetype>(2));
}

void FindScanTest::jumpsSearchAsFarAsTheyMust()
{
    const QString text = QStringLiteral("ab") + QString(10'000'000, u'x') + QStringLiteral("ab");
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
    const QString text(FindScan::mostMatches + 10, u'a');
    for (const bool isPattern : {false, true}) {
        FindScan steps = scan(QStringLiteral("a"), isPattern);
        QCOMPARE(steps.finish(text), FindScan::State::tooMany);
        QCOMPARE(qsizetype(steps.matches().size()), FindScan::mostMatches);
        QCOMPARE(steps.nextFrom(text, text.size() - 1), std::optional<qsizetype>(0));
    }
}

void FindScanTest::givesUpWithWhatItHas()
{
    const QString text = QStringLiteral("aab ") + QString(5000, u'a') + u'!';
    FindScan steps = scan(QStringLiteral("(a|aa)+b"), true);
    QCOMPARE(steps.finish(text), FindScan::State::gaveUp);
    QCOMPARE(steps.matches(), (std::vector<TextRange>{{0, 3}}));
    QCOMPARE(steps.nextFrom(text, 2), std::optional<qsizetype>(0));
}

const kelm::test::Registered<FindScanTest> registered;

} // namespace find_scan_test

#include "find_scan_test.moc"
