#include "git/diff/diff.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

#include <functional>

namespace diff_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using LineChange = std::function<void(DiffLine&)>;
using HunkChange = std::function<void(DiffHunk&)>;
using FileChange = std::function<void(DiffFile&)>;

} // namespace

/// The records of a diff as values.
class DiffTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreComparedFieldByField_data();
    void linesAreComparedFieldByField();
    void hunksAreComparedFieldByField_data();
    void hunksAreComparedFieldByField();
    void filesAreComparedFieldByField_data();
    void filesAreComparedFieldByField();
    void whereTheyComeFromMakesNoDifference();
    void onlyThePieceBehindTheTextIsNoLine();
};

void DiffTest::linesAreComparedFieldByField_data()
{
    QTest::addColumn<LineChange>("change");
    QTest::newRow("kind") << LineChange([](DiffLine& line) { line.kind = DiffLineKind::removed; });
    QTest::newRow("text") << LineChange([](DiffLine& line) { line.text = u"b"; });
    QTest::newRow("old number") << LineChange([](DiffLine& line) { line.oldLineNumber = 8; });
    QTest::newRow("no old number") << LineChange([](DiffLine& line) { line.oldLineNumber = std::nullopt; });
    QTest::newRow("new number") << LineChange([](DiffLine& line) { line.newLineNumber = 7; });
}

void DiffTest::linesAreComparedFieldByField()
{
    QFETCH(LineChange, change);
    const DiffLine line{DiffLineKind::context, u"a", 7, 8};
    DiffLine other = line;
    QVERIFY(other == line);
    change(other);
    QVERIFY(other != line);
}

void DiffTest::hunksAreComparedFieldByField_data()
{
    QTest::addColumn<HunkChange>("change");
    QTest::newRow("identity") << HunkChange([](DiffHunk& hunk) { hunk.id = QUuid::createUuid(); });
    QTest::newRow("header") << HunkChange([](DiffHunk& hunk) { hunk.header += u'x'; });
    QTest::newRow("old start") << HunkChange([](DiffHunk& hunk) { ++hunk.oldStart; });
    QTest::newRow("old count") << HunkChange([](DiffHunk& hunk) { ++hunk.oldCount; });
    QTest::newRow("new start") << HunkChange([](DiffHunk& hunk) { ++hunk.newStart; });
    QTest::newRow("new count") << HunkChange([](DiffHunk& hunk) { ++hunk.newCount; });
    QTest::newRow("a line") << HunkChange([](DiffHunk& hunk) { hunk.lines[1].kind = DiffLineKind::context; });
    QTest::newRow("fewer lines") << HunkChange([](DiffHunk& hunk) { hunk.lines.removeLast(); });
}

void DiffTest::hunksAreComparedFieldByField()
{
    QFETCH(HunkChange, change);
    const DiffHunk hunk = hunkOf({u"-a"_s, u"+b"_s});
    DiffHunk other = hunk;
    QVERIFY(other == hunk);
    change(other);
    QVERIFY(other != hunk);
}

void DiffTest::filesAreComparedFieldByField_data()
{
    QTest::addColumn<FileChange>("change");
    QTest::newRow("identity") << FileChange([](DiffFile& file) { file.id = QUuid::createUuid(); });
    QTest::newRow("path") << FileChange([](DiffFile& file) { file.path += u'x'; });
    QTest::newRow("preamble") << FileChange([](DiffFile& file) { file.preamble.removeLast(); });
    QTest::newRow("a hunk") << FileChange([](DiffFile& file) { ++file.hunks[0].oldStart; });
    QTest::newRow("fewer hunks") << FileChange([](DiffFile& file) { file.hunks.removeLast(); });
}

void DiffTest::filesAreComparedFieldByField()
{
    QFETCH(FileChange, change);
    const DiffFile file = DiffParser::parse(diffOf(u"a"_s, {{u"-a"_s}, {u"+b"_s}}))[0];
    DiffFile other = file;
    QVERIFY(other == file);
    change(other);
    QVERIFY(other != file);
}

void DiffTest::whereTheyComeFromMakesNoDifference()
{
    const DiffFile file = DiffParser::parse(diffOf(u"a"_s, {{u"-a"_s, u"+b"_s}}) + u"diff --git a/b b/b\n"_s)[0];
    DiffFile other =
        DiffParser::parse(u"head\n"_s + diffOf(u"a"_s, {{u"-a"_s, u"+b"_s}}) + u"diff --git a/c b/c\n"_s)[0];
    QVERIFY(other != file);
    other.id = file.id;
    other.hunks[0].id = file.hunks[0].id;
    QVERIFY(other.hunks[0].source != file.hunks[0].source);
    QVERIFY(other.hunks[0] == file.hunks[0]);
    QVERIFY(other == file);
}

void DiffTest::onlyThePieceBehindTheTextIsNoLine()
{
    const auto behind = [](const QStringList& lines) {
        const DiffHunk hunk = hunkOf(lines);
        QList<bool> found;
        for (const DiffLine& line : hunk.lines) {
            found.append(isBehindTheText(hunk, line));
        }
        return found;
    };
    QCOMPARE(behind({u" a"_s, QString()}), (QList<bool>{false, false, true}));
    QCOMPARE(behind({u" a"_s}), (QList<bool>{false, false}));
    // These end where the text does, and are lines.
    QCOMPARE(behind({u" a"_s, u" "_s}), (QList<bool>{false, false, false}));
    QCOMPARE(behind({u" a"_s, u"+"_s}), (QList<bool>{false, false, false}));
    // Within the text an empty line is one of context.
    QCOMPARE(behind({QString(), u" a"_s, QString()}), (QList<bool>{false, false, false, true}));
    QCOMPARE(behind({QString(), QString()}), (QList<bool>{false, false, true}));
    QVERIFY(!isBehindTheText({}, {}));
}

const kelm::test::Registered<DiffTest> registered;

} // namespace diff_test

#include "diff_test.moc"
