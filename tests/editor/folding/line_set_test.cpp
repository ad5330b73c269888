#include "editor/folding/line_set.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

#include <set>

namespace line_set_test {

using namespace kelm;

class LineSetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomRunsAgreeWithASet();
    void aRunOfAnyLengthIsCheap();
};

void LineSetTest::randomRunsAgreeWithASet()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        LineSet lines;
        std::set<qsizetype> model;
        for (int step = 0; step < 30; ++step) {
            const qsizetype first = random.below(40) - 2;
            const qsizetype end = first + random.below(8) - 1;
            const bool inserts = random.below(2) == 0;
            for (qsizetype line = first; line < end; ++line) {
                if (inserts) {
                    model.insert(line);
                } else {
                    model.erase(line);
                }
            }
            if (inserts) {
                lines.insert(first, end);
            } else {
                lines.remove(first, end);
            }
            QCOMPARE(lines.count(), qsizetype(model.size()));
            QCOMPARE(lines.isEmpty(), model.empty());
            for (qsizetype line = -5; line < 50; ++line) {
                QCOMPARE(lines.contains(line), model.contains(line));
            }
            LineSet again;
            for (const qsizetype line : model) {
                again.insert(line, line + 1);
            }
            QVERIFY(lines == again);
        }
    }
}

void LineSetTest::aRunOfAnyLengthIsCheap()
{
    constexpr qsizetype most = std::numeric_limits<qsizetype>::max();
    LineSet lines;
    lines.insert(1, most);
    QCOMPARE(lines.count(), most - 1);
    lines.remove(2, most);
    QCOMPARE(lines.count(), 1);
    lines.clear();
    QVERIFY(lines.isEmpty());
}

const kelm::test::Registered<LineSetTest> registered;

} // namespace line_set_test

#include "line_set_test.moc"
