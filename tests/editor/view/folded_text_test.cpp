#include "editor/view/folded_text.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace folded_text_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Two functions, "{\n" and their bodies at 2 and 11.
const QString functions = u"{\n  a\n  b\n}\n{\n  c\n  d\n}\n"_s;

struct Fixture
{
    NotificationCenter center;
    TextStorage storage;
    CodeFoldingManager manager{center};
    int revealed = 0;
    FoldedText text{manager, [this] { ++revealed; }};

    Fixture()
    {
        storage.setText(functions);
        manager.setStorage(&storage);
        manager.detectFoldableRegions(Language::swift);
    }

    /// Folds the second function and then the first.
    void foldBoth()
    {
        manager.toggle(5);
        manager.toggle(1);
    }
};

using Ranges = std::vector<TextRange>;

} // namespace

class FoldedTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainPartsStandBetweenPlaceholders_data();
    void plainPartsStandBetweenPlaceholders();
    void observersHearOfTheFirstFoldAndTheLast();
    void observersHearOfAnotherText();
    void whatIsHiddenIsRevealedAndNoMore();
};

void FoldedTextTest::plainPartsStandBetweenPlaceholders_data()
{
    QTest::addColumn<TextRange>("shown");
    QTest::addColumn<Ranges>("parts");
    // "{\n … }\n{\n … }\n": placeholders at 2 and 9, the text ends at 14.
    QTest::newRow("all") << TextRange{0, 14} << Ranges{{0, 2}, {5, 4}, {12, 2}};
    QTest::newRow("before the first") << TextRange{0, 2} << Ranges{{0, 2}};
    QTest::newRow("a placeholder") << TextRange{2, 3} << Ranges{};
    QTest::newRow("a part of one") << TextRange{3, 1} << Ranges{};
    QTest::newRow("from within one") << TextRange{3, 4} << Ranges{{5, 2}};
    QTest::newRow("into one") << TextRange{6, 4} << Ranges{{6, 3}};
    QTest::newRow("between them") << TextRange{5, 4} << Ranges{{5, 4}};
    QTest::newRow("behind the last") << TextRange{12, 2} << Ranges{{12, 2}};
    QTest::newRow("nothing") << TextRange{6, 0} << Ranges{};
}

void FoldedTextTest::plainPartsStandBetweenPlaceholders()
{
    QFETCH(TextRange, shown);
    QFETCH(Ranges, parts);
    Fixture fixture;
    fixture.foldBoth();
    QCOMPARE(fixture.storage.text(), u"{\n … }\n{\n … }\n"_s);
    QCOMPARE(fixture.text.plainParts(shown), parts);
}

void FoldedTextTest::observersHearOfTheFirstFoldAndTheLast()
{
    Fixture fixture;
    const QSignalSpy shortened(&fixture.text, &WholeText::willShorten);
    const QSignalSpy whole(&fixture.text, &WholeText::becameWhole);
    const QSignalSpy replaced(&fixture.text, &WholeText::replaced);
    QVERIFY(!fixture.text.isShortened());
    fixture.foldBoth();
    QCOMPARE(shortened.size(), 1);
    QVERIFY(fixture.text.isShortened());
    QCOMPARE(fixture.text.text().toString(), functions);
    fixture.manager.toggle(1);
    QCOMPARE(whole.size(), 0);
    fixture.manager.toggle(5);
    QCOMPARE(whole.size(), 1);
    QVERIFY(!fixture.text.isShortened());
    fixture.foldBoth();
    fixture.manager.unfoldAll();
    QCOMPARE(whole.size(), 2);
    QCOMPARE(replaced.size(), 0);
    QCOMPARE(fixture.revealed, 0);
}

void FoldedTextTest::observersHearOfAnotherText()
{
    Fixture fixture;
    fixture.manager.toggle(1);
    const QSignalSpy replaced(&fixture.text, &WholeText::replaced);
    fixture.storage.replace({0, 1}, u"[");
    QCOMPARE(replaced.size(), 1);
}

void FoldedTextTest::whatIsHiddenIsRevealedAndNoMore()
{
    Fixture fixture;
    fixture.manager.toggle(1);
    // The body of eight units from 2 on is hidden; what only touches it is not.
    const TextRange body{2, 8};
    for (const TextRange beside : {TextRange{0, 2}, TextRange{body.location, 0}, TextRange{body.end(), 0},
                                   TextRange{body.end(), 4}, TextRange{0, 0}}) {
        fixture.text.reveal(beside);
        QVERIFY(fixture.text.isShortened());
    }
    QCOMPARE(fixture.revealed, 0);
    for (const TextRange inside : {TextRange{body.location, 1}, TextRange{body.location + 1, 0},
                                   TextRange{body.end() - 1, 3}, TextRange{0, functions.size()}}) {
        fixture.text.reveal(inside);
        QVERIFY(!fixture.text.isShortened());
        fixture.manager.toggle(1);
    }
    QCOMPARE(fixture.revealed, 4);
}

const kelm::test::Registered<FoldedTextTest> registered(kelm::test::Toolkit::widgets);

} // namespace folded_text_test

#include "folded_text_test.moc"
