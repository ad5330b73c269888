#include "search/ordered_results.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <atomic>
#include <thread>

namespace ordered_results_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class OrderedResultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resultsComeInTheOrderOfThePieces();
    void whoeverHoldsTooMuchWaitsForItsTurn();
    void aLittleIsHeldWithoutWaiting();
    void nobodyIsFarAhead();
    void nobodyWaitsOnceCancelled();
};

void OrderedResultsTest::resultsComeInTheOrderOfThePieces()
{
    test::RandomText random;
    for (int round = 0; round < 30; ++round) {
        // How many results each piece brings; now and then more than may be held.
        std::vector<qsizetype> counts;
        for (qsizetype piece = random.below(300); piece >= 0; --piece) {
            counts.push_back(random.below(20) == 0 ? random.below(2000) : random.below(4));
        }
        QStringList passedOn;
        OrderedResults results([&](const SearchResult& result) { passedOn.append(result.matchLine); },
                               [] { return false; });
        std::atomic<std::size_t> next = 0;
        const auto work = [&] {
            for (std::size_t number = next++; number < counts.size(); number = next++) {
                OrderedResults::Piece piece(results, qint64(number));
                for (qsizetype at = 0; at < counts[number]; ++at) {
                    piece.add({.matchLine = u"%1:%2"_s.arg(number).arg(at)});
                }
                piece.finish();
            }
        };
        std::thread first(work);
        std::thread second(work);
        work();
        first.join();
        second.join();
        QStringList wanted;
        for (std::size_t number = 0; number < counts.size(); ++number) {
            for (qsizetype at = 0; at < counts[number]; ++at) {
                wanted.append(u"%1:%2"_s.arg(number).arg(at));
            }
        }
        QCOMPARE(passedOn, wanted);
    }
}

void OrderedResultsTest::whoeverHoldsTooMuchWaitsForItsTurn()
{
    QStringList passedOn;
    OrderedResults results([&](const SearchResult& result) { passedOn.append(result.matchLine); },
                           [] { return false; });
    OrderedResults::Piece first(results, 0);
    std::atomic<bool> isSecondThrough = false;
    std::thread other([&] {
        OrderedResults::Piece second(results, 1);
        second.add({.matchLine = u"x"_s.repeated(1'000'000)});
        isSecondThrough = true;
        second.finish();
    });
    first.add({.matchLine = u"first"_s});
    const bool wasThroughBefore = isSecondThrough;
    first.finish();
    other.join();
    QVERIFY(!wasThroughBefore);
    QCOMPARE(passedOn.size(), qsizetype(2));
    QCOMPARE(passedOn.front(), u"first"_s);
}

void OrderedResultsTest::aLittleIsHeldWithoutWaiting()
{
    // Whoever waits asks whether it is cancelled.
    qsizetype asked = 0;
    const auto nobody = [](const SearchResult&) {};
    const auto isCancelled = [&asked] { return ++asked > 0; };
    OrderedResults results(nobody, isCancelled);
    OrderedResults::Piece many(results, 1);
    for (int at = 0; at < 500; ++at) {
        many.add({.matchLine = u"x"_s});
    }
    QCOMPARE(asked, qsizetype(0));
    many.add({.matchLine = u"x"_s});
    QVERIFY(asked > 0);

    asked = 0;
    OrderedResults::Piece longOnes(results, 2);
    longOnes.add({.matchLine = u"x"_s.repeated(300'000)});
    longOnes.add({.matchLine = u"x"_s.repeated(224'288)});
    QCOMPARE(asked, qsizetype(0));
    longOnes.add({.matchLine = u"x"_s});
    QVERIFY(asked > 0);
}

void OrderedResultsTest::nobodyIsFarAhead()
{
    qsizetype asked = 0;
    OrderedResults results([](const SearchResult&) {}, [&asked] { return ++asked > 0; });
    OrderedResults::Piece(results, 31).finish();
    QCOMPARE(asked, qsizetype(0));
    OrderedResults::Piece(results, 32).finish();
    QVERIFY(asked > 0);
}

void OrderedResultsTest::nobodyWaitsOnceCancelled()
{
    std::atomic<bool> isCancelled = false;
    qsizetype passedOn = 0;
    OrderedResults results([&](const SearchResult&) { ++passedOn; }, [&] { return isCancelled.load(); });
    std::thread other([&] {
        OrderedResults::Piece second(results, 1);
        second.add({.matchLine = u"x"_s.repeated(1'000'000)});
        second.add({.matchLine = u"y"_s});
        second.finish();
    });
    isCancelled = true;
    other.join();
    QCOMPARE(passedOn, qsizetype(0));
}

const kelm::test::Registered<OrderedResultsTest> registered;

} // namespace ordered_results_test

#include "ordered_results_test.moc"
