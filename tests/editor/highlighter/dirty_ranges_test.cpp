#include "editor/highlighter/dirty_ranges.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace dirty_ranges_test {

using namespace kelm;

class DirtyRangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editsThatMeetAreOneRange()
    {
        DirtyRanges dirty;
        dirty.textReplaced({10, 0}, 5);
        dirty.textReplaced({30, 4}, 0);
        QCOMPARE(dirty.size(), 2);
        QCOMPARE(dirty.at(0), (TextRange{10, 5}));
        QCOMPARE(dirty.at(1), (TextRange{30, 0}));
        dirty.textReplaced({0, 2}, 1);
        QCOMPARE(dirty.size(), 3);
        QCOMPARE(dirty.at(1), (TextRange{9, 5}));
        QCOMPARE(dirty.at(2), (TextRange{29, 0}));
        dirty.textReplaced({14, 15}, 1);
        QCOMPARE(dirty.size(), 2);
        QCOMPARE(dirty.at(1), (TextRange{9, 6}));
        dirty.remove(0, 1);
        QCOMPARE(dirty.at(0), (TextRange{9, 6}));
        dirty.clear();
        QVERIFY(dirty.isEmpty());
    }

    void rangesAreThoseOfMarkedUnits()
    {
        // A place where something was taken away marks no unit, so each edit puts something in here.
        for (int round = 0; round < 300; ++round) {
            DirtyRanges dirty;
            std::vector<bool> model(200, false);
            for (int edits = 0; edits < 30; ++edits) {
                const TextRange range = random_.range(static_cast<qsizetype>(model.size()));
                const qsizetype added = 1 + random_.below(6);
                dirty.textReplaced(range, added);
                const auto first = model.begin() + range.location;
                model.insert(model.erase(first, first + range.length), static_cast<std::size_t>(added), true);
            }
            std::vector<bool> marked(model.size(), false);
            qsizetype behind = -1;
            for (qsizetype i = 0; i < dirty.size(); ++i) {
                const TextRange range = dirty.at(i);
                QVERIFY(range.location > behind);
                behind = range.end();
                std::fill_n(marked.begin() + range.location, range.length, true);
            }
            QVERIFY(marked == model);
        }
    }

    void veryManyRangesBecomeOne()
    {
        DirtyRanges dirty;
        for (qsizetype i = DirtyRanges::mostRanges; i > 0; --i) {
            dirty.textReplaced({i * 10, 0}, 1);
        }
        QCOMPARE(dirty.size(), DirtyRanges::mostRanges);
        dirty.textReplaced({0, 0}, 1);
        QCOMPARE(dirty.size(), 1);
        QCOMPARE(dirty.at(0), (TextRange{0, DirtyRanges::mostRanges * 11 + 1}));
    }

private:
    test::RandomText random_;
};

const kelm::test::Registered<DirtyRangesTest> registered;

} // namespace dirty_ranges_test

#include "dirty_ranges_test.moc"
