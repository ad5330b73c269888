#include "git/diff/diff_view_mode.h"
#include "git/diff/unified_hunk_lines.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace unified_hunk_lines_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class UnifiedHunkLinesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyNeighboursAreCompared_data();
    void onlyNeighboursAreCompared();
    void wordsAreThoseOfTheComparison();
    void modesHaveTheirWords();
};

void UnifiedHunkLinesTest::onlyNeighboursAreCompared_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QList<qsizetype>>("compared");

    // The hunk's header is line 0.
    QTest::newRow("nothing") << QStringList{} << QList<qsizetype>{};
    QTest::newRow("removed, added") << QStringList{u"-a"_s, u"+b"_s} << QList<qsizetype>{1, 2};
    QTest::newRow("added, removed") << QStringList{u"+a"_s, u"-b"_s} << QList<qsizetype>{};
    QTest::newRow("two and two") << QStringList{u"-a"_s, u"-b"_s, u"+c"_s, u"+d"_s} << QList<qsizetype>{2, 3};
    QTest::newRow("three and three") << QStringList{u"-a"_s, u"-b"_s, u"-c"_s, u"+d"_s, u"+e"_s, u"+f"_s}
                                     << QList<qsizetype>{3, 4};
    QTest::newRow("removed, context") << QStringList{u"-a"_s, u" b"_s, u"+c"_s} << QList<qsizetype>{};
    QTest::newRow("removed, no newline, added")
        << QStringList{u"-a"_s, u"\\ No newline at end of file"_s, u"+b"_s} << QList<qsizetype>{};
    QTest::newRow("taking turns") << QStringList{u"-a"_s, u"+b"_s, u"-c"_s, u"+d"_s} << QList<qsizetype>{1, 2, 3, 4};
    QTest::newRow("removed alone") << QStringList{u"-a"_s} << QList<qsizetype>{};
    QTest::newRow("empty lines") << QStringList{u"-"_s, u"+"_s} << QList<qsizetype>{1, 2};
}

void UnifiedHunkLinesTest::onlyNeighboursAreCompared()
{
    QFETCH(QStringList, lines);
    QFETCH(QList<qsizetype>, compared);
    const DiffHunk hunk = hunkOf(lines);
    const UnifiedHunkLines shown(hunk);
    const auto words = shown.wordDiffMap();
    QCOMPARE(words.keys(), compared);
    for (qsizetype line = -1; line <= hunk.lines.size(); ++line) {
        const auto partner = shown.partner(line);
        QCOMPARE(partner.has_value(), compared.contains(line));
        if (partner) {
            QCOMPARE(shown.partner(*partner), std::optional(line));
            const bool isOld = hunk.lines[line].kind == DiffLineKind::removed;
            QCOMPARE(*partner, isOld ? line + 1 : line - 1);
            QCOMPARE(words[line].oldSeg.has_value(), isOld);
            QCOMPARE(words[line].newSeg.has_value(), !isOld);
        }
    }
}

void UnifiedHunkLinesTest::wordsAreThoseOfTheComparison()
{
    const DiffHunk hunk = hunkOf({u"-let x = 1"_s, u"+let y = 1"_s});
    const auto words = UnifiedHunkLines(hunk).wordDiffMap();
    const auto expected = WordDiff::diff(u"let x = 1"_s, u"let y = 1"_s);
    QCOMPARE(*words[1].oldSeg, expected.oldSegments);
    QCOMPARE(*words[2].newSeg, expected.newSegments);
}

void UnifiedHunkLinesTest::modesHaveTheirWords()
{
    QCOMPARE(allDiffViewModes.size(), 2U);
    QCOMPARE(rawValue(allDiffViewModes[0]), u"unified"_s);
    QCOMPARE(rawValue(allDiffViewModes[1]), u"sideBySide"_s);
    QCOMPARE(label(allDiffViewModes[0]), u"Unified"_s);
    QCOMPARE(label(allDiffViewModes[1]), u"Side-by-side"_s);
}

const kelm::test::Registered<UnifiedHunkLinesTest> registered;

} // namespace unified_hunk_lines_test

#include "unified_hunk_lines_test.moc"
