#include "editor/highlighter/rule_texts.h"
#include "editor/highlighter/tracked_text.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace rule_tracks_test {

using namespace kelm;
using kelm::test::TrackedText;
using namespace Qt::Literals::StringLiterals;

namespace {

ScanSizes randomSizes(test::RandomText& random)
{
    const ScanSizes sizes[] = {{8, 24, 64}, {1, 2, 40}, {16, 32, 100}, {32, 64, 1000}, {200, 400, 3000}};
    return sizes[random.below(std::size(sizes))];
}

void editAtRandom(TrackedText& tracked, test::RandomText& random)
{
    const TextRange range = random.range(tracked.text.size());
    switch (random.below(4)) {
    case 0:
        tracked.replace(range, {});
        break;
    case 1:
        tracked.replace({range.location, 0}, test::rulePiece(random));
        break;
    case 2:
        tracked.replace(range, test::ruleText(random, random.below(20)));
        break;
    default:
        tracked.replace({range.location, std::min<qsizetype>(range.length, 1)}, test::rulePiece(random));
    }
}

/// Edits, whole and partial settling in any order, and what must be right after each settling.
QString faultAfterEdits(TrackedText& tracked, test::RandomText& random, int edits)
{
    tracked.settle();
    QString fault = tracked.fault(random);
    while (fault.isEmpty() && edits > 0) {
        for (qsizetype i = random.below(3) == 0 ? 1 + random.below(5) : 1; i > 0; --i, --edits) {
            editAtRandom(tracked, random);
            if (random.below(4) == 0) {
                tracked.settle(1 + random.below(300));
                tracked.colorsIn(random.range(tracked.text.size()));
            }
        }
        if (random.below(3) == 0) {
            for (int calls = 0; !tracked.tracks.isSettled(); ++calls) {
                if (calls > 100'000) {
                    return u"does not get to an end"_s;
                }
                tracked.settle(1 + random.below(200));
            }
        }
        tracked.settle();
        fault = tracked.fault(random);
    }
    return fault;
}

/// How many edits each list of rules is tried with; KELM_TEST_ROUNDS asks for more.
int editCount()
{
    bool given = false;
    const int count = qEnvironmentVariable("KELM_TEST_ROUNDS").toInt(&given);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return given ? count : 100;
#else
    return given ? count : 600;
#endif
}

} // namespace

class RuleTracksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editedRandomTextsHaveTheColoursOfAWholePass_data() { addRowForEachList(); }
    void editedRandomTextsHaveTheColoursOfAWholePass()
    {
        QFETCH(int, index);
        for (int edits = editCount(); edits > 0; edits -= 20) {
            const QString text = test::ruleText(random_, random_.below(random_.below(6) == 0 ? 1500 : 200));
            TrackedText tracked(listAt(index), text, randomSizes(random_));
            const QString fault = faultAfterEdits(tracked, random_, 20);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }

    void editedSourcesHaveTheColoursOfAWholePass_data() { addRowForEachList(); }
    void editedSourcesHaveTheColoursOfAWholePass()
    {
        QFETCH(int, index);
        const QString source = test::longSource(QStringLiteral(KELM_TEST_DATA), 60'000);
        for (qsizetype at = 0; at < source.size(); at += 6000) {
            const ScanSizes sizes = random_.below(3) == 0 ? ScanSizes() : randomSizes(random_);
            TrackedText tracked(listAt(index), source.mid(at, 6000), sizes);
            const QString fault = faultAfterEdits(tracked, random_, editCount() / 30);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }

    void longTextsHaveTheColoursOfAWholePass_data() { addRowForEachList(); }
    void longTextsHaveTheColoursOfAWholePass()
    {
        // Long enough for several windows and many safe places of the usual sizes.
        QFETCH(int, index);
        TrackedText tracked(listAt(index), test::longSource(QStringLiteral(KELM_TEST_DATA), 150'000));
        tracked.replace({random_.below(tracked.text.size()), 0}, test::ruleText(random_, 8000));
        const QString fault = faultAfterEdits(tracked, random_, editCount() / 40);
        QVERIFY2(fault.isEmpty(), qPrintable(fault));
    }

private:
    static RuleList listAt(int index) { return test::allRuleLists()[static_cast<std::size_t>(index)].rules; }
    static void addRowForEachList()
    {
        QTest::addColumn<int>("index");
        const std::vector<test::NamedRules>& lists = test::allRuleLists();
        for (std::size_t i = 0; i < lists.size(); ++i) {
            QTest::newRow(lists[i].name) << static_cast<int>(i);
        }
    }

    test::RandomText random_;
};

const kelm::test::Registered<RuleTracksTest> registered;

} // namespace rule_tracks_test

#include "rule_tracks_test.moc"
