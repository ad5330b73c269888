#include "git/viewer/view/diff_fonts.h"
#include "git/viewer/view/shown_viewer.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "support/painted_text.h"
#include "support/test_program.h"

#include <cmath>

namespace diff_painter_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Side = SideBySideHunkLines::Side;

/// Of letters that fill their cells, so that each has pixels of nothing but its own colour.
const QString full = u"\u2588\u2588\u2588\u2588\u2588\u2588"_s;

/// A diff of one file whose old and new line numbers have nothing in common. The block's border is drawn over the row
/// behind `lines`.
QString diffWith(const QStringList& lines)
{
    return (QStringList{u"diff --git a/a.txt b/a.txt"_s, u"@@ -7,9 +4444,9 @@"_s} + lines).join(u'\n') + u'\n';
}

/// The rows of the only hunk of a viewer, of which it has drawn a picture.
struct Rows
{
    explicit Rows(ShownViewer& viewer) : shown(viewer), picture(viewer.picture()) {}

    /// The colour in the middle of a row, in the third or fourth of its letters, whatever stands there.
    QColor letter(qsizetype entry, Side side = Side::newSide) const
    {
        const DiffLayout& layout = shown.list().diffLayout();
        const std::vector<DiffColumn>& columns = shown.list().columns();
        const DiffColumn& column = side == Side::oldSide ? columns.front() : columns.back();
        return picture.pixelColor(int(column.bodyLeft) + 20,
                                  int(layout.entryTop(0, 0, entry)) + layout.metrics().row / 2);
    }
    /// A stretch of a row, away from the block's border.
    QRect place(qsizetype entry, qreal left, qreal width) const
    {
        const DiffLayout& layout = shown.list().diffLayout();
        return {int(left) + 2, int(layout.entryTop(0, 0, entry)), int(width) - 2, layout.metrics().row};
    }
    QImage drawn(const QRect& place) const { return ink(picture, place, ground(place)); }
    /// What is behind the text of a stretch, at its upper left corner.
    QColor ground(const QRect& place) const { return picture.pixelColor(place.topLeft()); }
    bool shows(const QRect& place, const QString& text, const QFont& font, const Tint& tint) const
    {
        return isSame(drawn(place), inkOf(text, font, tint, ground(place)));
    }

    ShownViewer& shown;
    QImage picture;
};

/// Whether a number stands at the right of its column, or nothing when it is empty.
bool hasNumber(const Rows& rows, const QRect& place, const QString& number)
{
    if (number.isEmpty()) {
        return rows.drawn(place).isNull();
    }
    return rows.shows(place, number, DiffFonts().lineNumber, Tint::secondary()) &&
           inkRect(rows.picture, place, rows.ground(place)).right() >= place.right() - 2;
}

/// Whether a sign stands in the middle of its column, or nothing when it is a blank.
bool hasSign(const Rows& rows, const QRect& place, const QString& sign)
{
    if (sign == u" ") {
        return rows.drawn(place).isNull();
    }
    const QFont font = DiffFonts().sign;
    // Both columns are of an even width, so a sign of an odd one starts at half a pixel.
    const qreal fraction = QFontMetrics(font).horizontalAdvance(sign) % 2 / 2.0;
    return isSame(rows.drawn(place), inkOf(sign, font, Tint::secondary(), rows.ground(place), fraction));
}

} // namespace

class DiffPainterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qobject_cast<QApplication*>(QCoreApplication::instance())); }

    void fontsHaveTheirSizesAndWeights();
    void unifiedTextHasTheColourOfItsKind();
    void textOfASideHasTheColourOfItsKind();
    void unifiedGutterHasTheOldNumberBeforeTheNew();
    void eachSideHasItsOwnNumbers();
    void headersHaveTheirType();
    void aFilesHeaderHasItsSymbolAndItsCount();
    void aFilesHeaderIsRoundAtItsTopAlone_data();
    void aFilesHeaderIsRoundAtItsTopAlone();
    void theBlockHasItsBorder();
    void sidesAreDivided();
};

void DiffPainterTest::fontsHaveTheirSizesAndWeights()
{
    const DiffFonts fonts;
    const auto isMonospaced = [](const QFont& font, int size, QFont::Weight weight) {
        return font.families() == style::monospaced(size).families() && font.pixelSize() == size &&
               font.weight() == weight && !font.italic();
    };
    QVERIFY(isMonospaced(fonts.body, 12, QFont::Normal));
    QVERIFY(isMonospaced(fonts.sign, 12, QFont::Bold));
    QVERIFY(isMonospaced(fonts.lineNumber, 10, QFont::Normal));
    QVERIFY(isMonospaced(fonts.hunkHeader, 11, QFont::Normal));
    QVERIFY(isMonospaced(fonts.path, 13, QFont::DemiBold));
}

void DiffPainterTest::unifiedTextHasTheColourOfItsKind()
{
    ShownViewer shown(diffWith({u' ' + full, u'-' + full, u' ' + full, u'+' + full, u'\\' + full}));
    const Rows rows(shown);
    const QColor base = shown.list().palette().color(QPalette::Base);
    const QColor context = over(base, Tint::primary());
    QVERIFY(isNear(rows.letter(0), context));
    QVERIFY(isNear(rows.letter(1), inkOver(base, SystemColor::red)));
    QVERIFY(isNear(rows.letter(2), context));
    QVERIFY(isNear(rows.letter(3), inkOver(base, SystemColor::green)));
    QVERIFY(isNear(rows.letter(4), over(over(base, Tint(SystemColor::gray).at(0.05)), Tint::secondary())));
}

void DiffPainterTest::textOfASideHasTheColourOfItsKind()
{
    ShownViewer shown(
        diffWith({u' ' + full, u'-' + full, u'+' + full + full, u'-' + full, u' ' + full, u'+' + full, u'\\' + full}),
        DiffViewMode::sideBySide);
    const Rows rows(shown);
    const QColor base = shown.list().palette().color(QPalette::Base);
    const QColor primary = over(base, Tint::primary());
    const QColor red = inkOver(base, SystemColor::red);
    const QColor green = inkOver(base, SystemColor::green);
    const auto sides = [&rows](qsizetype entry) {
        return std::pair(rows.letter(entry, Side::oldSide), rows.letter(entry, Side::newSide));
    };
    const auto areSides = [&sides](qsizetype entry, const QColor& oldSide, const QColor& newSide) {
        return isNear(sides(entry).first, oldSide) && isNear(sides(entry).second, newSide);
    };
    QVERIFY(areSides(0, primary, primary));
    QVERIFY(areSides(1, red, green));
    QVERIFY(areSides(2, red, base));
    QVERIFY(areSides(3, primary, primary));
    QVERIFY(areSides(4, base, green));
    // It is part of both files, and neither came nor went.
    QVERIFY(areSides(5, primary, primary));
}

void DiffPainterTest::unifiedGutterHasTheOldNumberBeforeTheNew()
{
    ShownViewer shown(diffWith({u" x"_s, u"-x"_s, u"+x"_s, u"\\ No newline"_s, u" x"_s, u" x"_s}));
    const Rows rows(shown);
    const DiffColumn& column = shown.list().columns().front();
    const auto hasGutter = [&](qsizetype entry, const QString& oldNumber, const QString& newNumber,
                               const QString& sign) {
        return hasNumber(rows, rows.place(entry, column.left, 36), oldNumber) &&
               hasNumber(rows, rows.place(entry, column.left + 36, 36), newNumber) &&
               hasSign(rows, rows.place(entry, column.left + 72, 16), sign);
    };
    QVERIFY(hasGutter(0, u"7"_s, u"4444"_s, u" "_s));
    QVERIFY(hasGutter(1, u"8"_s, {}, u"-"_s));
    QVERIFY(hasGutter(2, {}, u"4445"_s, u"+"_s));
    QVERIFY(hasGutter(3, {}, {}, u"\\"_s));
    QVERIFY(hasGutter(4, u"9"_s, u"4446"_s, u" "_s));
}

void DiffPainterTest::eachSideHasItsOwnNumbers()
{
    ShownViewer shown(diffWith({u" x"_s, u"-x"_s, u"+y"_s, u"+z"_s, u"\\ No newline"_s, u" x"_s}),
                      DiffViewMode::sideBySide);
    // Both columns start at a whole pixel.
    shown.viewer.resize(801, 500);
    const Rows rows(shown);
    const auto hasGutter = [&](qsizetype entry, Side side, const QString& number, const QString& sign) {
        const DiffColumn& column = shown.list().columns()[side == Side::oldSide ? 0 : 1];
        return hasNumber(rows, rows.place(entry, column.left, 36), number) &&
               hasSign(rows, rows.place(entry, column.left + 36, 18), sign);
    };
    QCOMPARE(shown.list().columns()[1].left, std::floor(shown.list().columns()[1].left));
    QVERIFY(hasGutter(0, Side::oldSide, u"7"_s, u" "_s));
    QVERIFY(hasGutter(0, Side::newSide, u"4444"_s, u" "_s));
    QVERIFY(hasGutter(1, Side::oldSide, u"8"_s, u"-"_s));
    QVERIFY(hasGutter(1, Side::newSide, u"4445"_s, u"+"_s));
    QVERIFY(hasGutter(2, Side::oldSide, {}, u" "_s));
    QVERIFY(hasGutter(2, Side::newSide, u"4446"_s, u"+"_s));
    QVERIFY(hasGutter(3, Side::oldSide, {}, u"\\"_s));
    QVERIFY(hasGutter(3, Side::newSide, {}, u"\\"_s));
}

void DiffPainterTest::headersHaveTheirType()
{
    ShownViewer shown(diffWith({u" x"_s}));
    const Rows rows(shown);
    const DiffFonts fonts;
    const DiffLayout& layout = shown.list().diffLayout();
    const DiffColumn& column = shown.list().columns().front();
    const int left = int(column.left) + diffSizes::fileHeaderHorizontal + diffSizes::fileSymbol;
    const QRect fileHeader(left, int(layout.fileTop(0)) + 2, 200, layout.metrics().fileHeader - 4);
    QVERIFY(rows.shows(fileHeader, u"a.txt"_s, fonts.path, Tint::primary()));
    const QRect hunkHeader(left, int(layout.hunkTop(0, 0)) + 1, 300, layout.metrics().hunkHeader - 2);
    QVERIFY(rows.shows(hunkHeader, u"@@ -7,9 +4444,9 @@"_s, fonts.hunkHeader, SystemColor::blue));
}

void DiffPainterTest::aFilesHeaderHasItsSymbolAndItsCount()
{
    ShownViewer shown(diffWith({u" x"_s}) + u"@@ -30 +40 @@\n z\n"_s);
    const Rows rows(shown);
    const DiffFonts fonts;
    const DiffLayout& layout = shown.list().diffLayout();
    const DiffColumn& column = shown.list().columns().front();
    const QRect header(int(column.left), int(layout.fileTop(0)), int(column.right - column.left),
                       layout.metrics().fileHeader);
    const QRectF square(header.left() + 10, QRectF(header).center().y() - 7, 14, 14);
    const QColor ground = rows.ground(square.toAlignedRect());
    QImage wanted(rows.picture.size(), QImage::Format_RGB32);
    wanted.fill(ground);
    QPainter painter(&wanted);
    painter.setRenderHint(QPainter::Antialiasing);
    icons::paint(painter, u"doc.text"_s, square, style::ink(Tint::primary(), Appearance::dark));
    painter.end();
    QVERIFY(isSame(rows.picture.copy(square.toAlignedRect()), wanted.copy(square.toAlignedRect())));

    const QRect count(header.right() - 100, header.top() + 2, 94, header.height() - 4);
    QVERIFY(isText(rows.drawn(count), u"2 hunks"_s, fonts.hunkCount, Tint::secondary(), rows.ground(count)));
    // It ends at the header's padding.
    QVERIFY(std::abs(inkRect(rows.picture, count, rows.ground(count)).right() - (header.right() - 10)) <= 1);

    const auto height = [](const QFont& font) { return int(std::ceil(QFontMetricsF(font).height())); };
    QCOMPARE(layout.metrics().fileHeader, 2 * 8 + std::max(height(fonts.path), height(fonts.hunkCount)));
    QCOMPARE(layout.metrics().hunkHeader, 2 * 4 + height(fonts.hunkHeader));
}

void DiffPainterTest::aFilesHeaderIsRoundAtItsTopAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isCollapsed");
    QTest::addColumn<Tint>("lowestGround");
    QTest::newRow("no hunk") << u"diff --git a/i.png b/i.png\nBinary files a/i.png and b/i.png differ\n"_s << false
                             << Tint::secondary().at(0.08);
    QTest::newRow("collapsed") << diffWith({u"-x"_s}) << true << Tint(SystemColor::blue).at(0.06);
    QTest::newRow("removed line") << diffWith({u"-x"_s}) << false << Tint(SystemColor::red).at(0.1);
}

void DiffPainterTest::aFilesHeaderIsRoundAtItsTopAlone()
{
    QFETCH(QString, text);
    QFETCH(bool, isCollapsed);
    QFETCH(Tint, lowestGround);
    ShownViewer shown(text);
    const DiffLayout& layout = shown.list().diffLayout();
    if (isCollapsed) {
        shown.viewer.toggleHunk(layout.files()[0].hunks[0].id);
    }
    const QImage picture = shown.picture();
    const QColor base = shown.list().palette().color(QPalette::Base);
    const DiffColumn& column = shown.list().columns().front();
    const int top = int(layout.fileTop(0));
    const int bottom = int(layout.fileTop(0) + layout.fileHeight(0)) - 1;
    for (const int x : {int(column.left), int(column.right) - 1}) {
        QVERIFY(isNear(picture.pixelColor(x, top), base));
        // What stands lowest fills its row up to the corners, which the border alone goes round.
        QVERIFY(isNear(picture.pixelColor(x, bottom), over(base, lowestGround)));
        // The border's own radius is 6 too, so that it passes within these.
        const int inwards = x == int(column.left) ? x + 1 : x - 1;
        QVERIFY(isNear(picture.pixelColor(inwards, top + 1), base));
        QVERIFY(isNear(picture.pixelColor(inwards, bottom - 1), over(base, lowestGround)));
    }
    // A quarter circle of 6 points: at its foot the header is as wide as the block.
    const QColor header = over(base, Tint::secondary().at(0.08));
    QVERIFY(isNear(picture.pixelColor(int(column.left) + 2, top + 6), header));
    QVERIFY(isNear(picture.pixelColor(int(column.left) + 1, top), base));
}

void DiffPainterTest::theBlockHasItsBorder()
{
    ShownViewer shown(diffWith({u" x"_s, u" x"_s}) + u"diff --git a/b b/b\n"_s);
    const QImage picture = shown.picture();
    const DiffLayout& layout = shown.list().diffLayout();
    const DiffColumn& column = shown.list().columns().front();
    const QColor base = shown.list().palette().color(QPalette::Base);
    const QColor line = over(base, Tint::secondary().at(0.2));
    const int y = int(layout.entryTop(0, 0, 0)) + 2;
    // 12 points all round, and between the blocks.
    QCOMPARE(int(column.left), 12);
    QCOMPARE(int(column.right), shown.list().viewport()->width() - 12);
    QCOMPARE(layout.fileTop(0), 12);
    QCOMPARE(layout.fileTop(1), layout.fileTop(0) + layout.fileHeight(0) + 12);
    for (const auto& [edge, inwards] : {std::pair(int(column.left), 1), std::pair(int(column.right) - 1, -1)}) {
        QVERIFY(isNear(picture.pixelColor(edge, y), line));
        QVERIFY(isNear(picture.pixelColor(edge - inwards, y), base));
        QVERIFY(isNear(picture.pixelColor(edge + inwards, y), base));
    }
    const int bottom = int(layout.fileTop(0) + layout.fileHeight(0)) - 1;
    QVERIFY(isNear(picture.pixelColor(400, bottom), line));
    QVERIFY(isNear(picture.pixelColor(400, bottom + 1), base));
}

void DiffPainterTest::sidesAreDivided()
{
    ShownViewer shown(diffWith({u" x"_s, u" x"_s}), DiffViewMode::sideBySide);
    shown.viewer.resize(801, 500);
    const QImage picture = shown.picture();
    const QColor base = shown.list().palette().color(QPalette::Base);
    const std::vector<DiffColumn>& columns = shown.list().columns();
    const int y = int(shown.list().diffLayout().entryTop(0, 0, 0)) + 2;
    QVERIFY(isNear(picture.pixelColor(int(columns[0].right), y), over(base, Tint::secondary().at(0.2))));
    QVERIFY(isNear(picture.pixelColor(int(columns[0].right) - 1, y), base));
    QVERIFY(isNear(picture.pixelColor(int(columns[0].right) + 1, y), over(base, Tint::secondary().at(0.04))));
}

const kelm::test::Registered<DiffPainterTest> registered(kelm::test::Toolkit::widgets);

} // namespace diff_painter_test

#include "diff_painter_test.moc"
