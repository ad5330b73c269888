#include "git/diff/diff_selection.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace diff_selection_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Side = SideBySideHunkLines::Side;

DiffLayout layoutOf(DiffViewMode mode)
{
    QString text = diffOf(u"a.txt"_s, {{u" one"_s, u"-two"_s, u"+TWO"_s, u"+three"_s}, {u"-four"_s, u" five"_s}}) +
                   diffOf(u"b.txt"_s, {{u" six"_s}});
    text.chop(1);
    return {DiffParser::parse(text), mode, {}, 80};
}

} // namespace

class DiffSelectionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selectedTextHasNoSigns_data();
    void selectedTextHasNoSigns();
    void sidesAreCopiedAlone();
    void collapsedHunksAreLeftOut();
    void everythingIsSelected();
    void hunkIsTakenFromOneSide();
    void fileWithoutAPathIsNamed();
};

void DiffSelectionTest::selectedTextHasNoSigns_data()
{
    QTest::addColumn<QList<qsizetype>>("anchor");
    QTest::addColumn<QList<qsizetype>>("caret");
    QTest::addColumn<QString>("text");
    using Place = QList<qsizetype>;

    QTest::newRow("nothing") << Place{0, 0, 1, 2} << Place{0, 0, 1, 2} << QString();
    QTest::newRow("within a line") << Place{0, 0, 0, 1} << Place{0, 0, 0, 3} << u"ne"_s;
    QTest::newRow("backwards") << Place{0, 0, 0, 3} << Place{0, 0, 0, 1} << u"ne"_s;
    QTest::newRow("two lines") << Place{0, 0, 1, 1} << Place{0, 0, 2, 1} << u"wo\nT"_s;
    QTest::newRow("to the start of the next line") << Place{0, 0, 0, 0} << Place{0, 0, 1, 0} << u"one\n"_s;
    QTest::newRow("over a hunk's header") << Place{0, 0, 3, 0} << Place{0, 1, 0, 2} << u"three\nfo"_s;
    QTest::newRow("over a file's header") << Place{0, 1, 1, 4} << Place{1, 0, 0, 3} << u"\nb.txt\nsix"_s;
    QTest::newRow("a path") << Place{0, -1, 0, 2} << Place{0, -1, 0, 5} << u"txt"_s;
    QTest::newRow("path and line") << Place{0, -1, 0, 0} << Place{0, 0, 0, 3} << u"a.txt\none"_s;
}

void DiffSelectionTest::selectedTextHasNoSigns()
{
    QFETCH(QList<qsizetype>, anchor);
    QFETCH(QList<qsizetype>, caret);
    const auto place = [](const QList<qsizetype>& from) { return DiffTextPlace{from[0], from[1], from[2], from[3]}; };
    const DiffSelection selection{place(anchor), place(caret)};
    QCOMPARE(selection.isEmpty(), anchor == caret);
    QTEST(selectedText(layoutOf(DiffViewMode::unified), selection), "text");
}

void DiffSelectionTest::sidesAreCopiedAlone()
{
    const DiffLayout layout = layoutOf(DiffViewMode::sideBySide);
    const DiffTextPlace start{0, 0, 0, 0};
    const DiffTextPlace end{0, 1, 1, 4};
    QCOMPARE(selectedText(layout, {start, end, Side::oldSide}), u"one\ntwo\nfour\nfive"_s);
    QCOMPARE(selectedText(layout, {start, end, Side::newSide}), u"one\nTWO\nthree\nfive"_s);
}

void DiffSelectionTest::collapsedHunksAreLeftOut()
{
    DiffLayout layout = layoutOf(DiffViewMode::unified);
    layout.setCollapsed(0, 0, true);
    QCOMPARE(selectedText(layout, wholeSelection(layout, Side::newSide)), u"a.txt\nfour\nfive\nb.txt\nsix"_s);
}

void DiffSelectionTest::everythingIsSelected()
{
    const DiffLayout layout = layoutOf(DiffViewMode::unified);
    const QString whole = selectedText(layout, wholeSelection(layout, Side::newSide));
    QCOMPARE(whole, u"a.txt\none\ntwo\nTWO\nthree\nfour\nfive\nb.txt\nsix"_s);
    QVERIFY(wholeSelection(DiffLayout(), Side::newSide).isEmpty());
    QCOMPARE(selectedText(DiffLayout(), wholeSelection(DiffLayout(), Side::newSide)), QString());
}

void DiffSelectionTest::hunkIsTakenFromOneSide()
{
    QString text = diffOf(u"a.txt"_s, {{u" one"_s, u"-two"_s, u"+TWO"_s}, {u"-three"_s, u"-four"_s}, {}});
    text.chop(1);
    DiffLayout unified(DiffParser::parse(text), DiffViewMode::unified, {}, 80);
    QCOMPARE(hunkText(unified, 0, 0), u"one\ntwo\nTWO"_s);
    unified.setCollapsed(0, 0, true);
    QCOMPARE(hunkText(unified, 0, 0), u"one\ntwo\nTWO"_s);
    QCOMPARE(hunkText(unified, 0, 1), u"three\nfour"_s);
    QCOMPARE(hunkText(unified, 0, 2), QString());
    const DiffLayout sides(DiffParser::parse(text), DiffViewMode::sideBySide, {}, 80);
    QCOMPARE(int(sideOfHunk(sides, 0, 0)), int(Side::newSide));
    QCOMPARE(hunkText(sides, 0, 0), u"one\nTWO"_s);
    QCOMPARE(int(sideOfHunk(sides, 0, 1)), int(Side::oldSide));
    QCOMPARE(hunkText(sides, 0, 1), u"three\nfour"_s);
    QCOMPARE(hunkText(sides, 0, 2), QString());
}

void DiffSelectionTest::fileWithoutAPathIsNamed()
{
    QCOMPARE(shownPath({}), u"(diff)"_s);
    QCOMPARE(shownPath(DiffParser::parse(u"@@ -1 +1 @@\n+a"_s).front()), u"(diff)"_s);
    const auto shown = [](const QString& header) { return shownPath(DiffParser::parse(header).front()); };
    QCOMPARE(shown(u"diff --git \"a/\\355\\225\\234\" \"b/\\355\\225\\234\"\n"_s), u"한"_s);
    QCOMPARE(shown(u"diff --git a/x \"b/\\\"q\\\" b\"\n"_s), u"\"q\" b"_s);
    QCOMPARE(shown(u"--- \"a/a\\nb\"\n+++ \"b/a\\nb\"\n"_s), u"a\u27e8U+000A\u27e9b"_s);
    QCOMPARE(shown(u"diff --git a/a b b/a b\n"_s), u"a b"_s);
}

const kelm::test::Registered<DiffSelectionTest> registered;

} // namespace diff_selection_test

#include "diff_selection_test.moc"
