#include "editor/minimap/minimap_bars.h"
#include "support/test_program.h"

#include <QtTest>

namespace minimap_bars_test {

using namespace kelm;

class MinimapBarsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLineIsTintedByAGlance_data();
    void aLineIsTintedByAGlance();
    void aLongLineIsTintedLikeAShortOne();
    void theMapIsSqueezedIntoItsHeight_data();
    void theMapIsSqueezedIntoItsHeight();
    void aClickMeansTheLineUnderIt_data();
    void aClickMeansTheLineUnderIt();
    void theBoxLiesOverWhatIsOnScreen();
    void barsAreAsLongAsTheirLines();
    void barsCountCharacters_data();
    void barsCountCharacters();
    void linesEndAtLineFeedsAlone();
    void aMapWithoutRoomHasNoBars();
    void ofManyLinesInOnePixelTheLastAreGiven();
    void aLineIsLeftOutOnlyUnderLongerOnes_data();
    void aLineIsLeftOutOnlyUnderLongerOnes();
};

void MinimapBarsTest::aLineIsTintedByAGlance_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QColor>("color");
    const EditorTheme& theme = EditorTheme::monokai();
    const auto tint = [](const CodableColor& color, float alpha) {
        QColor result = color.toColor();
        result.setAlphaF(alpha);
        return result;
    };
    const QColor comment = tint(theme.commentColor, 0.7F);
    const QColor string = tint(theme.stringColor, 0.7F);
    const QColor keyword = tint(theme.keywordColor, 0.8F);
    const QColor plain = QColor::fromRgbF(1, 1, 1, 0.5F);
    const QColor clear(Qt::transparent);
    const auto row = [](const char* name, const char* line, const QColor& color) {
        QTest::newRow(name) << QString::fromUtf8(line) << color;
    };
    row("empty", "", clear);
    row("blank", " \t ", clear);
    row("comment", "  // let x", comment);
    row("hash", "\t#include \"a\"", comment);
    row("a let with a quote is a string", "let a = \"b\"", string);
    row("single quote", "don't", string);
    row("a let without a quote is a keyword", "let a = b", keyword);
    row("keyword before a bracket", "if(a)", keyword);
    row("a line that begins with the word letter is plain", "letter", plain);
    row("keyword alone is plain", "else", plain);
    row("keyword and blanks behind it", "else \t", plain);
    row("a letter and a blank", "x ", plain);
    row("a letter between blanks", " \tx\t ", plain);
    row("a quote and a blank", "' ", string);
    row("keyword before a tab is plain", "var\tx", plain);
    for (const char* prefix :
         {"func", "def", "class", "struct", "enum", "if", "else", "for", "while", "import", "return", "let", "var"}) {
        QTest::addRow("%s before a blank", prefix) << QString::fromLatin1(prefix) + QStringLiteral(" x") << keyword;
        QTest::addRow("%s before a bracket", prefix) << QString::fromLatin1(prefix) + u'(' << keyword;
        QTest::addRow("%s before a letter", prefix) << QString::fromLatin1(prefix) + QStringLiteral("x") << plain;
    }
    row("no other keyword", "switch x", plain);
    row("a slash alone", "/ x", plain);
    row("a comment further on", "x // y", plain);
    row("a quote in a comment", "// \"x\"", comment);
    row("plain", "a + b", plain);
    row("a carriage return is no blank", "\r", plain);
}

void MinimapBarsTest::aLineIsTintedByAGlance()
{
    QFETCH(QString, line);
    QTEST(minimapLineColor(line, EditorTheme::monokai()), "color");
}

void MinimapBarsTest::aLongLineIsTintedLikeAShortOne()
{
    const EditorTheme& theme = EditorTheme::monokai();
    const QString blanks(5000, u' ');
    const QString letters(5000, u'x');
    for (const QString& line : QStringList{
             blanks, letters, blanks + QStringLiteral("if (a)") + letters, blanks + QStringLiteral("if ") + blanks,
             QStringLiteral("if ") + blanks, QStringLiteral("if ") + blanks + u'a', letters + u'"',
             blanks + letters + u'\'', QStringLiteral("# ") + letters + u'"', QStringLiteral("letter") + letters,
             blanks + QStringLiteral("else"), blanks + QStringLiteral("if "), blanks + QStringLiteral("if x"),
             QStringLiteral("if ") + blanks.left(1500) + u'a'}) {
        const TextTree text(QStringLiteral("before\n") + line + u'\n' + letters);
        QCOMPARE(minimapLineColor(text, {7, line.size()}, theme), minimapLineColor(line, theme));
    }
}

void MinimapBarsTest::theMapIsSqueezedIntoItsHeight_data()
{
    QTest::addColumn<qsizetype>("lines");
    QTest::addColumn<qreal>("scale");
    QTest::addColumn<qreal>("barHeight");
    QTest::addColumn<qreal>("lastY");
    QTest::newRow("100 lines in 400 points") << qsizetype(100) << 1.0 << 2.4 << 302.0;
    QTest::newRow("1000 lines in 400 points") << qsizetype(1000) << 0.13 << 1.0 << 0.13 * 999 * 3 + 5;
    QTest::newRow("one line") << qsizetype(1) << 1.0 << 2.4 << 5.0;
}

void MinimapBarsTest::theMapIsSqueezedIntoItsHeight()
{
    QFETCH(qsizetype, lines);
    const MinimapGeometry geometry{80, 400, lines};
    QTEST(geometry.scale(), "scale");
    QTEST(geometry.barHeight(), "barHeight");
    QTEST(geometry.barY(lines - 1), "lastY");
}

void MinimapBarsTest::aClickMeansTheLineUnderIt_data()
{
    QTest::addColumn<qsizetype>("lines");
    QTest::addColumn<qreal>("y");
    QTest::addColumn<qsizetype>("line");
    const auto row = [](const char* name, qsizetype lines, qreal y, qsizetype line) {
        QTest::newRow(name) << lines << y << line;
    };
    row("above the first bar", 100, 0, 1);
    row("just above", 100, 4.9, 1);
    row("on the first", 100, 5, 1);
    row("on the second", 100, 8, 2);
    row("between", 100, 10.9, 2);
    row("below the last", 100, 399, 100);
    // 0.13 of 3 points each.
    row("squeezed, above the first bar", 1000, 0, 1);
    row("squeezed, on the first", 1000, 5.38, 1);
    row("squeezed, on the second", 1000, 5.4, 2);
    row("squeezed, in the middle", 1000, 200.1, 501);
    row("squeezed, on the last", 1000, 394.9, 1000);
    row("squeezed, below the last", 1000, 400, 1000);
}

void MinimapBarsTest::aClickMeansTheLineUnderIt()
{
    QFETCH(qsizetype, lines);
    QFETCH(qreal, y);
    QTEST((MinimapGeometry{80, 400, lines}.lineAt(y)), "line");
}

void MinimapBarsTest::theBoxLiesOverWhatIsOnScreen()
{
    const MinimapGeometry geometry{80, 400, 100};
    QCOMPARE(geometry.viewportBox({0, 170, 500, 340}), QRectF(0, 10 * 3 + 5, 80, 60));
    QCOMPARE(geometry.viewportBox({0, 0, 500, 50}), QRectF(0, 5, 80, 20));
    QCOMPARE(geometry.viewportBox({0, 33, 500, 340}).y(), 8.0);
    // Of a squeezed text it is squeezed as well, down to its least height.
    const MinimapGeometry squeezed{80, 400, 1000};
    const QRectF box = squeezed.viewportBox({0, 1700, 500, 3400});
    QCOMPARE(box.y(), 0.13 * 100 * 3 + 5);
    QCOMPARE(box.height(), 0.13 * 200 * 3);
    QCOMPARE(squeezed.viewportBox({0, 1700, 500, 340}).height(), 20.0);
}

void MinimapBarsTest::barsAreAsLongAsTheirLines()
{
    TextStorage storage;
    storage.setText(QStringLiteral("    ab\n\ne\u0301👩‍👩‍👧\n") + QString(200, u'x'));
    const MinimapGeometry geometry{80, 400, minimapLineCount(storage)};
    QCOMPARE(geometry.lineCount, 4);
    const std::vector<MinimapBar> bars = minimapBars(storage, geometry, EditorTheme::monokai(), 1);
    QCOMPARE(bars.size(), std::size_t(3));
    QCOMPARE(bars[0].width, 6 * 1.2);
    QCOMPARE(bars[1].width, 2 * 1.2);
    QCOMPARE(bars[1].y, 11.0);
    QCOMPARE(bars[2].width, 76.0);
}

void MinimapBarsTest::barsCountCharacters_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("characters");
    QTest::newRow("Hindi") << QStringLiteral("क्षत्रिय") << 3;
    QTest::newRow("Thai") << QStringLiteral("กำลัง x") << 5;
    QTest::newRow("flags behind a pictograph") << QStringLiteral("😀") + QStringLiteral("🇰🇷").repeated(40) << 41;
    QTest::newRow("syllables of letters") << QStringLiteral("\u1112\u1161\u11ab").repeated(20) << 20;
    QTest::newRow("a mark behind letters") << QStringLiteral("abe\u0301") << 3;
}

void MinimapBarsTest::barsCountCharacters()
{
    QFETCH(QString, line);
    QFETCH(int, characters);
    TextStorage storage;
    storage.setText(line + u'\n');
    const MinimapGeometry geometry{80, 400, minimapLineCount(storage)};
    const std::vector<MinimapBar> bars = minimapBars(storage, geometry, EditorTheme::monokai(), 1);
    QCOMPARE(bars.size(), std::size_t(1));
    QCOMPARE(bars[0].width, std::min(76.0, characters * 1.2));
}

void MinimapBarsTest::linesEndAtLineFeedsAlone()
{
    TextStorage storage;
    storage.setText(QStringLiteral("a\rb\u2028c\r\nd\n"));
    const MinimapGeometry geometry{80, 400, minimapLineCount(storage)};
    QCOMPARE(geometry.lineCount, 3);
    const std::vector<MinimapBar> bars = minimapBars(storage, geometry, EditorTheme::monokai(), 1);
    QCOMPARE(bars.size(), std::size_t(2));
    QCOMPARE(bars[0].width, 6 * 1.2);
    QCOMPARE(bars[1].width, 1.2);
}

void MinimapBarsTest::aMapWithoutRoomHasNoBars()
{
    TextStorage storage;
    storage.setText(QStringLiteral("a\nb"));
    QVERIFY(minimapBars(storage, {80, 10, 2}, EditorTheme::monokai(), 1).empty());
    QVERIFY(!minimapBars(storage, {80, 11, 2}, EditorTheme::monokai(), 1).empty());
}

void MinimapBarsTest::ofManyLinesInOnePixelTheLastAreGiven()
{
    TextStorage storage;
    storage.setText(QString(QStringLiteral("x\n")).repeated(200000));
    const MinimapGeometry geometry{80, 400, minimapLineCount(storage)};
    const std::vector<MinimapBar> bars = minimapBars(storage, geometry, EditorTheme::monokai(), 1);
    QVERIFY(bars.size() < 400 * 20);
    // Every pixel between the ends has bars, and none of them is out of order.
    for (std::size_t i = 1; i < bars.size(); ++i) {
        QVERIFY(bars[i].y > bars[i - 1].y);
        QVERIFY(bars[i].y - bars[i - 1].y < 1.01);
    }
}

void MinimapBarsTest::aLineIsLeftOutOnlyUnderLongerOnes_data()
{
    QTest::addColumn<QStringList>("block");
    QTest::addColumn<qreal>("longest");
    const QString full(60, u'x');
    QTest::newRow("blank lines behind") << QStringList(13, full) + QStringList(13, QString()) << 60 * 1.2;
    QTest::newRow("spaces behind") << QStringList(13, full) + QStringList(13, QString(90, u' ')) << 60 * 1.2;
    QTest::newRow("short lines behind") << QStringList(13, full) + QStringList(13, QStringLiteral("}")) << 60 * 1.2;
    QTest::newRow("longer than the map") << QStringList(13, full + full) + QStringList(200, full) << 76.0;
}

void MinimapBarsTest::aLineIsLeftOutOnlyUnderLongerOnes()
{
    QFETCH(QStringList, block);
    QFETCH(qreal, longest);
    TextStorage storage;
    storage.setText((block.join(u'\n') + u'\n').repeated(400));
    const MinimapGeometry geometry{80, 400, minimapLineCount(storage)};
    // What a map shows at each pixel is the longest of its bars.
    std::vector<qreal> shown(400, 0);
    for (const MinimapBar& bar : minimapBars(storage, geometry, EditorTheme::monokai(), 1)) {
        shown.at(static_cast<std::size_t>(bar.y)) = std::max(shown.at(static_cast<std::size_t>(bar.y)), bar.width);
    }
    std::vector<qreal> expected(400, 0);
    const QStringList lines = storage.text().split(u'\n');
    for (qsizetype line = 0; line < lines.size(); ++line) {
        const bool isBlank = lines[line].trimmed().isEmpty();
        const qreal width = isBlank ? 0 : std::min<qreal>(76, static_cast<qreal>(lines[line].size()) * 1.2);
        const auto pixel = static_cast<std::size_t>(geometry.barY(line));
        expected.at(pixel) = std::max(expected.at(pixel), width);
    }
    QCOMPARE(*std::max_element(shown.begin(), shown.end()), longest);
    QCOMPARE(shown, expected);
}

const kelm::test::Registered<MinimapBarsTest> registered;

} // namespace minimap_bars_test

#include "minimap_bars_test.moc"
