#include "platform/events/worker_pool.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/find/find_session.h"

#include <QSignalSpy>
#include <QtTest>

namespace find_session_test {

using namespace kelm;

using State = FindScan::State;

namespace {

struct Fixture
{
    TextStorage storage;
    SearchEngine engine;
    FindSession session{storage, engine};

    explicit Fixture(const QString& text) { storage.setText(text); }

    void look(const QString& wanted, bool isPattern = false, qsizetype origin = 0)
    {
        engine.setSearchText(wanted);
        engine.setUseRegex(isPattern);
        engine.setCaseSensitive(true);
        session.start(origin);
    }
    std::vector<TextRange> matches() const { return session.matchesIn({0, storage.length()}); }
    std::vector<TextRange> freshMatches() const
    {
        auto compiled =
            FindQuery::compile(engine.searchText(), {engine.caseSensitive(), engine.wholeWord(), engine.useRegex()});
        FindScan fresh(std::get<FindQuery>(compiled));
        fresh.finish(storage.tree());
        return fresh.matches().all();
    }
};

/// More than is searched at once.
QString longText()
{
    return QStringLiteral("one ab two\n").repeated(100'000);
}

} // namespace

class FindSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aShortTextIsSearchedAtOnce();
    void aLongTextIsSearchedMeanwhile_data();
    void aLongTextIsSearchedMeanwhile();
    void editsDuringASearchLeaveTheMatchesOfAFreshOne_data();
    void editsDuringASearchLeaveTheMatchesOfAFreshOne();
    void aKeyInALongTextIsFollowedAtOnce();
    void theCurrentMatchIsTheFirstBehindTheOrigin();
    void aStepThatTakesLongIsToldLater();
    void anEditDropsAStepThatTakesLong();
    void whatIsOnScreenComesFirst();
    void resultsAreDescribedWhenAskedFor();
    void theCurrentMatchIsOneOfTheResults();
    void aResultHasItsWholeLine_data();
    void aResultHasItsWholeLine();
    void replacingAllInALongTextIsToldLater();
    void anEditDropsTheReplacementOfAll();
    void aPatternThatNeverEndsIsStopped();
    void nothingComesAfterTheEnd();
};

void FindSessionTest::aShortTextIsSearchedAtOnce()
{
    for (const bool isPattern : {false, true}) {
        Fixture fixture(QStringLiteral("ab ab\nab"));
        fixture.look(QStringLiteral("ab"), isPattern, 1);
        QCOMPARE(fixture.session.state(), State::complete);
        QCOMPARE(fixture.session.statusText(), QStringLiteral("2 of 3"));
        QCOMPARE(fixture.session.currentMatch(), (TextRange{3, 2}));
        fixture.storage.replace({0, 1}, u"");
        QCOMPARE(fixture.session.statusText(), QStringLiteral("1 of 2"));
        QCOMPARE(fixture.matches(), (std::vector<TextRange>{{2, 2}, {5, 2}}));
    }
}

void FindSessionTest::aLongTextIsSearchedMeanwhile_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<bool>("isPattern");
    QTest::newRow("text") << QStringLiteral("ab") << false;
    QTest::newRow("pattern") << QStringLiteral("a[b]") << true;
}

void FindSessionTest::aLongTextIsSearchedMeanwhile()
{
    QFETCH(QString, wanted);
    QFETCH(bool, isPattern);
    Fixture fixture(longText());
    fixture.look(wanted, isPattern, 500'000);
    QCOMPARE(fixture.session.state(), State::searching);
    QTRY_COMPARE(fixture.session.state(), State::complete);
    QCOMPARE(fixture.session.matchCount(), 100'000);
    QCOMPARE(fixture.matches(), fixture.freshMatches());
    QCOMPARE(fixture.session.statusText(), QStringLiteral("45456 of 100000"));
    QCOMPARE(fixture.engine.currentMatchIndex(), 45455);
}

void FindSessionTest::editsDuringASearchLeaveTheMatchesOfAFreshOne_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<bool>("isPattern");
    QTest::newRow("text") << QStringLiteral("ab") << false;
    QTest::newRow("text that overlaps itself") << QStringLiteral("aa") << false;
    QTest::newRow("pattern") << QStringLiteral("a+b?") << true;
    QTest::newRow("pattern of whole lines") << QStringLiteral("^.*b$") << true;
}

void FindSessionTest::editsDuringASearchLeaveTheMatchesOfAFreshOne()
{
    QFETCH(QString, wanted);
    QFETCH(bool, isPattern);
    test::RandomText random;
    const QStringList pieces{QStringLiteral("a"), QStringLiteral("ab"), QStringLiteral("\n"), QStringLiteral("b "),
                             QStringLiteral("aaa")};
    for (int round = 0; round < 6; ++round) {
        QString text;
        while (text.size() < 600'000) {
            text += pieces[random.below(pieces.size())];
        }
        Fixture fixture(text);
        fixture.look(wanted, isPattern);
        for (int edit = 0; edit < 30; ++edit) {
            const TextRange range = random.range(fixture.storage.length());
            fixture.storage.replace(range, pieces[random.below(pieces.size())]);
            for (qsizetype turns = random.below(4); turns > 0; --turns) {
                QCoreApplication::processEvents();
            }
        }
        QTRY_COMPARE(fixture.session.state(), State::complete);
        QCOMPARE(fixture.matches(), fixture.freshMatches());
    }
}

void FindSessionTest::aKeyInALongTextIsFollowedAtOnce()
{
    Fixture fixture(longText());
    fixture.look(QStringLiteral("ab"));
    QTRY_COMPARE(fixture.session.state(), State::complete);
    for (const qsizetype at : {qsizetype(700'000), qsizetype(30), qsizetype(1'000'000)}) {
        fixture.storage.replace({at, 0}, u"ab");
        QCOMPARE(fixture.session.state(), State::complete);
    }
    QCOMPARE(fixture.session.matchCount(), 100'003);
    QCOMPARE(fixture.matches(), fixture.freshMatches());
}

void FindSessionTest::theCurrentMatchIsTheFirstBehindTheOrigin()
{
    Fixture fixture(longText());
    // Known before all that stands before it has been searched.
    fixture.look(QStringLiteral("ab"), false, 900'001);
    QCOMPARE(fixture.session.state(), State::searching);
    QCOMPARE(fixture.session.currentMatch(), (TextRange{900'002, 2}));
    QCOMPARE(fixture.session.currentIndex(), std::nullopt);
    QCOMPARE(fixture.session.stepForward(900'004), (TextRange{900'013, 2}));
    QCOMPARE(fixture.session.stepBackward(900'002), (TextRange{899'991, 2}));
    QTRY_COMPARE(fixture.session.state(), State::complete);
    QCOMPARE(fixture.session.currentMatch(), (TextRange{899'991, 2}));
    QCOMPARE(fixture.session.currentIndex(), 81817);
    // It moves with the text, and an edit makes the one behind it current.
    fixture.storage.replace({0, 0}, u"-");
    QCOMPARE(fixture.session.currentMatch(), (TextRange{899'992, 2}));
    fixture.storage.replace({899'992, 1}, u"");
    QCOMPARE(fixture.session.currentMatch(), (TextRange{900'002, 2}));
}

void FindSessionTest::aStepThatTakesLongIsToldLater()
{
    for (const bool isPattern : {false, true}) {
        Fixture fixture(longText() + QStringLiteral("zebra"));
        fixture.look(QStringLiteral("zebra"), isPattern);
        QSignalSpy ended(&fixture.session, &FindSession::stepEnded);
        QCOMPARE(fixture.session.stepForward(0), std::nullopt);
        QVERIFY(fixture.session.isStepping());
        QTRY_COMPARE(ended.size(), 1);
        QVERIFY(!fixture.session.isStepping());
        QCOMPARE(ended.front().front().value<std::optional<TextRange>>(), (TextRange{1'100'000, 5}));
        QCOMPARE(fixture.session.currentIndex(), 0);
        // There is none.
        fixture.look(QStringLiteral("zebu"), isPattern);
        QCOMPARE(fixture.session.stepBackward(5), std::nullopt);
        QTRY_COMPARE(ended.size(), 2);
        QCOMPARE(ended.back().front().value<std::optional<TextRange>>(), std::nullopt);
        QCOMPARE(fixture.session.statusText(), QStringLiteral("No results"));
        QCOMPARE(fixture.session.stepForward(5), std::nullopt);
        QVERIFY(!fixture.session.isStepping());
    }
}

void FindSessionTest::anEditDropsAStepThatTakesLong()
{
    Fixture fixture(longText() + QStringLiteral("zebra"));
    fixture.look(QStringLiteral("zebra"));
    QSignalSpy ended(&fixture.session, &FindSession::stepEnded);
    fixture.session.stepForward(0);
    fixture.storage.replace({0, 1}, u"");
    QCOMPARE(ended.size(), 1);
    QCOMPARE(ended.front().front().value<std::optional<TextRange>>(), std::nullopt);
    QTRY_COMPARE(fixture.session.state(), State::complete);
    QCOMPARE(ended.size(), 1);
}

void FindSessionTest::whatIsOnScreenComesFirst()
{
    // The search of the whole waits for the pause behind an edit, that of the screen does not.
    Fixture fixture(longText());
    fixture.look(QStringLiteral("a[bc]"), true);
    QTRY_COMPARE(fixture.session.state(), State::complete);
    fixture.storage.replace({550'004, 2}, u"ac ac ab");
    fixture.session.setShown({550'000, 30});
    QSignalSpy changes(&fixture.session, &FindSession::changed);
    QVERIFY(changes.wait(kelm::test::patience));
    QCOMPARE(fixture.session.matchesIn({550'000, 30}),
             (std::vector<TextRange>{{550'004, 2}, {550'007, 2}, {550'010, 2}, {550'021, 2}}));
    QTRY_COMPARE(fixture.session.state(), State::complete);
    QCOMPARE(fixture.matches(), fixture.freshMatches());
}

void FindSessionTest::resultsAreDescribedWhenAskedFor()
{
    Fixture fixture(QStringLiteral("one ab two\n").repeated(3000));
    fixture.look(QStringLiteral("ab"));
    QCOMPARE(fixture.session.state(), State::complete);
    const QList<SearchMatch> results = fixture.engine.results();
    QCOMPARE(results.size(), 3000);
    QCOMPARE(results[1].range, (TextRange{15, 2}));
    QCOMPARE(results[1].line, 2);
    QCOMPARE(results[1].column, 5);
    QCOMPARE(results[1].lineText, QStringLiteral("one ab two"));
    QCOMPARE(results[1].matchText, QStringLiteral("ab"));
    // The same ones as long as nothing changes.
    QCOMPARE(fixture.engine.results(), results);
    fixture.storage.replace({0, 5}, u"");
    QCOMPARE(fixture.engine.results().front().range, (TextRange{10, 2}));
    fixture.session.stop();
    QVERIFY(fixture.engine.results().isEmpty());
}

void FindSessionTest::theCurrentMatchIsOneOfTheResults()
{
    Fixture fixture(QStringLiteral("one ab two\n").repeated(3000));
    fixture.look(QStringLiteral("ab"), false, 32'990);
    const auto isCurrent = [&fixture] {
        const qsizetype index = fixture.engine.currentMatchIndex();
        const QList<SearchMatch> results = fixture.engine.results();
        return index < results.size() && results[index].range == fixture.session.currentMatch();
    };
    QCOMPARE(fixture.session.state(), State::complete);
    QCOMPARE(fixture.engine.currentMatchIndex(), 2999);
    QVERIFY(isCurrent());
    // Round the end, and back.
    QVERIFY(fixture.session.stepForward(32'999));
    QCOMPARE(fixture.engine.currentMatchIndex(), 0);
    QVERIFY(isCurrent());
    QVERIFY(fixture.session.stepBackward(0));
    QVERIFY(isCurrent());
    // Without matches it is the first of none.
    fixture.look(QStringLiteral("none"));
    QCOMPARE(fixture.session.state(), State::complete);
    QCOMPARE(fixture.engine.currentMatchIndex(), 0);
    QVERIFY(fixture.engine.results().isEmpty());
}

void FindSessionTest::aResultHasItsWholeLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    QTest::addColumn<qsizetype>("column");
    const QString filler = QStringLiteral("x").repeated(100'000);
    QTest::newRow("the only line") << QStringLiteral("ab") << QStringLiteral("ab") << qsizetype(1);
    QTest::newRow("between others") << QStringLiteral("1\n ab \n2") << QStringLiteral(" ab ") << qsizetype(2);
    QTest::newRow("a return before the line feed")
        << QStringLiteral("1\r\nab\r\n2") << QStringLiteral("ab") << qsizetype(1);
    QTest::newRow("a return in the line") << QStringLiteral("1\r2ab\n") << QStringLiteral("1\r2ab") << qsizetype(4);
    QTest::newRow("a line of 200 kB") << filler + QStringLiteral("ab") + filler + u'\n'
                                      << filler + QStringLiteral("ab") + filler << qsizetype(100'001);
}

void FindSessionTest::aResultHasItsWholeLine()
{
    QFETCH(QString, text);
    QFETCH(QString, line);
    QFETCH(qsizetype, column);
    Fixture fixture(text);
    fixture.look(QStringLiteral("ab"));
    QCOMPARE(fixture.engine.results().size(), 1);
    QCOMPARE(fixture.engine.results().front().lineText, line);
    QCOMPARE(fixture.engine.results().front().column, column);
}

void FindSessionTest::replacingAllInALongTextIsToldLater()
{
    for (const bool isPattern : {false, true}) {
        Fixture fixture(longText());
        fixture.look(QStringLiteral("ab"), isPattern);
        fixture.engine.setReplaceText(QStringLiteral("xyz"));
        ReplaceAllResult result;
        connect(&fixture.session, &FindSession::replacedAll, [&result](const ReplaceAllResult& all) { result = all; });
        QVERIFY(!fixture.session.replaceAll());
        QTRY_COMPARE(result.count, 100'000);
        fixture.storage.replace(result.range, result.text);
        QVERIFY(fixture.storage.tree() == longText().replace(QStringLiteral("ab"), QStringLiteral("xyz")));
        QTRY_COMPARE(fixture.session.statusText(), QStringLiteral("No results"));
    }
}

void FindSessionTest::anEditDropsTheReplacementOfAll()
{
    Fixture fixture(longText());
    fixture.look(QStringLiteral("ab"));
    QSignalSpy replaced(&fixture.session, &FindSession::replacedAll);
    QVERIFY(!fixture.session.replaceAll());
    fixture.storage.replace({0, 1}, u"");
    QTRY_COMPARE(fixture.session.state(), State::complete);
    backgroundWorkers().waitForDone();
    QCoreApplication::processEvents();
    QCOMPARE(replaced.size(), 0);
}

void FindSessionTest::aPatternThatNeverEndsIsStopped()
{
    Fixture fixture(longText() + QString(40'000, u'a') + u'!');
    fixture.look(QStringLiteral("(a|a)*(a|a)*(a|a)*c|two"), true);
    QTRY_COMPARE(fixture.session.state(), State::gaveUp);
    QCOMPARE(fixture.session.statusText(), QStringLiteral("Stopped: this pattern takes too long here"));
    QCOMPARE(fixture.session.matchCount(), 100'000);
}

void FindSessionTest::nothingComesAfterTheEnd()
{
    Fixture fixture(longText());
    fixture.look(QStringLiteral("a[b]"), true);
    fixture.session.setShown({0, 100});
    fixture.session.stepForward(1'000'000);
    fixture.session.stop();
    QVERIFY(!fixture.session.isRunning());
    QVERIFY(!fixture.session.isStepping());
    QSignalSpy changes(&fixture.session, &FindSession::changed);
    fixture.storage.replace({0, 0}, u"ab");
    backgroundWorkers().waitForDone();
    QCoreApplication::processEvents();
    QCOMPARE(changes.size(), 0);
    QVERIFY(fixture.matches().empty());
    QVERIFY(fixture.engine.results().isEmpty());
}

const kelm::test::Registered<FindSessionTest> registered;

} // namespace find_session_test

#include "find_session_test.moc"
