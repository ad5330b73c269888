#include "editor/folding/fold_stretches.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace fold_stretches_test {

using namespace kelm;

namespace {

/// The number of the chunk that a stretch holds, 0 where it is to be read, and its length.
struct Stretch
{
    qsizetype length;
    qsizetype chunk;

    friend bool operator==(const Stretch&, const Stretch&) = default;
};
using Stretches = std::vector<Stretch>;

/// A chunk that is known by its lines. Behind it a string goes on if one was open before it.
std::shared_ptr<const FoldChunk> chunkOf(qsizetype number)
{
    auto chunk = std::make_shared<FoldChunk>();
    chunk->lines = number;
    PairReading reading;
    chunk->readings[0] = reading;
    reading.regions.resize(2);
    reading.endState = true;
    chunk->readings[1] = reading;
    return chunk;
}

Stretches listOf(const FoldStretches& stretches)
{
    Stretches list;
    for (const FoldStretch& stretch : stretches.list()) {
        list.push_back({stretch.length, stretch.chunk ? stretch.chunk->lines : 0});
    }
    return list;
}

size_t stretchAt(const Stretches& list, qsizetype offset)
{
    size_t index = 0;
    for (; offset >= list[index].length; ++index) {
        offset -= list[index].length;
    }
    return index;
}

/// What is touched, with a unit on each side, becomes one stretch that is to be read.
void replace(Stretches& list, TextRange range, qsizetype newLength)
{
    qsizetype length = 0;
    for (const Stretch& stretch : list) {
        length += stretch.length;
    }
    if (list.empty() || length - range.length + newLength == 0) {
        list.clear();
        if (newLength > 0) {
            list.push_back({newLength, 0});
        }
        return;
    }
    const size_t first = stretchAt(list, std::max<qsizetype>(range.location - 1, 0));
    const size_t last = stretchAt(list, std::min(range.end(), length - 1));
    Stretch merged{newLength - range.length, 0};
    for (size_t index = first; index <= last; ++index) {
        merged.length += list[index].length;
    }
    list.erase(list.begin() + qsizetype(first), list.begin() + qsizetype(last) + 1);
    list.insert(list.begin() + qsizetype(first), merged);
}

} // namespace

class FoldStretchesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTextBeginsAsOneStretch();
    void anEditTakesWhatItTouches();
    void aChunkTellsWhatHoldsForItsState();
};

void FoldStretchesTest::aTextBeginsAsOneStretch()
{
    FoldStretches stretches;
    QCOMPARE(stretches.length(), 0);
    QCOMPARE(stretches.count(), 0);
    stretches.replace({0, 0}, 7);
    QCOMPARE(listOf(stretches), (Stretches{{7, 0}}));
    stretches.setChunk(0, 3, chunkOf(1), false);
    QCOMPARE(listOf(stretches), (Stretches{{3, 1}, {4, 0}}));
    stretches.replace({0, 7}, 0);
    QCOMPARE(stretches.length(), 0);
    QCOMPARE(stretches.count(), 0);
    stretches.reset(5);
    QCOMPARE(listOf(stretches), (Stretches{{5, 0}}));
    // What lies behind the text is not there.
    stretches.replace({4, 9}, 2);
    QCOMPARE(stretches.length(), 6);
    stretches.reset(0);
    QCOMPARE(stretches.count(), 0);
}

void FoldStretchesTest::anEditTakesWhatItTouches()
{
    test::RandomText random;
    for (int round = 0; round < 300; ++round) {
        FoldStretches stretches;
        stretches.reset(random.below(40));
        Stretches model = listOf(stretches);
        qsizetype lastChunk = 0;
        for (qsizetype steps = random.below(40); steps > 0; --steps) {
            const qsizetype index = random.below(stretches.count());
            if (random.below(3) > 0 && stretches.count() > 0 && !stretches.at(index).chunk) {
                const qsizetype length = 1 + random.below(stretches.at(index).length);
                stretches.setChunk(index, length, chunkOf(++lastChunk), false);
                Stretch& cut = model[size_t(index)];
                const qsizetype rest = cut.length - length;
                cut = {length, lastChunk};
                if (rest > 0) {
                    model.insert(model.begin() + index + 1, {rest, 0});
                }
            } else {
                const TextRange range = random.range(stretches.length());
                const qsizetype newLength = random.below(12);
                stretches.replace(range, newLength);
                replace(model, range, newLength);
            }
            QVERIFY(listOf(stretches) == model);
            qsizetype length = 0;
            for (const Stretch& stretch : model) {
                length += stretch.length;
            }
            QCOMPARE(stretches.length(), length);
        }
    }
}

void FoldStretchesTest::aChunkTellsWhatHoldsForItsState()
{
    FoldStretches stretches;
    stretches.reset(10);
    stretches.setChunk(0, 6, chunkOf(4), true);
    QCOMPARE(stretches.at(0).lines, 4U);
    QVERIFY(stretches.at(0).state && stretches.at(0).endState);
    QCOMPARE(stretches.at(0).regions, 2);
    stretches.setState(0, false);
    QVERIFY(!stretches.at(0).state && !stretches.at(0).endState);
    QCOMPARE(stretches.at(0).regions, 0);
    stretches.merge(0, 1);
    QCOMPARE(listOf(stretches), (Stretches{{10, 0}}));
}

const kelm::test::Registered<FoldStretchesTest> registered;

} // namespace fold_stretches_test

#include "fold_stretches_test.moc"
