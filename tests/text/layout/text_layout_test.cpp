#include "support/random_text.h"
#include "support/script_texts.h"
#include "support/test_program.h"
#include "text/layout/text_layout.h"
#include "text/storage/line_terminator.h"

#include <QPainter>
#include <QSignalSpy>
#include <QtTest>

namespace text_layout_test {

using namespace kelm;

namespace {

const QString family = QStringLiteral("👩‍👩‍👧");

/// A storage with its layout, so narrow that a line has a few words.
struct Page
{
    TextStorage storage;
    TextLayout layout{storage};

    explicit Page(const QString& text = {}, qreal columns = 20)
    {
        storage.setText(text);
        layout.setWidth(std::ceil(columns * layout.advance()));
    }

    std::vector<TextRow> allRows() { return layout.rowsBetween(0, 1e9); }
    QStringList texts()
    {
        QStringList result;
        for (const TextRow& row : allRows()) {
            result.append(storage.substring(row.range));
        }
        return result;
    }
};

/// A long line of words, each another.
QString longLine(qsizetype units)
{
    QString line;
    line.reserve(units + 16);
    for (int word = 0; line.size() < units; ++word) {
        line += QString::number(word) + u' ';
    }
    return line.left(units);
}

/// What must hold for the rows of a whole page, whatever its text.
void checkRows(Page& page)
{
    const std::vector<TextRow> rows = page.allRows();
    const LineIndex& lines = page.storage.lines();
    QVERIFY(!rows.empty());
    QCOMPARE(page.layout.height(), static_cast<qreal>(rows.size()) * page.layout.rowHeight());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const TextRow& row = rows[i];
        QCOMPARE(row.top, static_cast<qreal>(i) * page.layout.rowHeight());
        QCOMPARE(row.isFirstOfLine, i == 0 || rows[i - 1].line != row.line);
        QCOMPARE(row.isLastOfLine, i + 1 == rows.size() || rows[i + 1].line != row.line);
        if (row.isFirstOfLine) {
            QCOMPARE(row.line, i == 0 ? 0 : rows[i - 1].line + 1);
            QCOMPARE(row.range.location, lines.start(row.line));
        } else {
            QCOMPARE(row.range.location, rows[i - 1].range.end());
            QVERIFY(!row.range.isEmpty());
        }
        if (row.isLastOfLine) {
            const qsizetype behind = lines.end(row.line);
            const qsizetype terminator =
                row.line + 1 < lines.lineCount() ? lineTerminatorLength(page.storage.text(), row.range.end()) : 0;
            QCOMPARE(row.range.end() + terminator, behind);
        }
    }
    QCOMPARE(rows.back().line, lines.lineCount() - 1);
}

/// Compares every row with those of a layout that has never seen another text, and with their letters' places.
void compareWithFresh(Page& page)
{
    Page fresh(QString(page.storage.text().constData(), page.storage.length()));
    fresh.layout.setFont(page.layout.font());
    fresh.layout.setWidth(page.layout.width());
    fresh.storage.assignForeground(page.storage.foreground().runsIn({0, page.storage.length()}));
    const std::vector<TextRow> rows = page.allRows();
    const std::vector<TextRow> expected = fresh.allRows();
    QCOMPARE(page.layout.height(), static_cast<qreal>(rows.size()) * page.layout.rowHeight());
    QCOMPARE(fresh.layout.height(), static_cast<qreal>(rows.size()) * page.layout.rowHeight());
    QCOMPARE(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QCOMPARE(rows[i].line, expected[i].line);
        QCOMPARE(rows[i].range, expected[i].range);
        QCOMPARE(rows[i].top, expected[i].top);
        for (const qsizetype offset :
             {rows[i].range.location, rows[i].range.location + rows[i].range.length / 2, rows[i].range.end()}) {
            QCOMPARE(page.layout.xInRow(rows[i], offset), fresh.layout.xInRow(expected[i], offset));
        }
    }
    QCOMPARE(page.layout.height(), fresh.layout.height());
}

QImage paintedRows(Page& page)
{
    const std::vector<TextRow> rows = page.allRows();
    QImage image(static_cast<int>(page.layout.width()) + 40, static_cast<int>(page.layout.height()),
                 QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (const TextRow& row : rows) {
        page.layout.paintRow(painter, row, {});
    }
    return image;
}

} // namespace

class TextLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreWrapped_data();
    void linesAreWrapped();
    void rowsInARectangleAreThoseThatMeetIt();
    void everyOffsetIsFoundAgainAtItsCaret_data();
    void everyOffsetIsFoundAgainAtItsCaret();
    void everyPointIsAPlaceBetweenCharacters_data();
    void everyPointIsAPlaceBetweenCharacters();
    void aPointMeansTheNearerEndOfItsCharacter();
    void pointsOutsideThePageMeanItsEnds();
    void theBorderOfTwoRowsIsTwoPlaces();
    void neighboursWalkOverAllRows_data();
    void neighboursWalkOverAllRows();
    void tabsStandAtTheirStops();
    void aLineEndTakesNoPlace();
    void rightToLeftTextRunsFromTheRight();
    void anotherWidthWrapsAnew();
    void aWidthOfNothingIsNoTrap();
    void anotherFontMeasuresAnew();
    void estimatesGiveWayToCounts();
    void linesOutOfSightAreNotLaidOut();
    void aKeystrokeLaysOutItsLineOnly();
    void colorsMeasureNothingAnew();
    void colorsAreThoseOfTheText();
    void linesBehindAnEditKeepTheirLayout();
    void theCacheStaysSmall();
    void aCompositionIsShownButNotCounted_data();
    void aCompositionIsShownButNotCounted();
    void aCompositionIsPaintedRowByRow();
    void aCompositionMovesWithTheText();
    void aCompositionHasItsOwnCaret();
    void aLineOfMegabytesIsLaidOutInPieces();
    void typingInALongLineLaysOutAPieceOrTwo();
    void typingInALongLineLeavesNoStubs();
    void longLinesGrowShrinkAndJoin();
    void anotherWidthKeepsTheTextOfLongLines();
    void randomChangesLeaveNoStaleRow();
    void randomChangesOfLongLinesKeepRowsWhole();
};

void TextLayoutTest::linesAreWrapped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("empty") << QString() << QStringList{QString()};
    QTest::newRow("one line") << QStringLiteral("abc") << QStringList{QStringLiteral("abc")};
    QTest::newRow("a last line end") << QStringLiteral("abc\n") << QStringList{QStringLiteral("abc"), QString()};
    QTest::newRow("all kinds of line ends")
        << QStringLiteral("a\nb\r\nc\rd\u0085e\u2028f\u2029g")
        << QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d"),
                       QStringLiteral("e"), QStringLiteral("f"), QStringLiteral("g")};
    QTest::newRow("empty lines") << QStringLiteral("\r\n\r\n") << QStringList{QString(), QString(), QString()};
    QTest::newRow("words") << QStringLiteral("iii iii iii iii iii iii iii iii iii iii iii iii iii iii iii iii iii iii")
                           << QStringList();
    QTest::newRow("one endless word") << QString(100, u'a') << QStringList();
    QTest::newRow("only blanks") << QString(100, u' ') << QStringList();
    QTest::newRow("tabs") << QString(30, u'\t') << QStringList();
    QTest::newRow("Korean") << QStringLiteral("다람쥐 헌 쳇바퀴에 타고파 다람쥐 헌 쳇바퀴에 타고파") << QStringList();
    QTest::newRow("Chinese without blanks") << QStringLiteral("天地玄黃宇宙洪荒").repeated(8) << QStringList();
    QTest::newRow("families") << family.repeated(30) << QStringList();
    QTest::newRow("Hebrew") << QStringLiteral("אבג דהו זחט יכל מנס עפצ קרש תאב גדה וזח") << QStringList();
    QTest::newRow("NUL") << QString(5, QChar(0)) + QStringLiteral("a") << QStringList();
    QTest::newRow("unpaired surrogates") << QString(QChar(0xd83d)) + u'a' + QString(QChar(0xde00)) +
                                                QString(QChar(0xd83d))
                                         << QStringList();
    QTest::newRow("object replacement, vertical tab, form feed, escape")
        << QStringLiteral("a\ufffcb\vc\fd") + QChar(0x1b) << QStringList();
    QTest::newRow("byte-order mark and noncharacter") << QStringLiteral("\ufeffa\ufdd0") << QStringList();
}

void TextLayoutTest::linesAreWrapped()
{
    QFETCH(QString, text);
    QFETCH(QStringList, rows);
    Page page(text);
    checkRows(page);
    if (!rows.isEmpty()) {
        QCOMPARE(page.texts(), rows);
    } else if (text.size() > 40 && !text.trimmed().isEmpty()) {
        QVERIFY(page.allRows().size() > 1);
    }
    // No row reaches over the edge; blanks at its end may.
    for (const TextRow& row : page.allRows()) {
        qsizetype end = row.range.end();
        while (end > row.range.location && text[end - 1].isSpace()) {
            --end;
        }
        QVERIFY(page.layout.xInRow(row, end) <= page.layout.width() + 1);
    }
}

void TextLayoutTest::rowsInARectangleAreThoseThatMeetIt()
{
    Page page(QStringLiteral("0\n1\n2\n3\n4"));
    const qreal height = page.layout.rowHeight();
    const auto linesIn = [&](qreal top, qreal bottom) {
        QList<qsizetype> lines;
        for (const TextRow& row : page.layout.rowsBetween(top, bottom)) {
            lines.append(row.line);
        }
        return lines;
    };
    QCOMPARE(linesIn(0, height), (QList<qsizetype>{0}));
    QCOMPARE(linesIn(0, height + 1), (QList<qsizetype>{0, 1}));
    QCOMPARE(linesIn(height - 1, height + 1), (QList<qsizetype>{0, 1}));
    QCOMPARE(linesIn(height, height * 2), (QList<qsizetype>{1}));
    QCOMPARE(linesIn(-100, 1), (QList<qsizetype>{0}));
    QCOMPARE(linesIn(height * 4, height * 100), (QList<qsizetype>{4}));
    QVERIFY(linesIn(height * 5, height * 100).isEmpty());
}

void TextLayoutTest::everyOffsetIsFoundAgainAtItsCaret_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << QStringLiteral("the quick brown fox jumps over the lazy dog and runs away\n\nend");
    QTest::newRow("an endless word") << QString(100, u'w');
    QTest::newRow("Korean") << QStringLiteral("다람쥐 헌 쳇바퀴에 타고파 다람쥐 헌 쳇바퀴에 타고파");
    QTest::newRow("CRLF") << QStringLiteral("ab\r\ncd\r\n");
    QTest::newRow("tabs") << QStringLiteral("\ta\tbb\tccc\n\t\tx");
    QTest::newRow("pieces") << longLine(longestPiece * 3);
}

void TextLayoutTest::everyOffsetIsFoundAgainAtItsCaret()
{
    QFETCH(QString, text);
    Page page(text);
    // Counts take the place of estimates first: a place on the page is good only as long as those above it are.
    page.allRows();
    for (qsizetype offset = 0; offset <= text.size(); ++offset) {
        if (offset > 0 && offset < text.size() && text[offset] == u'\n' && text[offset - 1] == u'\r') {
            continue;
        }
        const QRectF box = page.layout.caretRect({offset, false});
        QCOMPARE(box.height(), page.layout.rowHeight());
        QCOMPARE(page.layout.placeAt(box.center()), (CaretPlace{offset, false}));
        QCOMPARE(page.layout.rowOf({offset, false}).top, box.top());
    }
}

void TextLayoutTest::everyPointIsAPlaceBetweenCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Hindi") << QStringLiteral("क्षत्रिय हिन्दी में लिखते हैं");
    QTest::newRow("Hindi without blanks") << QStringLiteral("क्षत्रि").repeated(20);
    QTest::newRow("Thai") << QStringLiteral("กำลังเขียนภาษาไทยที่นี่");
    QTest::newRow("emoji and flags")
        << QStringLiteral("😀🇰🇷👩‍👩‍👧👍🏽❤️🇺🇸").repeated(4);
    QTest::newRow("letters of syllables") << QStringLiteral("\u1112\u1161\u11ab\u1100\u1173\u11af").repeated(10);
    QTest::newRow("a mixture") << test::RandomScripts().text(60);
}

void TextLayoutTest::everyPointIsAPlaceBetweenCharacters()
{
    QFETCH(QString, text);
    Page page(text, 12);
    const QList<qsizetype> boundaries = test::characterBoundaries(text);
    for (const TextRow& row : page.allRows()) {
        qsizetype last = -1;
        for (qreal x = -2; x < 12 * page.layout.advance() + 4; x += 1.5) {
            const qsizetype offset = page.layout.placeInRow(row, x).offset;
            QVERIFY(std::binary_search(boundaries.begin(), boundaries.end(), offset) || offset == row.range.end());
            last = offset;
        }
        QVERIFY(last >= row.range.location);
    }
}

void TextLayoutTest::aPointMeansTheNearerEndOfItsCharacter()
{
    // Within a character of several letters the toolkit has places of its own.
    Page page(QStringLiteral("xक्षy"));
    const TextRow row = page.allRows().front();
    const qreal left = page.layout.xInRow(row, 1);
    const qreal right = page.layout.xInRow(row, 4);
    QVERIFY(right > left + 4);
    QCOMPARE(page.layout.placeInRow(row, left + 1).offset, qsizetype(1));
    QCOMPARE(page.layout.placeInRow(row, left + 0.45 * (right - left)).offset, qsizetype(1));
    QCOMPARE(page.layout.placeInRow(row, left + 0.55 * (right - left)).offset, qsizetype(4));
    QCOMPARE(page.layout.placeInRow(row, right - 1).offset, qsizetype(4));
}

void TextLayoutTest::pointsOutsideThePageMeanItsEnds()
{
    Page page(QStringLiteral("abc\ndef"));
    QCOMPARE(page.layout.placeAt({1000, -1}).offset, qsizetype(0));
    QCOMPARE(page.layout.placeAt({0, page.layout.height()}).offset, qsizetype(7));
    QCOMPARE(page.layout.placeAt({-50, 1}).offset, qsizetype(0));
    QCOMPARE(page.layout.placeAt({5000, 1}).offset, qsizetype(3));
    QCOMPARE(page.layout.lineAtY(-10), qsizetype(0));
    QCOMPARE(page.layout.lineAtY(1e7), qsizetype(1));
}

void TextLayoutTest::theBorderOfTwoRowsIsTwoPlaces()
{
    Page page(QString(60, u'a'));
    const std::vector<TextRow> rows = page.allRows();
    QVERIFY(rows.size() > 2);
    const qsizetype border = rows[0].range.end();
    const QRectF atEnd = page.layout.caretRect({border, true});
    const QRectF atStart = page.layout.caretRect({border, false});
    QCOMPARE(atEnd.top(), 0.0);
    QCOMPARE(atStart.top(), page.layout.rowHeight());
    QCOMPARE(atStart.x(), 0.0);
    QVERIFY(atEnd.x() > page.layout.width() / 2);
    QCOMPARE(page.layout.placeAt({5000, 1}), (CaretPlace{border, true}));
    QCOMPARE(page.layout.placeAt({0, page.layout.rowHeight() + 1}), (CaretPlace{border, false}));

    // The same at the border of two pieces.
    Page pieces(QString(longestPiece * 2, u'a'));
    const std::vector<TextRow> all = pieces.allRows();
    const auto second =
        std::find_if(all.begin(), all.end(), [](const TextRow& row) { return row.range.location >= longestPiece / 2; });
    QVERIFY(second != all.end() && second != all.begin());
    for (auto row = all.begin() + 1; row != all.end(); ++row) {
        QCOMPARE(pieces.layout.caretRect({row->range.location, true}).top(), std::prev(row)->top);
        QCOMPARE(pieces.layout.caretRect({row->range.location, false}).top(), row->top);
    }
    // A line's own ends have one place each.
    Page lines(QStringLiteral("a\nb"));
    QCOMPARE(lines.layout.caretRect({2, true}).top(), lines.layout.rowHeight());
}

void TextLayoutTest::neighboursWalkOverAllRows_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("wrapped lines") << QStringLiteral("the quick brown fox jumps over the lazy dog\n\nand runs away\n");
    QTest::newRow("long lines") << longLine(longestPiece * 2) + u'\n' + longLine(longestPiece + 1);
}

void TextLayoutTest::neighboursWalkOverAllRows()
{
    QFETCH(QString, text);
    Page page(text);
    const std::vector<TextRow> rows = page.allRows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto below = page.layout.neighbour(rows[i], 1);
        QCOMPARE(below.has_value(), i + 1 < rows.size());
        if (below) {
            QCOMPARE(below->range, rows[i + 1].range);
            QCOMPARE(below->top, rows[i + 1].top);
            const auto back = page.layout.neighbour(*below, -1);
            QVERIFY(back);
            QCOMPARE(back->range, rows[i].range);
            QCOMPARE(back->top, rows[i].top);
        }
    }
    QVERIFY(!page.layout.neighbour(rows.front(), -1));
}

void TextLayoutTest::tabsStandAtTheirStops()
{
    Page page(QStringLiteral("\ta\nab\tc\n"), 40);
    const qreal stop = page.layout.caretRect({1, false}).x();
    QVERIFY(qAbs(stop - 4 * page.layout.advance()) < 1);
    QCOMPARE(page.layout.caretRect({6, false}).x(), stop);
}

void TextLayoutTest::aLineEndTakesNoPlace()
{
    Page page(QStringLiteral("ab\r\ncd\u2028ef\n"));
    const qreal end = page.layout.caretRect({2, false}).x();
    QCOMPARE(page.layout.placeAt({end + 200, 1}).offset, qsizetype(2));
    QCOMPARE(page.layout.placeAt({500, page.layout.rowHeight() + 1}).offset, qsizetype(6));
}

void TextLayoutTest::rightToLeftTextRunsFromTheRight()
{
    Page page(QStringLiteral("אבגד\nabאבcd"), 40);
    const auto x = [&](qsizetype offset) { return page.layout.caretRect({offset, false}).x(); };
    QVERIFY(x(1) > x(2));
    QVERIFY(x(2) > x(3));
    // Latin letters around it go on from the left.
    QVERIFY(x(5) < x(6));
    QVERIFY(x(10) < x(11));
    QVERIFY(x(8) > x(6));
}

void TextLayoutTest::anotherWidthWrapsAnew()
{
    Page page(QStringLiteral("the quick brown fox jumps over the lazy dog\n").repeated(5), 40);
    const auto wide = page.allRows().size();
    page.layout.setWidth(page.layout.width() / 2);
    compareWithFresh(page);
    QVERIFY(page.allRows().size() > wide);
    page.layout.setWidth(page.layout.width() * 2);
    QCOMPARE(page.allRows().size(), wide);

    const quint64 before = page.layout.layoutsMade();
    page.layout.setWidth(page.layout.width());
    page.allRows();
    QCOMPARE(page.layout.layoutsMade(), before);
}

void TextLayoutTest::aWidthOfNothingIsNoTrap()
{
    Page page(QStringLiteral("abc 한글 ") + family);
    for (const qreal width : {0.0, -100.0, 0.5, 1.0}) {
        page.layout.setWidth(width);
        checkRows(page);
    }
}

void TextLayoutTest::anotherFontMeasuresAnew()
{
    Page page(QStringLiteral("the quick brown fox jumps over the lazy dog"), 30);
    page.allRows();
    const qreal width = page.layout.width();
    QFont font = page.layout.font();
    font.setPixelSize(40);
    page.layout.setFont(font);
    QCOMPARE(page.layout.width(), width);
    QVERIFY(page.layout.rowHeight() >= 40);
    compareWithFresh(page);
    checkRows(page);
}

void TextLayoutTest::estimatesGiveWayToCounts()
{
    // Wide letters take more rows than their number says, narrow ones fewer.
    const QString line = QString(30, QChar(u'한'));
    Page page((line + u'\n').repeated(50), 20);
    const qreal estimated = page.layout.height();
    QSignalSpy corrected(&page.layout, &TextLayout::rowsCorrected);
    page.layout.rowsBetween(0, 10);
    QVERIFY(corrected.count() > 0);
    QVERIFY(page.layout.height() > estimated);
    checkRows(page);
    corrected.clear();
    page.allRows();
    QCOMPARE(corrected.count(), 0);
}

void TextLayoutTest::linesOutOfSightAreNotLaidOut()
{
    QString text;
    const qsizetype count = 3'000'000;
    text.reserve(count * 9);
    for (qsizetype line = 0; line < count; ++line) {
        text += QStringLiteral("line %1\n").arg(line % 10);
    }
    Page page(text, 80);
    const qreal height = page.layout.rowHeight();
    page.layout.rowsBetween(0, 50 * height);
    QCOMPARE(page.layout.layoutsMade(), quint64(50));
    const std::vector<TextRow> middle = page.layout.rowsBetween(1'500'000 * height, 1'500'050 * height);
    QCOMPARE(middle.front().line, qsizetype(1'500'000));
    QCOMPARE(page.layout.layoutsMade(), quint64(100));
    page.layout.caretRect({page.storage.length(), false});
    QCOMPARE(page.layout.layoutsMade(), quint64(101));
    page.storage.replace({page.storage.lines().start(1'500'010), 0}, u"x\ny");
    page.layout.rowsBetween(1'500'000 * height, 1'500'050 * height);
    QCOMPARE(page.layout.layoutsMade(), quint64(103));
}

void TextLayoutTest::aKeystrokeLaysOutItsLineOnly()
{
    Page page(QStringLiteral("a line of text\n").repeated(100));
    const qreal bottom = 40 * page.layout.rowHeight();
    page.layout.rowsBetween(0, bottom);
    for (int key = 0; key < 20; ++key) {
        const quint64 before = page.layout.layoutsMade();
        page.storage.replace({20 + key, 0}, u"x");
        page.layout.caretRect({21 + key, false});
        page.layout.rowsBetween(0, bottom);
        page.layout.rowsBetween(0, bottom);
        QCOMPARE(page.layout.layoutsMade(), before + 1);
    }
}

void TextLayoutTest::colorsMeasureNothingAnew()
{
    Page page(QStringLiteral("a line of text\n").repeated(100));
    page.allRows();
    const quint64 before = page.layout.layoutsMade();
    page.storage.setForeground({3, 50}, 0xffff0000);
    page.storage.setBackground({3, 50}, 0xff00ff00);
    page.allRows();
    QCOMPARE(page.layout.layoutsMade(), before);
}

void TextLayoutTest::colorsAreThoseOfTheText()
{
    Page page(QStringLiteral("WWWW\nWWWW\n"));
    const auto reds = [&](int row) {
        const QImage image = paintedRows(page);
        const int height = static_cast<int>(page.layout.rowHeight());
        int count = 0;
        for (int y = row * height; y < (row + 1) * height; ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor color = image.pixelColor(x, y);
                count += color.red() > 200 && color.green() < 100 ? 1 : 0;
            }
        }
        return count;
    };
    QCOMPARE(reds(0), 0);
    page.storage.setForeground({5, 4}, 0xffff0000);
    QCOMPARE(reds(0), 0);
    const int whole = reds(1);
    QVERIFY(whole > 0);
    page.storage.setForeground({5, 2}, {});
    QVERIFY(reds(1) < whole);
    page.storage.setForeground({0, 10}, {});
    QCOMPARE(reds(1), 0);
}

void TextLayoutTest::linesBehindAnEditKeepTheirLayout()
{
    Page page(QStringLiteral("a line of text\n").repeated(100));
    const qreal bottom = 40 * page.layout.rowHeight();
    page.layout.rowsBetween(0, bottom);
    quint64 before = page.layout.layoutsMade();
    page.storage.replace({0, 0}, u"\n");
    page.layout.rowsBetween(0, bottom);
    // The line that was cut is two lines now.
    QCOMPARE(page.layout.layoutsMade(), before + 2);
    before = page.layout.layoutsMade();
    page.storage.replace({0, 1}, u"");
    page.layout.rowsBetween(0, bottom);
    QCOMPARE(page.layout.layoutsMade(), before + 1);
    compareWithFresh(page);
}

void TextLayoutTest::theCacheStaysSmall()
{
    Page page(QStringLiteral("line\n").repeated(20'000));
    for (qreal y = 0; y < page.layout.height(); y += 40 * page.layout.rowHeight()) {
        page.layout.rowsBetween(y, y + 40 * page.layout.rowHeight());
        QVERIFY(page.layout.cachedPieces() <= 640);
    }
    // Nor do carets that are asked for one by one fill it.
    for (qsizetype offset = 0; offset < page.storage.length(); offset += 5) {
        page.layout.caretRect({offset, false});
        QVERIFY(page.layout.cachedPieces() <= 640);
    }
}

void TextLayoutTest::aCompositionIsShownButNotCounted_data()
{
    QTest::addColumn<qsizetype>("offset");
    QTest::newRow("at the start") << qsizetype(0);
    QTest::newRow("in the middle") << qsizetype(3);
    QTest::newRow("at the line's end") << qsizetype(6);
    QTest::newRow("in an empty line") << qsizetype(7);
    QTest::newRow("at the end") << qsizetype(11);
}

void TextLayoutTest::aCompositionIsShownButNotCounted()
{
    QFETCH(qsizetype, offset);
    Page page(QStringLiteral("abcdef\n\nghi"));
    const auto x = [&](qsizetype at) { return page.layout.caretRect({at, false}).x(); };
    std::vector<qreal> plain;
    for (qsizetype at = 0; at <= 11; ++at) {
        plain.push_back(x(at));
    }
    Preedit preedit;
    preedit.offset = offset;
    preedit.text = QStringLiteral("한글");
    page.layout.setPreedit(preedit);
    checkRows(page);
    const qsizetype line = page.storage.lines().lineAt(offset);
    qreal shift = 0;
    for (qsizetype at = 0; at <= 11; ++at) {
        if (page.storage.lines().lineAt(at) == line && at > offset) {
            shift = shift > 0 ? shift : x(at) - plain[static_cast<std::size_t>(at)];
            QVERIFY(shift > 10);
            QVERIFY(qAbs(x(at) - plain[static_cast<std::size_t>(at)] - shift) < 0.1);
        } else {
            QVERIFY(qAbs(x(at) - plain[static_cast<std::size_t>(at)]) < 0.1);
        }
    }
    page.layout.setPreedit({});
    for (qsizetype at = 0; at <= 11; ++at) {
        QCOMPARE(x(at), plain[static_cast<std::size_t>(at)]);
    }
}

void TextLayoutTest::aCompositionIsPaintedRowByRow()
{
    // A composition over several rows looks as the same text would.
    const QString composed = QStringLiteral("one two three four five six seven eight nine ten");
    Page composing(QStringLiteral("abc def"));
    Preedit preedit;
    preedit.offset = 4;
    preedit.text = composed;
    composing.layout.setPreedit(preedit);
    Page plain(QStringLiteral("abc ") + composed + QStringLiteral("def"));
    QVERIFY(plain.allRows().size() > 2);
    QCOMPARE(composing.allRows().size(), plain.allRows().size());
    QCOMPARE(paintedRows(composing), paintedRows(plain));
}

void TextLayoutTest::aCompositionMovesWithTheText()
{
    Page page(QStringLiteral("abc\ndef"));
    Preedit preedit;
    preedit.offset = 5;
    preedit.text = QStringLiteral("XY");
    page.layout.setPreedit(preedit);
    page.allRows();
    page.storage.replace({0, 0}, u"new\n");
    QCOMPARE(page.layout.preedit()->offset, qsizetype(9));
    page.allRows();
    page.layout.setPreedit({});
    compareWithFresh(page);

    // The text is put aside while something is composed far down in it.
    preedit.offset = page.storage.length();
    page.layout.setPreedit(preedit);
    page.storage.setText(QStringLiteral("x"));
    QVERIFY(page.layout.preedit()->offset <= 1);
    QVERIFY(page.layout.preeditCaretRect() || !preedit.cursor);
    checkRows(page);
    page.layout.setPreedit({});
    compareWithFresh(page);
}

void TextLayoutTest::aCompositionHasItsOwnCaret()
{
    Page page(QStringLiteral("abc\ndef"));
    QVERIFY(!page.layout.preeditCaretRect());
    Preedit preedit;
    preedit.offset = 5;
    preedit.text = QStringLiteral("WWWW");
    page.layout.setPreedit(preedit);
    QVERIFY(!page.layout.preeditCaretRect());
    qreal before = page.layout.caretRect({5, false}).x() - 1;
    for (int cursor = 0; cursor <= 4; ++cursor) {
        preedit.cursor = cursor;
        page.layout.setPreedit(preedit);
        const auto box = page.layout.preeditCaretRect();
        QVERIFY(box);
        QCOMPARE(box->top(), page.layout.rowHeight());
        QVERIFY(box->x() > before);
        before = box->x();
    }
    // Nonsense from outside does no harm.
    for (const int cursor : {-5, 1000}) {
        preedit.cursor = cursor;
        preedit.formats = {{-3, 100, QTextCharFormat()}, {2, 100, QTextCharFormat()}};
        page.layout.setPreedit(preedit);
        const auto box = page.layout.preeditCaretRect();
        QVERIFY(box);
        QVERIFY(box->x() >= 0 && box->x() <= before + 1);
    }
}

void TextLayoutTest::aLineOfMegabytesIsLaidOutInPieces()
{
    Page page(longLine(5'000'000), 100);
    page.layout.rowsBetween(0, 800);
    QVERIFY(page.layout.layoutsMade() <= 4);
    page.layout.rowsBetween(page.layout.height() / 2, page.layout.height() / 2 + 800);
    QVERIFY(page.layout.layoutsMade() <= 9);
    const qreal middle = page.layout.height() / 2;
    const CaretPlace place = page.layout.placeAt({50, middle});
    QVERIFY(place.offset > 2'000'000 && place.offset < 3'000'000);
    QVERIFY(page.layout.caretRect(place).adjusted(0, 0, 1, 0).top() <= middle);
    QVERIFY(page.layout.layoutsMade() <= 9);
}

void TextLayoutTest::typingInALongLineLaysOutAPieceOrTwo()
{
    Page page(longLine(5'000'000), 100);
    const qreal top = page.layout.height() / 2;
    page.layout.rowsBetween(top, top + 800);
    const qsizetype caret = page.layout.placeAt({50, top + 400}).offset;
    for (int key = 0; key < 50; ++key) {
        const quint64 before = page.layout.layoutsMade();
        page.storage.replace({caret + key, 0}, u"x");
        page.layout.caretRect({caret + key + 1, false});
        page.layout.rowsBetween(top, top + 800);
        QVERIFY2(page.layout.layoutsMade() - before <= 3, "one key laid out more than the pieces it touched");
    }
}

void TextLayoutTest::typingInALongLineLeavesNoStubs()
{
    // A piece that grows beyond its limit, letter by letter, must not leave one letter in a row of its own.
    Page page(QString(longestPiece * 3, u'a'), 50);
    const qsizetype caret = 100;
    for (int key = 0; key < 300; ++key) {
        page.storage.replace({caret, 0}, u"a");
    }
    const qsizetype full = page.allRows().front().range.length;
    int partRows = 0;
    for (const TextRow& row : page.allRows()) {
        partRows += row.range.length < full - 1 ? 1 : 0;
    }
    // The last row alone is not full.
    QVERIFY2(partRows <= 1, qPrintable(QString::number(partRows)));

    // Nor must taking text away leave many small pieces.
    Page shrinking(QString(longestPiece * 40, u'a'), 50);
    for (int i = 0; i < 39; ++i) {
        shrinking.storage.replace({10 + i * 10, longestPiece - 10}, u"");
    }
    QVERIFY(shrinking.storage.length() < longestPiece * 2);
    partRows = 0;
    for (const TextRow& row : shrinking.allRows()) {
        partRows += row.range.length < full - 1 ? 1 : 0;
    }
    QVERIFY2(partRows <= 1, qPrintable(QString::number(partRows)));
}

void TextLayoutTest::longLinesGrowShrinkAndJoin()
{
    Page page(QStringLiteral("before\n") + longLine(longestPiece - 5) + QStringLiteral("\nafter"));
    page.allRows();
    // Grows over the limit, letter by letter.
    for (int i = 0; i < 20; ++i) {
        page.storage.replace({500, 0}, u"w");
        checkRows(page);
    }
    // Shrinks under it again.
    for (int i = 0; i < 20; ++i) {
        page.storage.replace({500, 1}, u"");
        checkRows(page);
    }
    compareWithFresh(page);
    // Two lines become one that is long, and part again.
    page.storage.replace({page.storage.lines().start(2) - 1, 1}, u"");
    checkRows(page);
    page.storage.replace({1000, 0}, longLine(longestPiece * 3));
    checkRows(page);
    page.storage.replace({3000, 0}, u"\r\n");
    checkRows(page);
    page.storage.replace({3000, 2}, u"");
    checkRows(page);
    page.storage.replace({100, page.storage.length() - 200}, u"");
    checkRows(page);
    compareWithFresh(page);
    page.storage.replace({0, page.storage.length()}, u"");
    checkRows(page);
}

void TextLayoutTest::anotherWidthKeepsTheTextOfLongLines()
{
    // What was typed has cut the pieces otherwise than a line that is cut whole; the cached ones must stay true.
    Page page(longLine(longestPiece * 4), 60);
    page.allRows();
    for (int i = 0; i < 100; ++i) {
        page.storage.replace({longestPiece / 2 + i, 0}, u"w");
    }
    page.allRows();
    page.layout.setWidth(page.layout.width() - 40);
    checkRows(page);
    for (const TextRow& row : page.allRows()) {
        const CaretPlace end{row.range.end(), true};
        QCOMPARE(page.layout.caretRect(end).top(), row.top);
    }
    page.storage.replace({10, 0}, u"x");
    checkRows(page);
}

void TextLayoutTest::randomChangesLeaveNoStaleRow()
{
    test::RandomText random;
    Page page(random.text(200), 16);
    Page colored;
    for (int round = 0; round < 400; ++round) {
        const int edits = static_cast<int>(1 + random.below(3));
        for (int i = 0; i < edits; ++i) {
            page.storage.replace(random.range(page.storage.length()), random.text(random.below(8) == 0 ? 60 : 4));
        }
        if (random.below(3) == 0) {
            page.storage.setForeground(random.range(page.storage.length()), 0xff000000 | QRgb(random.below(0xffffff)));
        }
        if (random.below(6) == 0) {
            page.layout.setWidth(page.layout.advance() * static_cast<qreal>(4 + random.below(40)));
        }
        if (random.below(4) == 0) {
            // Only a part is looked at before the next change.
            page.layout.rowsBetween(random.below(200), 300);
            continue;
        }
        compareWithFresh(page);
        if (QTest::currentTestFailed()) {
            return;
        }
        if (page.storage.length() > 2000) {
            page.storage.replace({200, page.storage.length() - 300}, u"");
        }
        if (round % 20 == 0) {
            // Letters and colours are those of the text, too.
            Page fresh(QString(page.storage.text().constData(), page.storage.length()));
            fresh.layout.setWidth(page.layout.width());
            fresh.storage.assignForeground(page.storage.foreground().runsIn({0, page.storage.length()}));
            QCOMPARE(paintedRows(page), paintedRows(fresh));
        }
    }
}

void TextLayoutTest::randomChangesOfLongLinesKeepRowsWhole()
{
    test::RandomText random;
    Page page(longLine(longestPiece * 5), 80);
    for (int round = 0; round < 150; ++round) {
        QString added = random.text(5);
        switch (random.below(10)) {
        case 0:
            added = longLine(random.below(longestPiece * 2));
            break;
        case 1:
            page.storage.replace({random.below(page.storage.length()), random.below(longestPiece * 2)}, u"");
            break;
        case 2:
            page.layout.setWidth(page.layout.advance() * static_cast<qreal>(30 + random.below(100)));
            break;
        case 3:
            break;
        default:
            added.remove(u'\n').remove(u'\r');
        }
        page.storage.replace(random.range(page.storage.length()), added);
        if (random.below(3) == 0) {
            checkRows(page);
            // Each row's letters stand where a layout of that row alone puts them.
            Page fresh;
            for (const TextRow& row : page.allRows()) {
                if (random.below(40) != 0) {
                    continue;
                }
                const CaretPlace place{row.range.location + row.range.length / 2, false};
                QCOMPARE(page.layout.rowOf(place).range, row.range);
            }
        }
        if (QTest::currentTestFailed()) {
            return;
        }
        if (page.storage.length() > longestPiece * 12) {
            page.storage.replace({longestPiece, longestPiece * 8}, u"");
        }
    }
}

const kelm::test::Registered<TextLayoutTest> registered(kelm::test::Toolkit::gui);

} // namespace text_layout_test

#include "text_layout_test.moc"
