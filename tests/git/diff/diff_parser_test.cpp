#include "git/diff/diff_parser.h"
#include "support/test_program.h"

#include <QSet>
#include <QtTest>

namespace diff_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

QString number(std::optional<qint64> value)
{
    return value ? QString::number(*value) : u"-"_s;
}

/// A line as its kind's letter, its two numbers and its text.
QString described(const DiffLine& line)
{
    static const QString kinds = u"carhfn"_s;
    return u"%1 %2 %3 [%4]"_s.arg(kinds[static_cast<int>(line.kind)])
        .arg(number(line.oldLineNumber), number(line.newLineNumber), line.text);
}

/// A whole parse as lines of text: whole text in, whole text out.
QStringList described(const QList<DiffFile>& files)
{
    QStringList lines;
    for (const DiffFile& file : files) {
        lines.append(u"file [%1]"_s.arg(file.path));
        for (const DiffLine& line : file.preamble) {
            lines.append(described(line));
        }
        for (const DiffHunk& hunk : file.hunks) {
            lines.append(u"hunk %1,%2 %3,%4 [%5]"_s.arg(hunk.oldStart)
                             .arg(hunk.oldCount)
                             .arg(hunk.newStart)
                             .arg(hunk.newCount)
                             .arg(hunk.header));
            for (const DiffLine& line : hunk.lines) {
                lines.append(described(line));
            }
        }
    }
    return lines;
}

} // namespace

class DiffParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindsAreInOrder();
    void textBecomesFilesHunksAndLines_data();
    void textBecomesFilesHunksAndLines();
    void everyHeaderStartIsAHeader_data();
    void everyHeaderStartIsAHeader();
    void hunkHeaderGivesFourNumbers_data();
    void hunkHeaderGivesFourNumbers();
    void identitiesAreFreshAndContentIsEqual();
    void lineNumbersStayAtTheLargest();
    void aLongInputIsOnePass();
};

void DiffParserTest::kindsAreInOrder()
{
    QCOMPARE(static_cast<int>(DiffLineKind::context), 0);
    QCOMPARE(static_cast<int>(DiffLineKind::added), 1);
    QCOMPARE(static_cast<int>(DiffLineKind::removed), 2);
    QCOMPARE(static_cast<int>(DiffLineKind::hunkHeader), 3);
    QCOMPARE(static_cast<int>(DiffLineKind::fileHeader), 4);
    QCOMPARE(static_cast<int>(DiffLineKind::noNewline), 5);
}

void DiffParserTest::textBecomesFilesHunksAndLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("described");
    const auto row = [](const char* name, const QString& text, const QStringList& lines) {
        QTest::newRow(name) << text << lines;
    };

    row("empty", u""_s, {});
    row("newline alone", u"\n"_s, {});
    row("plain prose", u"Just a text.\nOf two lines.\n"_s, {});
    row("an ordinary change",
        u"diff --git a/f.txt b/f.txt\nindex 111..222 100644\n--- a/f.txt\n+++ b/f.txt\n"
        "@@ -1,3 +1,3 @@ sec\n a\n-b\n+B\n c\n"_s,
        {u"file [f.txt]"_s, u"f - - [diff --git a/f.txt b/f.txt]"_s, u"f - - [index 111..222 100644]"_s,
         u"f - - [--- a/f.txt]"_s, u"f - - [+++ b/f.txt]"_s, u"hunk 1,3 1,3 [@@ -1,3 +1,3 @@ sec]"_s,
         u"h - - [@@ -1,3 +1,3 @@ sec]"_s, u"c 1 1 [a]"_s, u"r 2 - [b]"_s, u"a - 2 [B]"_s, u"c 3 3 [c]"_s,
         // The empty line behind the last newline.
         u"c 4 4 []"_s});
    row("hunk alone", u"@@ -1 +1 @@\n-a\n+b"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"r 1 - [a]"_s, u"a - 1 [b]"_s});
    row("new file counts from 1", u"@@ -0,0 +1,3 @@\n+a\n+b\n+c"_s,
        {u"file []"_s, u"hunk 0,0 1,3 [@@ -0,0 +1,3 @@]"_s, u"h - - [@@ -0,0 +1,3 @@]"_s, u"a - 1 [a]"_s,
         u"a - 2 [b]"_s, u"a - 3 [c]"_s});
    row("malformed hunk header still opens", u"@@ malformed\n+a"_s,
        {u"file []"_s, u"hunk 0,0 0,0 [@@ malformed]"_s, u"h - - [@@ malformed]"_s, u"a - 0 [a]"_s});
    row("marker does not move the counters",
        u"@@ -1 +1 @@\n-a\n\\ No newline at end of file\n+b\n\\ No newline at end of file"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"r 1 - [a]"_s,
         u"n - - [\\ No newline at end of file]"_s, u"a - 1 [b]"_s, u"n - - [\\ No newline at end of file]"_s});
    row("pure rename", u"diff --git a/old b/new\nsimilarity index 100%\nrename from old\nrename to new\n"_s,
        {u"file [new]"_s, u"f - - [diff --git a/old b/new]"_s, u"f - - [similarity index 100%]"_s,
         u"f - - [rename from old]"_s, u"f - - [rename to new]"_s});
    row("two files in a row", u"diff --git a/x b/x\ndiff --git a/y b/y\n@@ -1 +1 @@\n x"_s,
        {u"file [x]"_s, u"f - - [diff --git a/x b/x]"_s, u"file [y]"_s, u"f - - [diff --git a/y b/y]"_s,
         u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"c 1 1 [x]"_s});
    row("two hunks", u"@@ -1 +1 @@\n a\n@@ -10,1 +20,1 @@\n b"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"c 1 1 [a]"_s,
         u"hunk 10,1 20,1 [@@ -10,1 +20,1 @@]"_s, u"h - - [@@ -10,1 +20,1 @@]"_s, u"c 10 20 [b]"_s});
    row("binary file", u"diff --git a/i.png b/i.png\nindex 1..2\nBinary files a/i.png and b/i.png differ\n"_s,
        {u"file [i.png]"_s, u"f - - [diff --git a/i.png b/i.png]"_s, u"f - - [index 1..2]"_s,
         u"f - - [Binary files a/i.png and b/i.png differ]"_s});
    row("removed line that looks like a file header ends the hunk",
        u"@@ -1,3 +1,1 @@\n a\n--- comment\n b\n-c\n@@ -9 +9 @@\n d"_s,
        {u"file []"_s, u"f - - [--- comment]"_s, u"hunk 1,3 1,1 [@@ -1,3 +1,1 @@]"_s, u"h - - [@@ -1,3 +1,1 @@]"_s,
         u"c 1 1 [a]"_s, u"hunk 9,1 9,1 [@@ -9 +9 @@]"_s, u"h - - [@@ -9 +9 @@]"_s, u"c 9 9 [d]"_s});
    row("added line that looks like a file header ends the hunk and may name the file",
        u"@@ -1 +1,2 @@\n a\n+++ b/x\n+b"_s,
        {u"file [x]"_s, u"f - - [+++ b/x]"_s, u"hunk 1,1 1,2 [@@ -1 +1,2 @@]"_s, u"h - - [@@ -1 +1,2 @@]"_s,
         u"c 1 1 [a]"_s});
    row("three signs without a blank are body", u"@@ -1 +1 @@\n---\n+++\n--\n++x"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"r 1 - [--]"_s, u"a - 1 [++]"_s,
         u"r 2 - [-]"_s, u"a - 2 [+x]"_s});
    row("quoted path is not found",
        u"diff --git \"a/\\355.txt\" \"b/\\355.txt\"\n--- \"a/\\355.txt\"\n+++ \"b/\\355.txt\"\n"_s,
        {u"file []"_s, u"f - - [diff --git \"a/\\355.txt\" \"b/\\355.txt\"]"_s, u"f - - [--- \"a/\\355.txt\"]"_s,
         u"f - - [+++ \"b/\\355.txt\"]"_s});
    row("later line gives the path of a quoted one", u"diff --git \"a/x\" \"b/x\"\n+++ b/y"_s,
        {u"file [y]"_s, u"f - - [diff --git \"a/x\" \"b/x\"]"_s, u"f - - [+++ b/y]"_s});
    row("quoted path does not take that of the file before",
        u"diff --git a/x b/x\n--- a/x\n+++ b/x\n@@ -1 +1 @@\n-a\n+b\ndiff --git \"a/q\" \"b/q\"\n+++ \"b/q\""_s,
        {u"file [x]"_s, u"f - - [diff --git a/x b/x]"_s, u"f - - [--- a/x]"_s, u"f - - [+++ b/x]"_s,
         u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"r 1 - [a]"_s, u"a - 1 [b]"_s, u"file []"_s,
         u"f - - [diff --git \"a/q\" \"b/q\"]"_s, u"f - - [+++ \"b/q\"]"_s});
    row("quoted path does not take that of a file without hunks",
        u"diff --git a/x b/x\ndiff --git \"a/q\" \"b/q\"\n@@ -1 +1 @@\n a"_s,
        {u"file [x]"_s, u"f - - [diff --git a/x b/x]"_s, u"file []"_s, u"f - - [diff --git \"a/q\" \"b/q\"]"_s,
         u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"c 1 1 [a]"_s});
    row("first mark decides", u"diff --git a/x b/y b/x b/y\n+++ b/x b/y"_s,
        {u"file [y b/x b/y]"_s, u"f - - [diff --git a/x b/y b/x b/y]"_s, u"f - - [+++ b/x b/y]"_s});
    row("path with blanks", u"diff --git a/a b.txt b/a b.txt"_s,
        {u"file [a b.txt]"_s, u"f - - [diff --git a/a b.txt b/a b.txt]"_s});
    row("path with no prefix stays empty", u"diff --git x x\n+++ x"_s,
        {u"file []"_s, u"f - - [diff --git x x]"_s, u"f - - [+++ x]"_s});
    row("deleted file keeps its name",
        u"diff --git a/d b/d\ndeleted file mode 100644\n--- a/d\n+++ /dev/null\n@@ -1 +0,0 @@\n-x"_s,
        {u"file [d]"_s, u"f - - [diff --git a/d b/d]"_s, u"f - - [deleted file mode 100644]"_s, u"f - - [--- a/d]"_s,
         u"f - - [+++ /dev/null]"_s, u"hunk 1,1 0,0 [@@ -1 +0,0 @@]"_s, u"h - - [@@ -1 +0,0 @@]"_s, u"r 1 - [x]"_s});
    row("header of a commit is ignored",
        u"commit abc\nAuthor: A\n\n    message\n\ndiff --git a/x b/x\n@@ -1 +1 @@\n x"_s,
        {u"file [x]"_s, u"f - - [diff --git a/x b/x]"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s,
         u"c 1 1 [x]"_s});
    row("prose that looks like a header makes a file", u"index of things\nmore\ndiff --git a/x b/x"_s,
        {u"file []"_s, u"f - - [index of things]"_s, u"file [x]"_s, u"f - - [diff --git a/x b/x]"_s});
    row("prose that looks like a file line makes a file", u"--- rule\n"_s, {u"file []"_s, u"f - - [--- rule]"_s});
    row("header in a hunk closes it", u"@@ -1 +1 @@\n a\nindex 1..2\n b\n@@ -5 +5 @@\n c"_s,
        {u"file []"_s, u"f - - [index 1..2]"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s,
         u"c 1 1 [a]"_s, u"hunk 5,1 5,1 [@@ -5 +5 @@]"_s, u"h - - [@@ -5 +5 @@]"_s, u"c 5 5 [c]"_s});
    row("body that looks like a header behind its sign is body",
        u"@@ -1,9 +1,9 @@\n diff --git a/x b/x\n+index 1\n-@@ x\n @@ y\n+diff --git a/x b/x"_s,
        {u"file []"_s, u"hunk 1,9 1,9 [@@ -1,9 +1,9 @@]"_s, u"h - - [@@ -1,9 +1,9 @@]"_s,
         u"c 1 1 [diff --git a/x b/x]"_s, u"a - 2 [index 1]"_s, u"r 2 - [@@ x]"_s, u"c 3 3 [@@ y]"_s,
         u"a - 4 [diff --git a/x b/x]"_s});
    row("counts do not end a hunk", u"@@ -1 +1 @@\n a\n b\n c"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"c 1 1 [a]"_s, u"c 2 2 [b]"_s,
         u"c 3 3 [c]"_s});
    row("other lines are context as they stand", u"@@ -1 +1 @@\n\tx\n\r\n\nfoo\ndiff --cc x"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"c 1 1 [\tx]"_s, u"c 2 2 [\r]"_s,
         u"c 3 3 []"_s, u"c 4 4 [foo]"_s, u"c 5 5 [diff --cc x]"_s});
    row("carriage returns stay", u"@@ -1 +1 @@\r\n-a\r\n+b\r"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@\r]"_s, u"h - - [@@ -1 +1 @@\r]"_s, u"r 1 - [a\r]"_s,
         u"a - 1 [b\r]"_s});
    row("other line ends are text", u"@@ -1 +1 @@\n a\u2028b\u0085c\vd"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"c 1 1 [a\u2028b\u0085c\vd]"_s});
    row("sign with a combining mark is a sign", u"@@ -1 +1 @@\n+\u0301a"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"a - 1 [\u0301a]"_s});
    row("null is text", u"@@ -1 +1 @@\n"_s + QChar(0) + u"x"_s,
        {u"file []"_s, u"hunk 1,1 1,1 [@@ -1 +1 @@]"_s, u"h - - [@@ -1 +1 @@]"_s, u"c 1 1 ["_s + QChar(0) + u"x]"_s});
    row("merge diff", u"diff --cc f\nindex 1,2..3\n--- a/f\n+++ b/f\n@@@ -1,2 -1,2 +1,3 @@@ s\n  a\n+ b\n -c"_s,
        {u"file [f]"_s, u"f - - [index 1,2..3]"_s, u"f - - [--- a/f]"_s, u"f - - [+++ b/f]"_s,
         u"hunk 1,2 1,3 [@@@ -1,2 -1,2 +1,3 @@@ s]"_s, u"h - - [@@@ -1,2 -1,2 +1,3 @@@ s]"_s, u"c 1 1 [ a]"_s,
         u"a - 2 [ b]"_s, u"c 2 3 [-c]"_s});
}

void DiffParserTest::textBecomesFilesHunksAndLines()
{
    QFETCH(QString, text);
    QFETCH(QStringList, described);
    QCOMPARE(diff_parser_test::described(DiffParser::parse(text)), described);
}

void DiffParserTest::everyHeaderStartIsAHeader_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<bool>("isHeader");
    for (const char* start :
         {"index ", "new file mode", "deleted file mode", "similarity index", "rename from", "rename to", "copy from",
          "copy to", "old mode", "new mode", "Binary files", "--- ", "+++ "}) {
        QTest::newRow(start) << QString::fromLatin1(start) << true;
    }
    for (const char* start : {"index", " index ", "Index ", "dissimilarity index", "rename ", "copy ", "binary files",
                              "GIT binary patch", "diff --git", "diff --cc ", "mode change"}) {
        QTest::newRow(start) << QString::fromLatin1(start) << false;
    }
}

void DiffParserTest::everyHeaderStartIsAHeader()
{
    QFETCH(QString, start);
    QFETCH(bool, isHeader);
    for (const QString& line : {start, start + u"x"_s}) {
        const auto files = DiffParser::parse(line);
        QCOMPARE(files.size(), isHeader ? 1 : 0);
        if (isHeader) {
            QCOMPARE(files[0].preamble.size(), 1);
            QCOMPARE(files[0].preamble[0], (DiffLine{DiffLineKind::fileHeader, line, {}, {}}));
        }
    }
}

void DiffParserTest::hunkHeaderGivesFourNumbers_data()
{
    QTest::addColumn<QString>("header");
    QTest::addColumn<QList<qint64>>("numbers");
    const auto row = [](const char* name, const QString& header, const QList<qint64>& numbers) {
        QTest::newRow(name) << header << numbers;
    };
    row("full", u"@@ -12,3 +45,6 @@"_s, {12, 3, 45, 6});
    row("counts left out", u"@@ -12 +45 @@"_s, {12, 1, 45, 1});
    row("with section", u"@@ -5 +7,2 @@ func x()"_s, {5, 1, 7, 2});
    row("section with numbers", u"@@ -5 +7,2 @@ -9,9 +9,9 @@"_s, {5, 1, 7, 2});
    row("zero", u"@@ -0,0 +1,3 @@"_s, {0, 0, 1, 3});
    row("no closing mark", u"@@ -1,2 +3,4"_s, {0, 0, 0, 0});
    row("marks alone", u"@@"_s, {0, 0, 0, 0});
    row("three signs", u"@@@"_s, {0, 0, 0, 0});
    row("nothing between", u"@@@@"_s, {0, 1, 0, 1});
    row("no blanks", u"@@-1,2@@"_s, {1, 2, 0, 1});
    row("tabs and blanks around", u"@@ \t -1,2 +3,4\t @@"_s, {1, 2, 3, 4});
    row("tab inside does not separate", u"@@ -1,2\t+3,4 @@"_s, {1, 1, 0, 1});
    row("more blanks", u"@@   -1,2    +3,4   @@"_s, {1, 2, 3, 4});
    row("other order", u"@@ +3,4 -1,2 @@"_s, {1, 2, 3, 4});
    row("later piece overrides", u"@@ -1,2 -5,6 +3,4 @@"_s, {5, 6, 3, 4});
    row("later piece overrides a count", u"@@ -1,2 -5 @@"_s, {5, 1, 0, 1});
    row("other pieces are skipped", u"@@ x -1,2 y +3,4 z @@"_s, {1, 2, 3, 4});
    row("old only", u"@@ -1,2 @@"_s, {1, 2, 0, 1});
    row("no number", u"@@ -a,b +c,d @@"_s, {0, 1, 0, 1});
    row("no start", u"@@ - + @@"_s, {0, 1, 0, 1});
    row("comma first", u"@@ -,5 +,,6,,7 @@"_s, {5, 1, 6, 7});
    row("further pieces are ignored", u"@@ -1,2,3 +4,5,6 @@"_s, {1, 2, 4, 5});
    row("signs in numbers", u"@@ --1,-2 ++3,+4 @@"_s, {-1, -2, 3, 4});
    row("too large", u"@@ -9223372036854775808,1 +9223372036854775807,1 @@"_s, {0, 1, 9223372036854775807, 1});
    row("digits of another script", u"@@ -١,٢ +1,2 @@"_s, {0, 1, 1, 2});
}

void DiffParserTest::hunkHeaderGivesFourNumbers()
{
    QFETCH(QString, header);
    QFETCH(QList<qint64>, numbers);
    const auto files = DiffParser::parse(header);
    QCOMPARE(files.size(), 1);
    QCOMPARE(files[0].hunks.size(), 1);
    const DiffHunk& hunk = files[0].hunks[0];
    QCOMPARE(hunk.header, header);
    QCOMPARE((QList<qint64>{hunk.oldStart, hunk.oldCount, hunk.newStart, hunk.newCount}), numbers);
}

void DiffParserTest::identitiesAreFreshAndContentIsEqual()
{
    const QString text = u"diff --git a/x b/x\n@@ -1 +1 @@\n a\n@@ -5 +5 @@\n b\ndiff --git a/y b/y\n@@ -1 +1 @@\n c"_s;
    const auto first = DiffParser::parse(text);
    const auto second = DiffParser::parse(text);
    QCOMPARE(described(first), described(second));
    QSet<QUuid> ids;
    for (const auto& files : {first, second}) {
        for (const DiffFile& file : files) {
            ids.insert(file.id);
            for (const DiffHunk& hunk : file.hunks) {
                ids.insert(hunk.id);
            }
        }
    }
    QCOMPARE(ids.size(), 10);
    QVERIFY(!ids.contains(QUuid()));
    QVERIFY(first != second);
}

void DiffParserTest::lineNumbersStayAtTheLargest()
{
    const auto files = DiffParser::parse(u"@@ -9223372036854775807 +9223372036854775807 @@\n a\n b"_s);
    QCOMPARE(files[0].hunks[0].lines[2].oldLineNumber, std::optional<qint64>(9223372036854775807));
    // The lowest of all stands for no number.
    const auto low = DiffParser::parse(u"@@ --9223372036854775808 +1 @@\n a\n-b"_s);
    const DiffHunk& hunk = low[0].hunks[0];
    QCOMPARE(hunk.oldStart, std::numeric_limits<qint64>::min());
    QCOMPARE(hunk.lines[1].oldLineNumber, std::optional<qint64>(DiffLineNumber::lowest));
    QCOMPARE(hunk.lines[2].oldLineNumber, std::optional<qint64>(DiffLineNumber::lowest + 1));
}

void DiffParserTest::aLongInputIsOnePass()
{
    QString text = u"diff --git a/x b/x\n@@ -1,300000 +1,300000 @@\n"_s;
    for (int index = 0; index < 300000; ++index) {
        text += u"+line\n-line\n"_s;
    }
    for (int index = 0; index < 20000; ++index) {
        text += u"@@ -1 +1 @@\n a\ndiff --git a/x b/x\n"_s;
    }
    const auto files = DiffParser::parse(text);
    QCOMPARE(files.size(), 20001);
    QCOMPARE(files[0].hunks[0].lines.size(), 600001);
    // A line of many units, too.
    QCOMPARE(DiffParser::parse(u"@@ -1 +1 @@\n+"_s + QString(5000000, u'x'))[0].hunks[0].lines[1].text.size(), 5000000);
}

const kelm::test::Registered<DiffParserTest> registered;

} // namespace diff_parser_test

#include "diff_parser_test.moc"
