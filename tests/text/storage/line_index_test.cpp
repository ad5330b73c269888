#include "support/naive_lines.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/line_index.h"

#include <QtTest>

namespace line_index_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

QList<qsizetype> startsOf(const LineIndex& index)
{
    QList<qsizetype> starts;
    for (qsizetype line = 0; line < index.lineCount(); ++line) {
        starts.append(index.start(line));
    }
    return starts;
}

/// A tree with its index, edited as a storage edits its own.
struct Indexed
{
    explicit Indexed(const QString& text) : tree(text) {}

    TextEdit edit(TextRange range, const QString& replacement)
    {
        const TextTree before = tree;
        tree.replace(range, replacement);
        index.forget();
        return editBetween(before, tree, range);
    }

    TextTree tree;
    LineIndex index{tree};
};

} // namespace

class LineIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesBeginBehindEachTerminator_data();
    void linesBeginBehindEachTerminator();
    void anOffsetBelongsToTheLineThatHoldsIt();
    void terminatorsAreMeasured();
    void editsTellWhichLinesChanged_data();
    void editsTellWhichLinesChanged();
    void randomEditsAgreeWithAWalkOverTheText();
    void aWalkOverLinesMayBeginAndEndAnywhere();
};

void LineIndexTest::linesBeginBehindEachTerminator_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<qsizetype>>("starts");
    using Starts = QList<qsizetype>;
    QTest::newRow("empty") << QString() << Starts{0};
    QTest::newRow("one line without an end") << QStringLiteral("ab") << Starts{0};
    QTest::newRow("line feed at the end") << QStringLiteral("ab\n") << Starts{0, 3};
    QTest::newRow("pair") << QStringLiteral("a\r\nb") << Starts{0, 3};
    QTest::newRow("lone carriage return") << QStringLiteral("a\rb") << Starts{0, 2};
    QTest::newRow("carriage return last") << QStringLiteral("a\r") << Starts{0, 2};
    QTest::newRow("two carriage returns and a line feed") << QStringLiteral("\r\r\n") << Starts{0, 1, 3};
    QTest::newRow("next line") << QStringLiteral("a\u0085b") << Starts{0, 2};
    QTest::newRow("separators") << QStringLiteral("a\u2028b\u2029") << Starts{0, 2, 4};
    QTest::newRow("no terminators: form feed, NUL") << QStringLiteral("a\fb\v") + QChar(0) << Starts{0};
}

void LineIndexTest::linesBeginBehindEachTerminator()
{
    QFETCH(QString, text);
    const Indexed indexed(text);
    QTEST(startsOf(indexed.index), "starts");
    QCOMPARE(indexed.index.end(indexed.index.lineCount() - 1), text.size());
    QList<qsizetype> walked;
    forEachLine(indexed.tree, 0, indexed.index.lineCount(), [&](TextRange line) { walked.append(line.location); });
    QTEST(walked, "starts");
}

void LineIndexTest::anOffsetBelongsToTheLineThatHoldsIt()
{
    const Indexed indexed(u"ab\r\nc\n"_s);
    const LineIndex& index = indexed.index;
    QCOMPARE(index.lineAt(-1), 0);
    QCOMPARE(index.lineAt(3), 0);
    QCOMPARE(index.lineAt(4), 1);
    QCOMPARE(index.lineAt(6), 2);
    QCOMPARE(index.lineAt(100), 2);
}

void LineIndexTest::terminatorsAreMeasured()
{
    const QString text = QStringLiteral("a\r\n\r\u2028");
    QCOMPARE(lineTerminatorLength(text, 0), 0);
    QCOMPARE(lineTerminatorLength(text, 1), 2);
    QCOMPARE(lineTerminatorLength(text, 2), 1);
    QCOMPARE(lineTerminatorLength(text, 3), 1);
    QCOMPARE(lineTerminatorLength(text, 4), 1);
    QCOMPARE(lineTerminatorLength(text, 5), 0);
}

void LineIndexTest::editsTellWhichLinesChanged_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("location");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<qsizetype>("firstLine");
    QTest::addColumn<qsizetype>("removed");
    QTest::addColumn<qsizetype>("added");
    const QString three = QStringLiteral("one\ntwo\nthree");
    QTest::newRow("a letter") << three << 5 << 0 << QStringLiteral("x") << qsizetype(1) << qsizetype(1) << qsizetype(1);
    QTest::newRow("a line break") << three << 5 << 0 << QStringLiteral("\n") << qsizetype(1) << qsizetype(1)
                                  << qsizetype(2);
    QTest::newRow("two lines joined") << three << 7 << 1 << QString() << qsizetype(1) << qsizetype(2) << qsizetype(1);
    QTest::newRow("a pair completed") << QStringLiteral("a\rb") << 2 << 0 << QStringLiteral("\n") << qsizetype(0)
                                      << qsizetype(2) << qsizetype(2);
}

void LineIndexTest::editsTellWhichLinesChanged()
{
    QFETCH(QString, text);
    QFETCH(int, location);
    QFETCH(int, length);
    QFETCH(QString, replacement);
    Indexed indexed(text);
    const TextEdit done = indexed.edit({location, length}, replacement);
    QTEST(done.firstLine, "firstLine");
    QTEST(done.linesRemoved, "removed");
    QTEST(done.linesAdded, "added");
}

void LineIndexTest::randomEditsAgreeWithAWalkOverTheText()
{
    test::RandomText random;
    QString text = random.text(40);
    Indexed indexed(text);
    const LineIndex& index = indexed.index;
    for (int round = 0; round < 4000; ++round) {
        const test::NaiveLines before(text);
        const TextRange range = random.range(text.size());
        const QString replacement = random.text(text.size() > 200 ? 2 : 8);
        const TextEdit done = indexed.edit(range, replacement);
        text.replace(range.location, range.length, replacement);
        const test::NaiveLines walked(text);
        QCOMPARE(startsOf(index), walked.starts());
        for (qsizetype line = 0; line < walked.lineCount(); ++line) {
            const bool isLast = line + 1 == walked.lineCount();
            const TextRange content = index.content(line);
            QCOMPARE(content.location, walked.start(line));
            QCOMPARE(content.end() + (isLast ? 0 : lineTerminatorLength(text, content.end())), walked.end(line));
        }
        const qsizetype offset = random.below(text.size() + 1);
        QCOMPARE(index.lineAt(offset), walked.lineAt(offset));
        QCOMPARE(walked.lineCount() - before.lineCount(), done.linesAdded - done.linesRemoved);
        // The lines before and behind the changed ones are those of the old text.
        for (qsizetype line = 0; line < done.firstLine; ++line) {
            QCOMPARE(walked.end(line), before.end(line));
        }
        for (qsizetype line = done.firstLine + done.linesAdded; line < walked.lineCount(); ++line) {
            QCOMPARE(walked.start(line),
                     before.start(line - done.linesAdded + done.linesRemoved) + done.changeInLength());
        }
    }
}

void LineIndexTest::aWalkOverLinesMayBeginAndEndAnywhere()
{
    test::RandomText random;
    // Longer than a piece of the tree, and cut in two everywhere.
    QString text;
    TextTree tree;
    for (int i = 0; i < 300; ++i) {
        // Some lines are longer than several pieces.
        const QString more = i % 100 == 99 ? QString(30000, u'x') : random.text(40) + QStringLiteral("\r\n\r");
        const qsizetype at = random.below(text.size() + 1);
        text.insert(at, more);
        tree.replace({at, 0}, more);
    }
    const test::NaiveLines walked(text);
    for (int round = 0; round < 200; ++round) {
        const qsizetype first = random.below(walked.lineCount());
        const qsizetype count = random.below(walked.lineCount() - first + 1);
        qsizetype line = first;
        forEachLine(tree, first, count, [&](TextRange extent) {
            QCOMPARE(extent, TextRange::between(walked.start(line), walked.end(line)));
            ++line;
        });
        QCOMPARE(line, first + count);
    }
}

const kelm::test::Registered<LineIndexTest> registered;

} // namespace line_index_test

#include "line_index_test.moc"
