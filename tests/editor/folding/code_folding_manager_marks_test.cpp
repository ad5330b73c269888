#include "editor/folding/code_folding_manager.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

#include <memory>

namespace code_folding_manager_marks_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Lines 2 to 5 and 6 to 8 within lines 1 to 9.
const QString nested = u"a {\n  b {\n    1\n    2\n  }\n  c {\n    3\n  }\n}\nend\n"_s;
const QString innerBody = u"    1\n    2\n"_s;

struct Fixture
{
    explicit Fixture(const QString& content)
    {
        storage.setText(content);
        manager.setStorage(&storage);
        detect();
    }
    void detect() { manager.detectFoldableRegions(Language::cpp); }
    /// As a click beside the line does.
    void toggle(qsizetype line)
    {
        manager.toggle(line);
        detect();
    }

    NotificationCenter center;
    TextStorage storage;
    CodeFoldingManager manager{center};
};

/// Lines of braces, and now and then one that looks like a placeholder.
QString anyText(test::RandomText& random)
{
    const QStringList pieces{u"{\n"_s,   u"}\n"_s,   u"\n"_s,         u"x\n"_s,
                             u"{ {\n"_s, u"} }\n"_s, u" \u2026 \n"_s, u"x\u2028"_s};
    QString result;
    for (qsizetype i = random.below(30); i > 0; --i) {
        result += pieces[random.below(pieces.size())];
    }
    return result;
}

/// A line at which a region starts, or now and then any.
qsizetype anyLine(test::RandomText& random, const Fixture& fixture)
{
    const auto regions = fixture.manager.foldableRegions();
    return regions.empty() || random.below(3) == 0 ? 1 + random.below(fixture.storage.lines().lineCount())
                                                   : regions[size_t(random.below(qsizetype(regions.size())))].startLine;
}

} // namespace

class CodeFoldingManagerMarksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMarkStandsWhereThePlaceholderIs();
    void aMarkStandsAtTheLineThatWasClicked_data();
    void aMarkStandsAtTheLineThatWasClicked();
    void aLineIsToggledThereAndBack();
    void allPlaceholdersToggledGiveTheTextBack();
    void whatIsHiddenIsRevealedAndNoMore_data();
    void whatIsHiddenIsRevealedAndNoMore();
    void aFoldWithinAFoldIsRevealed();
    void rangesOfWhatIsShownAndOfTheWhole();
    void ownersHearOfFolds();
    void withoutATextThereIsNothing();
    void theSameTextKeepsItsFolds();
    void anotherTextOfTheSameLengthIsReadAnew();
};

void CodeFoldingManagerMarksTest::aMarkStandsWhereThePlaceholderIs()
{
    Fixture fixture(nested);
    QVERIFY(!fixture.manager.markAt(3));
    QVERIFY(fixture.manager.markAt(2) && !fixture.manager.markAt(2)->isFolded);
    fixture.toggle(2);
    QVERIFY(fixture.manager.markAt(2)->isFolded);
    QCOMPARE(fixture.manager.markAt(2)->region.endLine, 5);
    QVERIFY(!fixture.manager.markAt(1)->isFolded);
    QVERIFY(!fixture.manager.markAt(3));
    // The lower one is the fourth line now, and is known by that.
    fixture.toggle(4);
    QCOMPARE(fixture.storage.text(), u"a {\n  b {\n …   }\n  c {\n …   }\n}\nend\n"_s);
    QVERIFY(fixture.manager.markAt(2)->isFolded && fixture.manager.markAt(4)->isFolded);
    QCOMPARE(fixture.manager.placeholders(), (std::vector<TextRange>{{10, 3}, {23, 3}}));
    fixture.toggle(2);
    QVERIFY(!fixture.manager.markAt(2)->isFolded);
    QVERIFY(!fixture.manager.markAt(4));
    QVERIFY(fixture.manager.markAt(6)->isFolded);
    QCOMPARE(fixture.manager.markAt(6)->region.startLine, 4);
    QCOMPARE(fixture.manager.placeholders(), (std::vector<TextRange>{{32, 3}}));
    QCOMPARE(fixture.manager.foldedRegionStartLines(), (std::set<qsizetype>{4}));
    fixture.toggle(6);
    QCOMPARE(fixture.storage.text(), nested);
    QVERIFY(!fixture.manager.isTextFolded());
    QVERIFY(fixture.manager.placeholders().empty());
    QVERIFY(fixture.manager.foldedContent().empty());
    QVERIFY(fixture.manager.foldedRegionStartLines().empty());
    QVERIFY(fixture.manager.foldedLines().isEmpty());
}

void CodeFoldingManagerMarksTest::aMarkStandsAtTheLineThatWasClicked_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<qsizetype>("line");
    QTest::addColumn<QString>("shown");
    QTest::newRow("returns alone") << u"def f():\r  a\r  b\r  c\r"_s << qsizetype(1) << u"def f():\r \u2026   c\r"_s;
    QTest::newRow("a return above") << u"# a\rb\ndef f():\n  a\n  b\n  c\n"_s << qsizetype(3)
                                    << u"# a\rb\ndef f():\n \u2026   c\n"_s;
    QTest::newRow("a line separator above")
        << u"# a\u2028b\ndef f():\n  a\n  b\n  c\n"_s << qsizetype(3) << u"# a\u2028b\ndef f():\n \u2026   c\n"_s;
}

void CodeFoldingManagerMarksTest::aMarkStandsAtTheLineThatWasClicked()
{
    QFETCH(QString, content);
    QFETCH(qsizetype, line);
    NotificationCenter center;
    TextStorage storage;
    storage.setText(content);
    CodeFoldingManager manager{center};
    manager.setStorage(&storage);
    const auto toggle = [&] {
        manager.detectFoldableRegions(Language::python);
        manager.toggle(line);
        manager.detectFoldableRegions(Language::python);
    };
    toggle();
    QTEST(storage.text(), "shown");
    for (qsizetype other = 1; other <= storage.lines().lineCount(); ++other) {
        QCOMPARE(manager.markAt(other).has_value() && manager.markAt(other)->isFolded, other == line);
    }
    toggle();
    QCOMPARE(storage.text(), content);
}

void CodeFoldingManagerMarksTest::aLineIsToggledThereAndBack()
{
    test::RandomText random;
    int folds = 0;
    for (int round = 0; round < 200; ++round) {
        Fixture fixture(anyText(random));
        for (qsizetype steps = random.below(10); steps > 0; --steps) {
            const qsizetype line = anyLine(random, fixture);
            const QString before = fixture.storage.text();
            const auto mark = fixture.manager.markAt(line);
            fixture.toggle(line);
            const bool hasFolded = mark && !mark->isFolded && fixture.storage.text() != before;
            if (hasFolded) {
                ++folds;
                QVERIFY(fixture.manager.markAt(line)->isFolded);
                QCOMPARE(fixture.manager.markAt(line)->region, mark->region);
                fixture.toggle(line);
                QCOMPARE(fixture.storage.text(), before);
                fixture.toggle(line);
            }
            QCOMPARE(fixture.storage.text() == before, !mark || (!mark->isFolded && !hasFolded));
        }
    }
    QVERIFY2(folds > 50, qPrintable(QString::number(folds)));
}

void CodeFoldingManagerMarksTest::allPlaceholdersToggledGiveTheTextBack()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        const QString content = anyText(random);
        Fixture fixture(content);
        for (qsizetype steps = random.below(12); steps > 0; --steps) {
            fixture.toggle(anyLine(random, fixture));
            QCOMPARE(fixture.manager.unfoldedText().toString(), content);
        }
        for (auto places = fixture.manager.placeholders(); !places.empty(); places = fixture.manager.placeholders()) {
            const TextRange place = places[size_t(random.below(qsizetype(places.size())))];
            QCOMPARE(fixture.storage.substring(place), CodeFoldingManager::foldPlaceholder);
            fixture.toggle(fixture.storage.lines().lineAt(place.location));
        }
        QCOMPARE(fixture.storage.text(), content);
        QVERIFY(!fixture.manager.isTextFolded());
        QVERIFY(fixture.manager.foldedContent().empty());
    }
}

void CodeFoldingManagerMarksTest::whatIsHiddenIsRevealedAndNoMore_data()
{
    const qsizetype start = nested.indexOf(innerBody);
    const qsizetype end = start + innerBody.size();
    QTest::addColumn<TextRange>("range");
    QTest::addColumn<bool>("isRevealed");
    QTest::newRow("before it") << TextRange{0, start} << false;
    QTest::newRow("at its start") << TextRange{start, 0} << false;
    QTest::newRow("at its end") << TextRange{end, 0} << false;
    QTest::newRow("behind it") << TextRange{end, 4} << false;
    QTest::newRow("its first unit") << TextRange{start, 1} << true;
    QTest::newRow("a place within") << TextRange{start + 1, 0} << true;
    QTest::newRow("its last unit") << TextRange{end - 1, 1} << true;
    QTest::newRow("more than it") << TextRange{start - 1, innerBody.size() + 2} << true;
    QTest::newRow("all") << TextRange{0, nested.size()} << true;
}

void CodeFoldingManagerMarksTest::whatIsHiddenIsRevealedAndNoMore()
{
    QFETCH(TextRange, range);
    QFETCH(bool, isRevealed);
    Fixture fixture(nested);
    QVERIFY(!fixture.manager.reveal(range));
    fixture.toggle(2);
    const QString folded = fixture.storage.text();
    QCOMPARE(fixture.manager.reveal(range), isRevealed);
    QCOMPARE(fixture.manager.isTextFolded(), !isRevealed);
    QCOMPARE(fixture.storage.text(), isRevealed ? nested : folded);
}

void CodeFoldingManagerMarksTest::aFoldWithinAFoldIsRevealed()
{
    Fixture fixture(nested);
    fixture.toggle(6);
    fixture.toggle(2);
    fixture.toggle(1);
    QCOMPARE(fixture.storage.text(), u"a {\n … }\nend\n"_s);
    // What holds it comes back with it, and its neighbour stays folded.
    QVERIFY(fixture.manager.reveal({nested.indexOf(u"1"), 1}));
    QCOMPARE(fixture.storage.text(), u"a {\n  b {\n    1\n    2\n  }\n  c {\n …   }\n}\nend\n"_s);
    QVERIFY(!fixture.manager.reveal({0, nested.indexOf(u"3") - 4}));
    QVERIFY(fixture.manager.reveal({nested.indexOf(u"3"), 0}));
    QCOMPARE(fixture.storage.text(), nested);
}

void CodeFoldingManagerMarksTest::rangesOfWhatIsShownAndOfTheWhole()
{
    Fixture fixture(nested);
    fixture.toggle(2);
    const qsizetype start = nested.indexOf(innerBody);
    const qsizetype shownEnd = fixture.storage.text().indexOf(u"end");
    const qsizetype wholeEnd = nested.indexOf(u"end");
    QCOMPARE(fixture.manager.wholeRange({shownEnd, 3}), (TextRange{wholeEnd, 3}));
    QCOMPARE(fixture.manager.shownRange({wholeEnd, 3}), (TextRange{shownEnd, 3}));
    QCOMPARE(fixture.manager.wholeRange({start, 3}), (TextRange{start, innerBody.size()}));
    QCOMPARE(fixture.manager.shownRange({start + 2, 1}), (TextRange{start, 3}));
}

void CodeFoldingManagerMarksTest::ownersHearOfFolds()
{
    Fixture fixture(nested);
    QStringList heard;
    // The text is whole before the first fold, and again behind the last.
    fixture.manager.onTextFolds = [&] { heard += fixture.storage.text() == nested ? u"folds"_s : u"folds late"_s; };
    fixture.manager.onTextUnfolded = [&] {
        heard += fixture.storage.text() == nested ? u"unfolded"_s : u"unfolded early"_s;
    };
    fixture.manager.onFoldedTextEdited = [&] { heard += u"edited"_s; };
    fixture.toggle(6);
    fixture.toggle(2);
    fixture.toggle(2);
    QCOMPARE(heard, (QStringList{u"folds"_s}));
    fixture.toggle(6);
    QCOMPARE(heard, (QStringList{u"folds"_s, u"unfolded"_s}));
    // A fold that is undone by its line, and all that are undone together.
    const FoldableRegion region = *fixture.manager.firstRegionStartingAt(2);
    fixture.manager.fold(region);
    fixture.manager.unfold(region);
    fixture.manager.unfold(region);
    QCOMPARE(heard.mid(2), (QStringList{u"folds"_s, u"unfolded"_s}));
    fixture.manager.fold(region);
    fixture.manager.unfoldAll();
    fixture.manager.unfoldAll();
    QCOMPARE(heard.mid(4), (QStringList{u"folds"_s, u"unfolded"_s}));
    heard.clear();
    fixture.storage.replace({nested.size(), 0}, u"x");
    QVERIFY(heard.isEmpty());
    fixture.storage.replace({nested.size(), 1}, u"");
    fixture.manager.fold(region);
    fixture.storage.replace({0, 0}, u"y");
    QCOMPARE(heard, (QStringList{u"folds"_s, u"edited"_s}));
}

void CodeFoldingManagerMarksTest::withoutATextThereIsNothing()
{
    NotificationCenter center;
    CodeFoldingManager manager(center);
    auto storage = std::make_unique<TextStorage>();
    storage->setText(nested);
    manager.setStorage(storage.get());
    manager.detectFoldableRegions(Language::cpp);
    manager.toggle(2);
    QVERIFY(manager.isTextFolded());
    storage.reset();
    QVERIFY(manager.placeholders().empty());
    QVERIFY(manager.unfoldedText().isEmpty());
    QVERIFY(!manager.reveal({0, nested.size()}));
    QVERIFY(!manager.markAt(2)->isFolded);
    manager.toggle(2);
    manager.toggle(6);
}

void CodeFoldingManagerMarksTest::theSameTextKeepsItsFolds()
{
    Fixture fixture(nested);
    fixture.toggle(2);
    fixture.manager.setStorage(&fixture.storage);
    QVERIFY(fixture.manager.isTextFolded());
    fixture.toggle(2);
    QCOMPARE(fixture.storage.text(), nested);
}

void CodeFoldingManagerMarksTest::anotherTextOfTheSameLengthIsReadAnew()
{
    const QString before = u"{\n1\n}\n...\n"_s;
    const QString after = u"...\n{\n1\n}\n"_s;
    Fixture fixture(before);
    QVERIFY(fixture.manager.markAt(1));
    TextStorage other;
    other.setText(after);
    fixture.manager.setStorage(&other);
    // The list is that of the text before until the next detection.
    QVERIFY(fixture.manager.markAt(1) && !fixture.manager.markAt(2));
    fixture.detect();
    QVERIFY(fixture.manager.markAt(2) && !fixture.manager.markAt(1));
    other.setText(before);
    fixture.detect();
    QVERIFY(fixture.manager.markAt(1) && !fixture.manager.markAt(2));
}

const kelm::test::Registered<CodeFoldingManagerMarksTest> registered;

} // namespace code_folding_manager_marks_test

#include "code_folding_manager_marks_test.moc"
