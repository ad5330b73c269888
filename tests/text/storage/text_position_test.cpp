#include "support/test_program.h"
#include "text/storage/text_position.h"

#include <QtTest>

namespace text_position_test {

using namespace kelm;

class TextPositionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesCountLineFeedsAlone_data();
    void linesCountLineFeedsAlone();
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

const kelm::test::Registered<TextPositionTest> registered;

} // namespace text_position_test

#include "text_position_test.moc"
