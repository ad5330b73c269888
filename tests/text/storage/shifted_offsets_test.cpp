#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/shifted_offsets.h"

#include <QtTest>

namespace shifted_offsets_test {

using namespace kelm;

class ShiftedOffsetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boundsFindTheFirstOffsetAtOrBehind();
    void randomChangesAgreeWithAPlainList();
};

void ShiftedOffsetsTest::boundsFindTheFirstOffsetAtOrBehind()
{
    ShiftedOffsets offsets;
    QCOMPARE(offsets.upperBound(0), 0);
    offsets.reset({0, 3, 3, 8});
    QCOMPARE(offsets.lowerBound(3), 1);
    QCOMPARE(offsets.upperBound(3), 3);
    QCOMPARE(offsets.upperBound(8), 4);
    offsets.shift(1, 10);
    QCOMPARE(offsets.lowerBound(3), 1);
    QCOMPARE(offsets.at(3), 18);
    offsets.set(3, 20);
    QCOMPARE(offsets.at(3), 20);
}

void ShiftedOffsetsTest::randomChangesAgreeWithAPlainList()
{
    test::RandomText random;
    ShiftedOffsets offsets;
    std::vector<qsizetype> model;
    for (int round = 0; round < 3000; ++round) {
        const auto size = static_cast<qsizetype>(model.size());
        const qsizetype index = random.below(size + 1);
        if (random.below(2) == 0) {
            const qsizetype distance = random.below(100);
            offsets.shift(index, distance);
            std::for_each(model.begin() + index, model.end(), [&](qsizetype& offset) { offset += distance; });
        } else {
            const qsizetype count = random.below(std::min<qsizetype>(4, size - index) + 1);
            const qsizetype base = index > 0 ? model[static_cast<std::size_t>(index - 1)] : 0;
            const std::vector<qsizetype> added(static_cast<std::size_t>(random.below(4)), base);
            offsets.replace(index, count, added);
            model.erase(model.begin() + index, model.begin() + index + count);
            model.insert(model.begin() + index, added.begin(), added.end());
        }
        QCOMPARE(offsets.size(), static_cast<qsizetype>(model.size()));
        for (qsizetype i = 0; i < offsets.size(); ++i) {
            QCOMPARE(offsets.at(i), model[static_cast<std::size_t>(i)]);
        }
    }
}

const kelm::test::Registered<ShiftedOffsetsTest> registered;

} // namespace shifted_offsets_test

#include "shifted_offsets_test.moc"
