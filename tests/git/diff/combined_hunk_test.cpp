#include "git/diff/combined_hunk.h"
#include "git/diff/diff_content.h"
#include "git/diff/diff_parser.h"
#include "support/diff_text.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

namespace combined_hunk_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// Each line as its kind's letter, its number in the new file and its text.
QStringList described(const DiffHunk& hunk)
{
    QStringList lines;
    for (const DiffLine& line : hunk.lines) {
        if (line.kind != DiffLineKind::hunkHeader && !isBehindTheText(hunk, line)) {
            const QChar kind = line.kind == DiffLineKind::added     ? u'a'
                               : line.kind == DiffLineKind::removed ? u'r'
                                                                    : u'c';
            const QString number = line.newLineNumber ? QString::number(*line.newLineNumber) : u"."_s;
            lines.append(u"%1 %2 %3"_s.arg(kind).arg(number).arg(line.text));
        }
    }
    return lines;
}

/// A repository in which two branches change the files in other ways and are joined.
void makeConflict(const TemporaryRepository& repository, const QStringList& names)
{
    const auto writeAll = [&](const QByteArray& middle) {
        for (const QString& name : names) {
            repository.write(name, "first\n" + middle + "\nlast\n");
        }
    };
    writeAll("old");
    repository.commitAll(u"base"_s);
    repository.git({u"checkout"_s, u"-q"_s, u"-b"_s, u"other"_s});
    writeAll("theirs");
    repository.commitAll(u"theirs"_s);
    repository.git({u"checkout"_s, u"-q"_s, u"main"_s});
    writeAll("ours");
    repository.commitAll(u"ours"_s);
    repository.tryGit({u"merge"_s, u"other"_s});
}

} // namespace

class CombinedHunkTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void conflictIsReadable();
    void filesOfAMergeAreApart();
    void otherHunksAreLeftAlone();
    void lastLineNumberStays();
    void piecesAreTheText_data();
    void piecesAreTheText();
    void fileIsNamedByItsFirstLine_data();
    void fileIsNamedByItsFirstLine();
};

void CombinedHunkTest::conflictIsReadable()
{
    const TemporaryRepository repository;
    makeConflict(repository, {u"a"_s});
    const QString text = QString::fromUtf8(repository.git({u"diff"_s, u"--"_s, u"a"_s}));
    const DiffContent content = DiffContent::of(text);
    QCOMPARE(content.files.size(), 1);
    QCOMPARE(content.files[0].path, u"a"_s);
    QCOMPARE(content.files[0].hunks.size(), 1);
    QVERIFY(isCombined(content.files[0].hunks[0]));
    QCOMPARE(described(content.files[0].hunks[0]),
             (QStringList{u"c 1   first"_s, u"a 2 ++<<<<<<< HEAD"_s, u"a 3  +ours"_s, u"a 4 ++======="_s,
                          u"a 5 + theirs"_s, u"a 6 ++>>>>>>> other"_s, u"c 7   last"_s}));
}

void CombinedHunkTest::filesOfAMergeAreApart()
{
    const TemporaryRepository repository;
    makeConflict(repository, {u"a"_s, u"b c"_s});
    for (const QString& name : {u"a"_s, u"b c"_s}) {
        repository.write(name, "first\nboth\nlast\n");
    }
    repository.commitAll(u"joined"_s);
    const DiffContent content = DiffContent::of(QString::fromUtf8(repository.git({u"show"_s, u"--no-color"_s})));
    QCOMPARE(content.files.size(), 2);
    QCOMPARE(content.files[0].path, u"a"_s);
    QCOMPARE(content.files[1].path.trimmed(), u"b c"_s);
    for (const DiffFile& file : content.files) {
        QCOMPARE(file.hunks.size(), 1);
        QCOMPARE(described(file.hunks[0]),
                 (QStringList{u"c 1   first"_s, u"r . - ours"_s, u"r .  -theirs"_s, u"a 2 ++both"_s, u"c 3   last"_s}));
    }
}

void CombinedHunkTest::otherHunksAreLeftAlone()
{
    const QString text = diffOf(u"a"_s, {{u" x"_s, u"-y"_s, u"+z"_s}}) + diffOf(u"b"_s, {{u"+@@@ x"_s}});
    const QList<DiffFile> parsed = DiffParser::parse(text);
    const DiffContent content = DiffContent::of(text);
    QCOMPARE(content.files.size(), 2);
    for (qsizetype file = 0; file < 2; ++file) {
        QCOMPARE(content.files[file].preamble, parsed[file].preamble);
        QCOMPARE(content.files[file].hunks[0].lines, parsed[file].hunks[0].lines);
    }
}

void CombinedHunkTest::lastLineNumberStays()
{
    const DiffContent content =
        DiffContent::of(u"diff --cc a\n@@@ -1 -1 +9223372036854775806,4 @@@\n  a\n  b\n++c\n--d\n  e\n"_s);
    QCOMPARE(described(content.files[0].hunks[0]),
             (QStringList{u"c 9223372036854775806   a"_s, u"c 9223372036854775807   b"_s,
                          u"a 9223372036854775807 ++c"_s, u"r . --d"_s, u"c 9223372036854775807   e"_s}));
}

void CombinedHunkTest::piecesAreTheText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("count");
    QTest::newRow("nothing") << QString() << qsizetype(1);
    QTest::newRow("one") << u"diff --cc a\n@@@ -1 -1 +1 @@@\n"_s << qsizetype(1);
    QTest::newRow("two behind a head") << u"commit\n\ndiff --cc a\nx\ndiff --combined b\ny"_s << qsizetype(3);
    QTest::newRow("not at a line's start") << u"diff --git a/a b/a\n+diff --cc a\n diff --cc b\n"_s << qsizetype(1);
    QTest::newRow("something else") << u"x\ndiff --check\n"_s << qsizetype(1);
}

void CombinedHunkTest::piecesAreTheText()
{
    QFETCH(QString, text);
    const QList<QStringView> pieces = piecesOfCombinedDiff(text);
    QTEST(pieces.size(), "count");
    QString joined;
    for (const QStringView piece : pieces) {
        joined += piece;
    }
    QCOMPARE(joined, text);
}

void CombinedHunkTest::fileIsNamedByItsFirstLine_data()
{
    QTest::addColumn<QString>("piece");
    QTest::addColumn<QString>("path");
    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("one form") << u"diff --cc a b\nindex 1,2..0\n"_s << u"a b"_s;
    QTest::newRow("the other") << u"diff --combined a/b\nindex 1,2..0\n"_s << u"a/b"_s;
    QTest::newRow("without an end") << u"diff --cc a"_s << u"a"_s;
    QTest::newRow("of no name") << u"diff --cc \n"_s << QString();
    QTest::newRow("an ordinary file") << u"diff --git a/a b/a\n"_s << QString();
    QTest::newRow("not in the first line") << u"commit\ndiff --cc a\n"_s << QString();
}

void CombinedHunkTest::fileIsNamedByItsFirstLine()
{
    QFETCH(QString, piece);
    QFETCH(QString, path);
    QCOMPARE(pathOfCombinedDiff(piece), path);
    if (!path.isEmpty()) {
        // As of a file that the merge has taken away, which no other line names.
        const DiffContent content =
            DiffContent::of(u"commit\n\n"_s + piece.section(u'\n', 0, 0) + u"\n@@@ -1 -1 +0,0 @@@\n--x\n"_s);
        QCOMPARE(content.files.size(), 1);
        QCOMPARE(content.files[0].path, path);
    }
}

const kelm::test::Registered<CombinedHunkTest> registered;

} // namespace combined_hunk_test

#include "combined_hunk_test.moc"
