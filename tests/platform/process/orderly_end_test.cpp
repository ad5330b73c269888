#include "platform/process/orderly_end.h"
#include "support/test_program.h"

#include <QtTest>

namespace orderly_end_test {

using namespace kelm;
using Clock = std::chrono::steady_clock;

class OrderlyEndTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void closersAreCalledInTheirOrderEachTime();
    void theyShareASecond();
    void whoIsGoneIsNotCalled();
    void aCloserMayAddAndEndOthers();
    void anEndInsideAnEndDoesNothing();
};

void OrderlyEndTest::closersAreCalledInTheirOrderEachTime()
{
    QObject owner;
    QList<int> called;
    for (const int number : {1, 2, 3}) {
        onOrderlyEnd(&owner, [&called, number](Clock::time_point) { called.append(number); });
    }
    endInOrder();
    endInOrder();
    QCOMPARE(called, (QList{1, 2, 3, 1, 2, 3}));
}

void OrderlyEndTest::theyShareASecond()
{
    QObject owner;
    std::vector<Clock::time_point> deadlines;
    for (int left = 2; left > 0; --left) {
        onOrderlyEnd(&owner, [&deadlines](Clock::time_point deadline) { deadlines.push_back(deadline); });
    }
    const Clock::time_point before = Clock::now();
    endInOrder();
    QVERIFY(deadlines.at(0) == deadlines.at(1));
    QVERIFY(deadlines[0] >= before + std::chrono::seconds(1));
    QVERIFY(deadlines[0] <= Clock::now() + std::chrono::seconds(1));
}

void OrderlyEndTest::whoIsGoneIsNotCalled()
{
    QObject owner;
    auto other = std::make_unique<QObject>();
    QList<int> called;
    onOrderlyEnd(other.get(), [&called](Clock::time_point) { called.append(1); });
    onOrderlyEnd(&owner, [&called](Clock::time_point) { called.append(2); });
    other.reset();
    endInOrder();
    QCOMPARE(called, QList{2});
}

void OrderlyEndTest::aCloserMayAddAndEndOthers()
{
    QObject owner;
    auto other = std::make_unique<QObject>();
    QList<int> called;
    onOrderlyEnd(&owner, [&](Clock::time_point) {
        called.append(1);
        other.reset();
        onOrderlyEnd(&owner, [&called](Clock::time_point) { called.append(3); });
    });
    onOrderlyEnd(other.get(), [&called](Clock::time_point) { called.append(2); });
    endInOrder();
    QCOMPARE(called, QList{1});
}

void OrderlyEndTest::anEndInsideAnEndDoesNothing()
{
    QObject owner;
    int calls = 0;
    onOrderlyEnd(&owner, [&calls](Clock::time_point) {
        ++calls;
        endInOrder();
    });
    endInOrder();
    QCOMPARE(calls, 1);
}

const kelm::test::Registered<OrderlyEndTest> registered;

} // namespace orderly_end_test

#include "orderly_end_test.moc"
