#include "editor/view/numbered_rows.h"
#include "editor/view/simple_line_number_view.h"
#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "support/ink_recorder.h"
#include "support/painted.h"
#include "support/paints.h"
#include "support/test_program.h"

#include <QPainter>
#include <QtTest>

#include <cmath>
#include <memory>

namespace simple_line_number_view_test {

using namespace kelm;

namespace {

const QString foldable = QStringLiteral("{\n  one\n  two\n}\nlast");

/// A gutter beside a text view, both as high as each other.
struct Fixture
{
    QWidget window;
    TextView text{&window};
    NotificationCenter notifications;
    CodeFoldingManager folding{notifications};
    SimpleLineNumberView gutter{&window};

    explicit Fixture(const QString& content)
    {
        window.resize(655, 400);
        gutter.setGeometry(0, 0, 55, 400);
        text.setGeometry(55, 0, 600, 400);
        text.setTextFont(style::monospaced(14), 17);
        text.storage().setText(content);
        folding.setStorage(&text.storage());
        folding.detectFoldableRegions(Language::swift);
        gutter.textView = &text;
        gutter.codeFoldingManager = &folding;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }

    QImage picture() { return gutter.grab().toImage(); }
    /// Whether any pixel of a row, from 0, between two x is of a colour.
    bool rowHas(const QImage& image, int row, int left, int right, const QColor& color)
    {
        const int top = 4 + row * 17;
        for (int y = top; y < top + 17; ++y) {
            for (int x = left; x < right; ++x) {
                if (image.pixelColor(x, y).rgb() == color.rgb()) {
                    return true;
                }
            }
        }
        return false;
    }
};

} // namespace

class SimpleLineNumberViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsAsItShould();
    void aManagerThatIsGoneHasNoTriangles();
    void anEmptyTextHasOneNumberAndNoClicks();
    void aFoldLineShowsATriangleThatTurns();
    void trianglesHaveTheirCorners_data();
    void trianglesHaveTheirCorners();
    void theZoneOfTheTriangleEndsAtTwentyTwo_data();
    void theZoneOfTheTriangleEndsAtTwentyTwo();
    void theLessonRegionHasABandAndBlueNumbers();
    void theBandOfAWrappedLineIsAtItsFirstRow();
    void aWrappedLineHasOneNumber();
    void aRowIsSeventeenHigh();
    void theFirstNumberBelowThePartOfAWrappedLineIsTheNextLines();
    void aLineThatFillsTheViewHasNoNumberThere();
    void numbersCountLineFeeds();
    void hiddenLinesAreNotSkippedOver();
    void thePointingHandShowsOverTriangles();
    void numbersStandRightAligned();
    void longNumbersAreWhole_data();
    void longNumbersAreWhole();
};

void SimpleLineNumberViewTest::itStartsAsItShould()
{
    SimpleLineNumberView gutter;
    QCOMPARE(gutter.backgroundColor, QColor::fromRgbF(0.1F, 0.1F, 0.12F));
    QCOMPARE(gutter.textColor, QColor(128, 128, 128));
    QVERIFY(!gutter.lessonRegion);
    QVERIFY(!gutter.onFoldToggle);
    QCOMPARE(SimpleLineNumberView::foldIconWidth, 14.0);
    // The others follow the appearance.
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        gutter.setPalette(style::palette(appearance));
        QCOMPARE(gutter.foldIndicatorColor, systemColor(SystemColor::gray, appearance));
        QCOMPARE(gutter.lessonNumberColor, systemColor(SystemColor::blue, appearance));
        QColor band = systemColor(SystemColor::blue, appearance);
        band.setAlphaF(0.1F);
        QCOMPARE(gutter.lessonHighlightColor, band);
    }
    // Without a text there is nothing but the ground.
    gutter.resize(55, 40);
    QVERIFY(test::isPlain(gutter.grab().toImage(), gutter.backgroundColor));
}

void SimpleLineNumberViewTest::aManagerThatIsGoneHasNoTriangles()
{
    Fixture fixture(foldable);
    auto folding = std::make_unique<CodeFoldingManager>(fixture.notifications);
    folding->setStorage(&fixture.text.storage());
    folding->detectFoldableRegions(Language::swift);
    fixture.gutter.codeFoldingManager = folding.get();
    bool toggled = false;
    fixture.gutter.onFoldToggle = [&](qsizetype) { toggled = true; };
    QVERIFY(fixture.rowHas(fixture.picture(), 0, 0, 22, fixture.gutter.foldIndicatorColor));
    folding.reset();
    QVERIFY(!fixture.rowHas(fixture.picture(), 0, 0, 22, fixture.gutter.foldIndicatorColor));
    QTest::mouseClick(&fixture.gutter, Qt::LeftButton, {}, {10, 10});
    QVERIFY(!toggled);
}

void SimpleLineNumberViewTest::anEmptyTextHasOneNumberAndNoClicks()
{
    Fixture fixture{QString()};
    bool toggled = false;
    fixture.gutter.onFoldToggle = [&](qsizetype) { toggled = true; };
    QTest::mouseClick(&fixture.gutter, Qt::LeftButton, {}, {10, 10});
    QVERIFY(!toggled);
    const QImage image = fixture.picture();
    QVERIFY(!fixture.rowHas(image, 1, 0, 55, fixture.gutter.textColor));
}

void SimpleLineNumberViewTest::aFoldLineShowsATriangleThatTurns()
{
    Fixture fixture(foldable);
    const QColor gray = fixture.gutter.foldIndicatorColor;
    // The box is 12 by 12 at x 3, in the middle of the row: 4 + (17 - 12) / 2.
    const QImage open = fixture.picture();
    QCOMPARE(open.pixelColor(9, 12).rgb(), gray.rgb());
    QCOMPARE(open.pixelColor(5, 10).rgb(), gray.rgb());
    QVERIFY(open.pixelColor(5, 16).rgb() != gray.rgb());
    QVERIFY(!fixture.rowHas(open, 1, 0, 22, gray));
    fixture.folding.fold(fixture.folding.foldableRegions().front());
    const QImage folded = fixture.picture();
    const QColor orange(255, 149, 0);
    QCOMPARE(style::appearanceOf(fixture.gutter), Appearance::light);
    QCOMPARE(folded.pixelColor(8, 12).rgb(), orange.rgb());
    QCOMPARE(folded.pixelColor(6, 9).rgb(), orange.rgb());
    QVERIFY(folded.pixelColor(13, 9).rgb() != orange.rgb());
}

void SimpleLineNumberViewTest::trianglesHaveTheirCorners_data()
{
    QTest::addColumn<bool>("isFolded");
    QTest::addColumn<QPolygonF>("triangle");
    // In a box of 12 by 12 at x 3, in the middle of a row of 17 from y 4 on.
    const qreal top = 4 + 2.5;
    QTest::newRow("pointing down") << false << QPolygonF{{4, top + 3}, {14, top + 3}, {9, top + 11}};
    QTest::newRow("pointing right") << true << QPolygonF{{6, top + 1}, {14, top + 6}, {6, top + 11}};
}

void SimpleLineNumberViewTest::trianglesHaveTheirCorners()
{
    QFETCH(bool, isFolded);
    QFETCH(QPolygonF, triangle);
    Fixture fixture(foldable);
    if (isFolded) {
        fixture.folding.fold(fixture.folding.foldableRegions().front());
    }
    const QImage row = fixture.picture().copy(0, 4, 22, 17);
    QImage expected(22, 21, QImage::Format_RGB32);
    expected.fill(fixture.gutter.backgroundColor);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isFolded ? systemColor(SystemColor::orange, style::appearanceOf(fixture.gutter))
                              : fixture.gutter.foldIndicatorColor);
    painter.drawPolygon(triangle);
    painter.end();
    QVERIFY(test::isSame(row, expected.copy(0, 4, 22, 17)));
}

void SimpleLineNumberViewTest::theZoneOfTheTriangleEndsAtTwentyTwo_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<qsizetype>("line");
    QTest::newRow("inside") << 21 << 10 << qsizetype(1);
    QTest::newRow("outside") << 22 << 10 << qsizetype(0);
    QTest::newRow("a line without a region") << 5 << 30 << qsizetype(0);
    QTest::newRow("above the first row") << 5 << 2 << qsizetype(0);
    QTest::newRow("below the text") << 5 << 300 << qsizetype(0);
}

void SimpleLineNumberViewTest::theZoneOfTheTriangleEndsAtTwentyTwo()
{
    QFETCH(int, x);
    QFETCH(int, y);
    Fixture fixture(foldable);
    qsizetype toggled = 0;
    fixture.gutter.onFoldToggle = [&](qsizetype line) { toggled = line; };
    fixture.text.setSelectedRange({3, 4});
    QTest::mouseClick(&fixture.gutter, Qt::RightButton, {}, {x, y});
    QCOMPARE(toggled, qsizetype(0));
    QTest::mouseClick(&fixture.gutter, Qt::LeftButton, {}, {x, y});
    QTEST(toggled, "line");
    // Where something was toggled it is painted anew.
    QCoreApplication::processEvents();
    test::Paints paints(fixture.gutter);
    QTest::mouseClick(&fixture.gutter, Qt::LeftButton, {}, {x, y});
    if (toggled > 0) {
        QTRY_VERIFY(paints.count > 0);
    }
    QCOMPARE(fixture.text.selectedRange(), (TextRange{3, 4}));
}

void SimpleLineNumberViewTest::theLessonRegionHasABandAndBlueNumbers()
{
    Fixture fixture(QStringLiteral("a\nb\nc\nd"));
    fixture.gutter.lessonRegion = LineRegion{2, 3};
    const QImage image = fixture.picture();
    const QColor plain = fixture.gutter.backgroundColor;
    QCOMPARE(image.pixelColor(30, 4 + 8).rgb(), plain.rgb());
    for (const int row : {1, 2}) {
        const QColor band = image.pixelColor(1, 4 + row * 17);
        QVERIFY(band.rgb() != plain.rgb());
        QVERIFY(band.blue() > band.red());
        QCOMPARE(image.pixelColor(54, 4 + row * 17 + 16).rgb(), band.rgb());
        QVERIFY(!fixture.rowHas(image, row, 30, 55, fixture.gutter.textColor));
    }
    QCOMPARE(image.pixelColor(1, 4 + 3 * 17).rgb(), plain.rgb());
    const QColor band = test::over(plain, fixture.gutter.lessonHighlightColor);
    QVERIFY(test::isNear(image.pixelColor(1, 4 + 17), band));
    // The numbers with their colours, from the top.
    const std::vector<test::Ink> numbers = test::inksOf(fixture.gutter);
    QCOMPARE(numbers.size(), std::size_t(4));
    for (std::size_t row = 0; row < numbers.size(); ++row) {
        const bool isInLesson = row == 1 || row == 2;
        QCOMPARE(numbers[row].text, QString::number(row + 1));
        // Eight points from the right edge, to the pixel that its end touches.
        const int end = numbers[row].place.right() + 1;
        QVERIFY2(end == 55 - 8 || end == 55 - 8 + 1, qPrintable(QString::number(end)));
        // In the middle of its row.
        const qreal middle = 4 + 17 * (static_cast<qreal>(row) + 0.5);
        QVERIFY(std::abs(QRectF(numbers[row].place).center().y() - middle) <= 1);
        QCOMPARE(numbers[row].color.rgb(),
                 (isInLesson ? fixture.gutter.lessonNumberColor : fixture.gutter.textColor).rgb());
        QCOMPARE(numbers[row].ground.rgb(), (isInLesson ? image.pixelColor(1, 4 + 17) : plain).rgb());
    }
}

void SimpleLineNumberViewTest::theBandOfAWrappedLineIsAtItsFirstRow()
{
    Fixture fixture(QString(200, u'x') + QStringLiteral("\nsecond"));
    const auto rows = static_cast<int>(fixture.text.visibleRows().size());
    QVERIFY(rows >= 4);
    fixture.gutter.lessonRegion = LineRegion{1, 1};
    const QImage image = fixture.picture();
    const QColor band = test::over(fixture.gutter.backgroundColor, fixture.gutter.lessonHighlightColor);
    QVERIFY(test::isNear(image.pixelColor(1, 4 + 8), band));
    for (int row = 1; row < rows; ++row) {
        QCOMPARE(image.pixelColor(1, 4 + row * 17 + 8).rgb(), fixture.gutter.backgroundColor.rgb());
    }
}

void SimpleLineNumberViewTest::aWrappedLineHasOneNumber()
{
    Fixture fixture(QString(200, u'x') + QStringLiteral("\nsecond"));
    QVERIFY(fixture.text.visibleRows().size() >= 4);
    const QImage image = fixture.picture();
    QVERIFY(fixture.rowHas(image, 0, 30, 55, fixture.gutter.textColor));
    QVERIFY(!fixture.rowHas(image, 1, 30, 55, fixture.gutter.textColor));
}

void SimpleLineNumberViewTest::aRowIsSeventeenHigh()
{
    Fixture fixture(foldable);
    const auto lineAt = [&fixture](qreal y) { return lineAtRow(fixture.text, y).value_or(0); };
    QCOMPARE(lineAt(3.9), qsizetype(0));
    QCOMPARE(lineAt(4), qsizetype(1));
    QCOMPARE(lineAt(20.9), qsizetype(1));
    QCOMPARE(lineAt(21), qsizetype(2));
    QCOMPARE(lineAt(4 + 5 * 17 - 0.1), qsizetype(5));
    QCOMPARE(lineAt(4 + 5 * 17), qsizetype(0));
}

void SimpleLineNumberViewTest::theFirstNumberBelowThePartOfAWrappedLineIsTheNextLines()
{
    // The second line takes ten rows or more.
    Fixture fixture(QStringLiteral("first\n") + QStringLiteral("word ").repeated(160) + QStringLiteral("\nthird\n") +
                    QStringLiteral("more\n").repeated(100));
    const qreal second = 4 + 17;
    const qsizetype rows = qRound((fixture.text.caretRect({806 + 1, false}).top() - second) / 17);
    QVERIFY(rows >= 10);
    const auto firstRow = [&fixture](qreal y) {
        fixture.text.scrollToY(y);
        return numberedRows(fixture.text).front();
    };
    QCOMPARE(firstRow(second).line, qsizetype(2));
    QCOMPARE(firstRow(second).top, 0.0);
    // Its number is seen as long as a part of its first row is.
    QCOMPARE(firstRow(second + 10).line, qsizetype(2));
    QCOMPARE(firstRow(second + 10).top, -10.0);
    for (const qsizetype hidden : {qsizetype(1), qsizetype(5), rows - 1}) {
        const NumberedRow row = firstRow(second + static_cast<qreal>(hidden) * 17);
        QCOMPARE(row.line, qsizetype(3));
        QCOMPARE(row.top, static_cast<qreal>(rows - hidden) * 17);
        QCOMPARE(lineAtRow(fixture.text, 0), std::nullopt);
        QCOMPARE(lineAtRow(fixture.text, row.top + 16), std::optional<qsizetype>(3));
    }
    QCOMPARE(firstRow(second + static_cast<qreal>(rows) * 17).line, qsizetype(3));
}

void SimpleLineNumberViewTest::aLineThatFillsTheViewHasNoNumberThere()
{
    Fixture fixture(QStringLiteral("first\n") + QStringLiteral("word ").repeated(4000) + QStringLiteral("\nthird"));
    fixture.text.scrollToY(17 * 20);
    QVERIFY(numberedRows(fixture.text).empty());
    const QImage image = fixture.picture();
    for (int row = 0; row < 20; ++row) {
        QVERIFY(!fixture.rowHas(image, row, 0, 55, fixture.gutter.textColor));
    }
}

void SimpleLineNumberViewTest::numbersCountLineFeeds()
{
    Fixture fixture(QString(QStringLiteral("x\r\n")).repeated(500));
    fixture.text.scrollToY(17 * 100);
    const QImage scrolled = fixture.picture();
    Fixture same(QString(QStringLiteral("x\n")).repeated(500));
    same.text.scrollToY(17 * 100);
    QCOMPARE(scrolled, same.picture());
    same.text.scrollToY(17 * 101);
    QVERIFY(scrolled != same.picture());
}

void SimpleLineNumberViewTest::hiddenLinesAreNotSkippedOver()
{
    Fixture fixture(foldable);
    fixture.folding.fold(fixture.folding.foldableRegions().front());
    // "{", the placeholder with the closing brace, and "last": numbers 1 to 3, as for any text of three lines.
    const QImage folded = fixture.picture().copy(30, 0, 25, 100);
    Fixture three(QStringLiteral("a\nb\nc"));
    QCOMPARE(folded, three.picture().copy(30, 0, 25, 100));
}

void SimpleLineNumberViewTest::thePointingHandShowsOverTriangles()
{
    Fixture fixture(foldable);
    QTest::mouseMove(&fixture.gutter, {10, 10});
    QTRY_COMPARE(fixture.gutter.cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseMove(&fixture.gutter, {30, 10});
    QTRY_COMPARE(fixture.gutter.cursor().shape(), Qt::ArrowCursor);
    QTest::mouseMove(&fixture.gutter, {10, 30});
    QTRY_COMPARE(fixture.gutter.cursor().shape(), Qt::ArrowCursor);
}

void SimpleLineNumberViewTest::numbersStandRightAligned()
{
    Fixture fixture(QStringLiteral("a"));
    const QImage image = fixture.picture();
    for (int y = 4; y < 21; ++y) {
        for (int x = 55 - 8; x < 55; ++x) {
            QCOMPARE(image.pixelColor(x, y).rgb(), fixture.gutter.backgroundColor.rgb());
        }
    }
    bool drawn = false;
    for (int y = 4; y < 21; ++y) {
        for (int x = 55 - 8 - 8; x < 55 - 8; ++x) {
            drawn = drawn || image.pixelColor(x, y).rgb() != fixture.gutter.backgroundColor.rgb();
        }
    }
    QVERIFY(drawn);
}

void SimpleLineNumberViewTest::longNumbersAreWhole_data()
{
    QTest::addColumn<int>("digits");
    for (const int digits : {5, 6, 7, 8}) {
        QTest::addRow("%d digits", digits) << digits;
    }
}

void SimpleLineNumberViewTest::longNumbersAreWhole()
{
    QFETCH(int, digits);
    Fixture fixture(QString(static_cast<qsizetype>(std::pow(10, digits - 1)) + 20, u'\n'));
    fixture.text.scrollToY(fixture.text.pageHeight());
    const std::vector<test::Ink> inks = test::inksOf(fixture.gutter);
    QVERIFY(!inks.empty());
    const test::Ink& last = inks.back();
    QCOMPARE(last.text.size(), digits);
    // Eight points from the right as ever, and not cut at the left.
    QVERIFY2(last.place.left() > 0, qPrintable(QString::number(last.place.left())));
    QVERIFY(last.place.right() <= 55 - 8);
    // Up to six digits find room in figures of the common size.
    const int common = QFontMetrics(style::monospaced(12)).height();
    QCOMPARE(last.place.height() >= common, digits <= 6);
}

const kelm::test::Registered<SimpleLineNumberViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace simple_line_number_view_test

#include "simple_line_number_view_test.moc"
