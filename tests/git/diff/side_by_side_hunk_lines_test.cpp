#include "git/diff/side_by_side_hunk_lines.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace side_by_side_hunk_lines_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// Such as "a|b*": the two texts, "." for an empty side, a star where words are compared.
QStringList described(const QList<SideBySideHunkLines::Row>& rows)
{
    QStringList lines;
    const auto text = [](const std::optional<DiffLine>& line) { return line ? line->text.toString() : u"."_s; };
    for (const auto& row : rows) {
        lines.append(text(row.oldLine) + u'|' + text(row.newLine) + (row.oldWord && row.newWord ? u"*"_s : QString()));
    }
    return lines;
}

} // namespace

class SideBySideHunkLinesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesArePairedByTheirPlaceInTheRun_data();
    void linesArePairedByTheirPlaceInTheRun();
    void contextStandsOnBothSidesWithItsNumbers();
    void wordsAreThoseOfTheComparison();
};

void SideBySideHunkLinesTest::linesArePairedByTheirPlaceInTheRun_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("nothing") << QStringList{} << QStringList{};
    QTest::newRow("context") << QStringList{u" a"_s} << QStringList{u"a|a"_s};
    QTest::newRow("removed, added") << QStringList{u"-a"_s, u"+b"_s} << QStringList{u"a|b*"_s};
    QTest::newRow("added, removed") << QStringList{u"+a"_s, u"-b"_s} << QStringList{u"b|a*"_s};
    QTest::newRow("two and two") << QStringList{u"-a"_s, u"-b"_s, u"+c"_s, u"+d"_s}
                                 << QStringList{u"a|c*"_s, u"b|d*"_s};
    QTest::newRow("more removed") << QStringList{u"-a"_s, u"-b"_s, u"-c"_s, u"+d"_s}
                                  << QStringList{u"a|d*"_s, u"b|."_s, u"c|."_s};
    QTest::newRow("more added") << QStringList{u"-a"_s, u"+b"_s, u"+c"_s} << QStringList{u"a|b*"_s, u".|c"_s};
    QTest::newRow("only added") << QStringList{u"+a"_s} << QStringList{u".|a"_s};
    QTest::newRow("removed, context") << QStringList{u"-a"_s, u" b"_s} << QStringList{u"a|."_s, u"b|b"_s};
    QTest::newRow("context ends a run") << QStringList{u"-a"_s, u" b"_s, u"+c"_s}
                                        << QStringList{u"a|."_s, u"b|b"_s, u".|c"_s};
    QTest::newRow("taking turns is one run")
        << QStringList{u"-a"_s, u"+b"_s, u"-c"_s, u"+d"_s} << QStringList{u"a|b*"_s, u"c|d*"_s};
    QTest::newRow("no newline ends a run and stands on both sides")
        << QStringList{u"-a"_s, u"\\ No newline"_s, u"+b"_s}
        << QStringList{u"a|."_s, u"\\ No newline|\\ No newline"_s, u".|b"_s};
}

void SideBySideHunkLinesTest::linesArePairedByTheirPlaceInTheRun()
{
    QFETCH(QStringList, lines);
    QFETCH(QStringList, rows);
    const DiffHunk hunk = hunkOf(lines);
    const SideBySideHunkLines shown(hunk);
    const QList<SideBySideHunkLines::Row> made = shown.rows();
    QCOMPARE(described(made), rows);

    const auto pairings = shown.pairings();
    QCOMPARE(qsizetype(pairings.size()), rows.size());
    QCOMPARE(shown.rowCount(), rows.size());
    for (qsizetype row = 0; row < made.size(); ++row) {
        const auto& pairing = pairings[std::size_t(row)];
        QCOMPARE(pairing.isCompared(), made[row].oldWord.has_value());
        QCOMPARE(pairing.oldLine >= 0, made[row].oldLine.has_value());
        QCOMPARE(pairing.newLine >= 0, made[row].newLine.has_value());
    }
}

void SideBySideHunkLinesTest::contextStandsOnBothSidesWithItsNumbers()
{
    const DiffHunk hunk = hunkOf({u"+a"_s, u" b"_s});
    const SideBySideHunkLines::Row row = SideBySideHunkLines(hunk).rows()[1];
    QCOMPARE(row.oldLine, row.newLine);
    QCOMPARE(row.oldLine->oldLineNumber, std::optional<qint64>(1));
    QCOMPARE(row.oldLine->newLineNumber, std::optional<qint64>(2));
}

void SideBySideHunkLinesTest::wordsAreThoseOfTheComparison()
{
    const DiffHunk hunk = hunkOf({u"-let x = 1"_s, u"+let y = 1"_s});
    const SideBySideHunkLines::Row row = SideBySideHunkLines(hunk).rows()[0];
    const auto expected = WordDiff::diff(u"let x = 1"_s, u"let y = 1"_s);
    QCOMPARE(*row.oldWord, expected.oldSegments);
    QCOMPARE(*row.newWord, expected.newSegments);
}

const kelm::test::Registered<SideBySideHunkLinesTest> registered;

} // namespace side_by_side_hunk_lines_test

#include "side_by_side_hunk_lines_test.moc"
