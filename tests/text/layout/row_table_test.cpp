#include "support/random_text.h"
#include "support/test_program.h"
#include "text/layout/row_table.h"

#include <QtTest>

#include <numeric>

namespace row_table_test {

using namespace kelm;

class RowTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsAreFoundAcrossBlocks();
    void rowsOutsideTheTableAreClamped();
    void randomChangesAgreeWithAPlainList();
};

void RowTableTest::rowsAreFoundAcrossBlocks()
{
    RowTable table;
    table.assign(std::vector<int>(5000, 2));
    QCOMPARE(table.rowCount(), 10000);
    QCOMPARE(table.firstRow(3000), 6000);
    QCOMPARE(table.at(6001), (RowPosition{3000, 1}));
    table.setRows(10, 100);
    QCOMPARE(table.firstRow(3000), 6098);
    QCOMPARE(table.at(119), (RowPosition{10, 99}));
    QCOMPARE(table.at(120), (RowPosition{11, 0}));
}

void RowTableTest::rowsOutsideTheTableAreClamped()
{
    RowTable table;
    table.assign({1, 3});
    QCOMPARE(table.at(-5), (RowPosition{0, 0}));
    QCOMPARE(table.at(99), (RowPosition{1, 2}));
    QCOMPARE(table.firstRow(2), 4);
    QCOMPARE(table.firstRow(9), 4);
}

void RowTableTest::randomChangesAgreeWithAPlainList()
{
    test::RandomText random;
    RowTable table;
    std::vector<int> model(1, 1);
    table.assign(model);
    for (int round = 0; round < 600; ++round) {
        const auto lines = static_cast<qsizetype>(model.size());
        const qsizetype line = random.below(lines);
        if (random.below(3) == 0) {
            model[static_cast<std::size_t>(line)] = static_cast<int>(1 + random.below(5));
            table.setRows(line, model[static_cast<std::size_t>(line)]);
        } else {
            const qsizetype many = random.below(6) == 0 ? 1500 : 4;
            const qsizetype removed = random.below(std::min(many, lines - line) + 1);
            std::vector<int> added(static_cast<std::size_t>(1 + random.below(many)));
            std::generate(added.begin(), added.end(), [&] { return static_cast<int>(1 + random.below(4)); });
            table.replaceLines(line, removed, added);
            model.erase(model.begin() + line, model.begin() + line + removed);
            model.insert(model.begin() + line, added.begin(), added.end());
        }
        QCOMPARE(table.lineCount(), static_cast<qsizetype>(model.size()));
        QCOMPARE(table.rowCount(), std::accumulate(model.begin(), model.end(), qsizetype(0)));
        qsizetype before = 0;
        for (std::size_t i = 0; i < model.size(); ++i) {
            const auto at = static_cast<qsizetype>(i);
            QCOMPARE(table.rowsOf(at), qsizetype(model[i]));
            QCOMPARE(table.firstRow(at), before);
            QCOMPARE(table.at(before), (RowPosition{at, 0}));
            before += model[i];
            QCOMPARE(table.at(before - 1), (RowPosition{at, model[i] - 1}));
        }
    }
}

const kelm::test::Registered<RowTableTest> registered;

} // namespace row_table_test

#include "row_table_test.moc"
