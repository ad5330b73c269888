#include "support/random_text.h"
#include "support/test_program.h"
#include "text/find/match_list.h"

#include <QtTest>

namespace match_list_test {

using namespace kelm;

class MatchListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithAPlainListOverChanges();
};

void MatchListTest::agreesWithAPlainListOverChanges()
{
    test::RandomText random;
    for (int round = 0; round < 300; ++round) {
        MatchList list;
        std::vector<TextRange> naive;
        for (int step = 0; step < 30; ++step) {
            const qsizetype size = list.size();
            const qsizetype first = random.below(size + 1);
            const qsizetype last = first + random.below(size - first + 1);
            // Room is made for what is put in, as an edit makes it, and some of it is empty.
            std::vector<TextRange> added;
            qsizetype at = first > 0 ? naive[size_t(first) - 1].end() + 1 : 0;
            for (qsizetype count = random.below(5); count > 0; --count) {
                added.push_back({at + random.below(3), random.below(3)});
                at = added.back().end() + 1;
            }
            const qsizetype next = last < size ? naive[size_t(last)].location : at;
            const qsizetype distance = at - next + random.below(3);
            list.shift(last, distance);
            list.replace(first, last, added);
            for (qsizetype index = last; index < size; ++index) {
                naive[size_t(index)].location += distance;
            }
            naive.erase(naive.begin() + first, naive.begin() + last);
            naive.insert(naive.begin() + first, added.begin(), added.end());
            QCOMPARE(list.all(), naive);
            const qsizetype end = naive.empty() ? 3 : naive.back().end() + 3;
            const qsizetype offset = random.below(end);
            const auto count = [&naive](auto isBefore) { return std::count_if(naive.begin(), naive.end(), isBefore); };
            QCOMPARE(list.firstFrom(offset), count([offset](TextRange one) { return one.location < offset; }));
            QCOMPARE(list.firstEndingBehind(offset), count([offset](TextRange one) { return one.end() <= offset; }));
        }
        list.cutTo(list.size() / 2);
        naive.resize(naive.size() / 2);
        QCOMPARE(list.all(), naive);
    }
}

const kelm::test::Registered<MatchListTest> registered;

} // namespace match_list_test

#include "match_list_test.moc"
