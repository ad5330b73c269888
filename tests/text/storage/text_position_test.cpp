#include "support/test_program.h"
#include "text/storage/text_position.h"

#include <QtTest>

#include <limits>

namespace text_position_test {

using namespace kelm;

class TextPositionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesCountLineFeedsAlone_data();
    void linesCountLineFeedsAlone();
    void placesGiveTheNearestOffset_data();
    void placesGiveTheNearestOffset();
    void eachOffsetComesBackFromItsPlace();
};

void TextPositionTest::linesCountLineFeedsAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("offset");
    QTest::addColumn<qsizetype>("line");
    QTest::addColumn<qsizetype>("column");
    const auto row = [](const char* name, const QString& text, int offset, qsizetype line, qsizetype column) {
        QTest::newRow(name) << text << offset << line << column;
    };
    row("empty", {}, 0, 1, 1);
    row("first line", QStringLiteral("abc"), 2, 1, 3);
    row("behind a line feed", QStringLiteral("a\nbc"), 2, 2, 1);
    row("third line, fifth column", QStringLiteral("a\n\nabcdef"), 7, 3, 5);
    row("between CR and LF", QStringLiteral("a\r\nb"), 2, 1, 3);
    row("behind CR LF", QStringLiteral("a\r\nb"), 3, 2, 1);
    row("a lone CR is a column", QStringLiteral("a\rb\nc"), 3, 1, 4);
    row("behind lone CR and LF", QStringLiteral("a\rb\nc"), 5, 2, 2);
    row("U+2028 is a column", QStringLiteral("a\u2028b"), 3, 1, 4);
    row("an emoji is two", QStringLiteral("😀b"), 2, 1, 3);
    row("past the end", QStringLiteral("a\n"), 99, 2, 1);
}

void TextPositionTest::linesCountLineFeedsAlone()
{
    QFETCH(QString, text);
    QFETCH(int, offset);
    const LineAndColumn position = lineAndColumnAt(TextTree(text), offset);
    QTEST(position.line, "line");
    QTEST(position.column, "column");
}

void TextPositionTest::placesGiveTheNearestOffset_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("line");
    QTest::addColumn<qsizetype>("column");
    QTest::addColumn<qsizetype>("offset");
    const auto row = [](const char* name, const QString& text, qsizetype line, qsizetype column, qsizetype offset) {
        QTest::newRow(name) << text << line << column << offset;
    };
    row("empty", {}, 7, 7, 0);
    row("a line's start", QStringLiteral("a\nbc"), 2, 1, 2);
    row("within a line", QStringLiteral("a\nbc"), 2, 2, 3);
    row("behind a line's end", QStringLiteral("a\nbc\nd"), 2, 99, 4);
    row("behind the end of one with CR LF", QStringLiteral("ab\r\nc"), 1, 99, 2);
    row("an empty line with CR LF", QStringLiteral("a\r\n\r\nb"), 2, 5, 3);
    row("a lone CR is a column", QStringLiteral("a\rb"), 1, 3, 2);
    row("behind the last line", QStringLiteral("a\nbc"), 99, 1, 2);
    row("behind the last line, which is empty", QStringLiteral("a\n"), 99, 5, 2);
    row("before the first", QStringLiteral("a\nbc"), 0, -3, 0);
    row("within a character", QStringLiteral("x😀y"), 1, 3, 1);
    row("behind a character", QStringLiteral("x😀y"), 1, 4, 3);
    row("largest numbers", QStringLiteral("a\nbc"), std::numeric_limits<int>::max(), std::numeric_limits<int>::max(),
        4);
}

void TextPositionTest::placesGiveTheNearestOffset()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, line);
    QFETCH(qsizetype, column);
    QTEST(offsetAt(TextTree(text), {line, column}), "offset");
}

void TextPositionTest::eachOffsetComesBackFromItsPlace()
{
    const QString text = QStringLiteral("one\n\ntwo\u2028three\n한글\rx\n");
    const TextTree tree(text);
    for (qsizetype offset = 0; offset <= text.size(); ++offset) {
        QCOMPARE(offsetAt(tree, lineAndColumnAt(tree, offset)), offset);
    }
}

const kelm::test::Registered<TextPositionTest> registered;

} // namespace text_position_test

#include "text_position_test.moc"
