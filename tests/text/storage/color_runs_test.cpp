#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/color_runs.h"

#include <QtTest>

namespace color_runs_test {

using namespace kelm;

namespace {

constexpr QRgb red = 0xffff0000;
constexpr QRgb blue = 0xff0000ff;

using Model = std::vector<ColorRuns::Color>;

void compare(const ColorRuns& runs, const Model& model)
{
    const auto length = static_cast<qsizetype>(model.size());
    for (qsizetype i = 0; i < length; ++i) {
        QCOMPARE(runs.colorAt(i), model[static_cast<std::size_t>(i)]);
    }
    QCOMPARE(runs.colorAt(length), ColorRuns::Color());
    qsizetype covered = 0;
    ColorRuns::Color before;
    for (const ColorRun& run : runs.runsIn({0, length})) {
        // Each run is as long as its colour goes.
        QVERIFY(run.range.location > covered || before != run.color);
        before = run.color;
        QVERIFY(!run.range.isEmpty());
        QVERIFY(run.range.location >= covered);
        covered = run.range.end();
        QCOMPARE(ColorRuns::Color(run.color), model[static_cast<std::size_t>(run.range.location)]);
        QCOMPARE(ColorRuns::Color(run.color), model[static_cast<std::size_t>(run.range.end() - 1)]);
    }
    QVERIFY(covered <= length);
}

/// What the runs must do with an edit, unit by unit.
void replaceInModel(Model& model, TextRange range, qsizetype newLength)
{
    const auto length = static_cast<qsizetype>(model.size());
    ColorRuns::Color inherited;
    if (range.location > 0) {
        inherited = model[static_cast<std::size_t>(range.location - 1)];
    } else if (range.end() < length) {
        inherited = model[static_cast<std::size_t>(range.end())];
    }
    const auto first = model.begin() + range.location;
    model.erase(first, first + range.length);
    model.insert(model.begin() + range.location, static_cast<std::size_t>(newLength), inherited);
}

} // namespace

class ColorRunsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typedTextTakesTheColourBefore();
    void aNewColouringTellsWhatDiffers_data();
    void aNewColouringTellsWhatDiffers();
    void randomChangesAgreeWithAColourPerUnit();
};

void ColorRunsTest::typedTextTakesTheColourBefore()
{
    ColorRuns runs;
    runs.clear(6);
    runs.set({0, 3}, red);
    runs.set({3, 3}, blue);
    runs.textReplaced({3, 0}, 2);
    QCOMPARE(runs.runsIn({0, 8}), (std::vector<ColorRun>{{{0, 5}, red}, {{5, 3}, blue}}));
    runs.textReplaced({0, 0}, 1);
    QCOMPARE(runs.colorAt(0), ColorRuns::Color(red));
    runs.textReplaced({9, 0}, 1);
    QCOMPARE(runs.colorAt(9), ColorRuns::Color(blue));
}

void ColorRunsTest::aNewColouringTellsWhatDiffers_data()
{
    QTest::addColumn<std::vector<ColorRun>>("before");
    QTest::addColumn<std::vector<ColorRun>>("after");
    QTest::addColumn<int>("location");
    QTest::addColumn<int>("length");
    using Runs = std::vector<ColorRun>;
    QTest::newRow("nothing") << Runs{{{2, 3}, red}} << Runs{{{2, 3}, red}} << 0 << 0;
    QTest::newRow("neighbours of one colour are one run")
        << Runs{{{2, 3}, red}} << Runs{{{2, 1}, red}, {{3, 2}, red}} << 0 << 0;
    QTest::newRow("one run grows") << Runs{{{2, 3}, red}} << Runs{{{2, 5}, red}} << 5 << 2;
    QTest::newRow("another colour") << Runs{{{2, 3}, red}, {{7, 1}, red}} << Runs{{{2, 3}, blue}, {{7, 1}, red}} << 2
                                    << 3;
    QTest::newRow("all gone") << Runs{{{0, 10}, red}} << Runs{} << 0 << 10;
    QTest::newRow("runs past the end are cut") << Runs{} << Runs{{{8, 90}, red}} << 8 << 2;
}

void ColorRunsTest::aNewColouringTellsWhatDiffers()
{
    QFETCH(std::vector<ColorRun>, before);
    QFETCH(std::vector<ColorRun>, after);
    QFETCH(int, location);
    QFETCH(int, length);
    ColorRuns runs;
    runs.clear(10);
    runs.assign(before);
    const TextRange changed = runs.assign(after);
    QCOMPARE(changed.length, qsizetype(length));
    if (length > 0) {
        QCOMPARE(changed.location, qsizetype(location));
    }
}

void ColorRunsTest::randomChangesAgreeWithAColourPerUnit()
{
    test::RandomText random;
    ColorRuns runs;
    Model model;
    const std::vector<ColorRuns::Color> colors{ColorRuns::Color(), red, blue, QRgb(0)};
    for (int round = 0; round < 4000; ++round) {
        const auto length = static_cast<qsizetype>(model.size());
        const TextRange range = random.range(length);
        const ColorRuns::Color color = colors[static_cast<std::size_t>(random.below(4))];
        switch (random.below(4)) {
        case 0:
            runs.set(range, color);
            std::fill_n(model.begin() + range.location, range.length, color);
            break;
        case 1: {
            // Several side by side, some of them of one colour or empty.
            std::vector<ColorRun> sideBySide;
            for (qsizetype at = range.location; at < range.end();) {
                const qsizetype pieceLength = std::min(random.below(4), range.end() - at);
                sideBySide.push_back({{at, pieceLength}, random.below(2) == 0 ? red : blue});
                std::fill_n(model.begin() + at, pieceLength, sideBySide.back().color);
                at += pieceLength;
            }
            runs.set(sideBySide);
            break;
        }
        case 2: {
            const qsizetype newLength = random.below(length > 120 ? 3 : 9);
            runs.textReplaced(range, newLength);
            replaceInModel(model, range, newLength);
            break;
        }
        default: {
            std::vector<ColorRun> assigned;
            Model next(model.size());
            for (qsizetype at = random.below(9); at < length; at += 1 + random.below(9)) {
                const TextRange piece{at, std::min(length - at, 1 + random.below(6))};
                assigned.push_back({piece, color.value_or(red)});
                std::fill_n(next.begin() + at, piece.length, assigned.back().color);
                at = piece.end() - 1;
            }
            const TextRange changed = runs.assign(assigned);
            for (qsizetype i = 0; i < length; ++i) {
                const auto unit = static_cast<std::size_t>(i);
                QVERIFY(changed.contains(i) || model[unit] == next[unit]);
            }
            model = next;
            break;
        }
        }
        compare(runs, model);
        if (QTest::currentTestFailed()) {
            return;
        }
    }
}

const kelm::test::Registered<ColorRunsTest> registered;

} // namespace color_runs_test

#include "color_runs_test.moc"
