#include "app/language/language.h"
#include "app/state/window_tabs.h"
#include "git/panel/source_control_tab.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QDir>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <QXmlStreamReader>
#include <QtTest>

namespace icons_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

const QColor tint(0x12, 0x9a, 0xe0);

QString pathOf(const QString& name)
{
    return u":/icons/"_s + name + u".svg"_s;
}

QImage imageOf(const QPixmap& pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
}

/// The covered pixels.
QRect inkOf(const QImage& image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

int pixelsCoveredWhole(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += qAlpha(image.pixel(x, y)) > 240 ? 1 : 0;
        }
    }
    return count;
}

/// The sum of the coverage, in whole pixels.
qreal inkAmount(const QImage& image)
{
    qreal sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += qAlpha(image.pixel(x, y)) / 255.0;
        }
    }
    return sum;
}

QImage painted(const QString& name, QSize points, const QRectF& rectangle, qreal ratio, QPointF offset = {})
{
    QImage image(points * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(offset);
    icons::paint(painter, name, rectangle, tint);
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

} // namespace

class IconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theNamesAreTheFilesSorted();
    void thereIsASymbolForEachNameInUse_data();
    void thereIsASymbolForEachNameInUse();
    void eachSymbolIsAPlainDrawingOnTheGrid_data();
    void eachSymbolIsAPlainDrawingOnTheGrid();
    void eachSymbolStaysInItsSquare_data();
    void eachSymbolStaysInItsSquare();
    void eachSymbolIsInTheMiddleOfItsSquare_data();
    void eachSymbolIsInTheMiddleOfItsSquare();
    void eachSymbolIsAllInTheTint_data();
    void eachSymbolIsAllInTheTint();
    void eachSymbolIsDrawnInDevicePixels_data();
    void eachSymbolIsDrawnInDevicePixels();
    void nothingIsCutOffInASmallSize_data();
    void nothingIsCutOffInASmallSize();
    void aSmallSymbolHasEdgesOnThoseOfPixels_data();
    void aSmallSymbolHasEdgesOnThoseOfPixels();
    void strokesAreThickerWhereSmallAndThinnerWhereLarge();
    void strokesAreOfOneWeightInEachSize_data();
    void strokesAreOfOneWeightInEachSize();
    void aPixmapIsKept();
    void aTintOfItsOwnOpacityKeepsIt();
    void paintingHitsWholeDevicePixels_data();
    void paintingHitsWholeDevicePixels();
    void anOblongRectangleHoldsTheSymbolInItsMiddle();
    void aScaledPainterGetsAsManyPixelsAsItShows();
    void aTurnedPainterDrawsToo();
    void noNameAndNoSizeDrawNothing();
    void anUnknownNameDrawsNothingAndIsLoggedOnce();
    void anIconTakesThePalettesColours_data();
    void anIconTakesThePalettesColours();
    void anIconFollowsThePalette();
    void anIconOfAHueFollowsThePaletteAndIsPaleWhileDisabled();
    void anIconHasTheSizeAndScaleAskedFor();
    void anIconOfAnUnknownNameIsNull();
    void theApplicationsIconComesInTheSizesOfWindows();
};

void IconsTest::init()
{
    QPixmapCache::clear();
}

namespace {

void addNames()
{
    QTest::addColumn<QString>("name");
    for (const QString& name : icons::names()) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

} // namespace

void IconsTest::theNamesAreTheFilesSorted()
{
    const QStringList names = icons::names();
    QStringList sorted = names;
    sorted.sort();
    QCOMPARE(names, sorted);
    QStringList files = QDir(QStringLiteral(KELM_ICON_FOLDER)).entryList({u"*.svg"_s}, QDir::Files);
    files.replaceInStrings(u".svg"_s, QString());
    files.sort();
    QVERIFY(!files.isEmpty());
    QCOMPARE(names, files);
}

void IconsTest::thereIsASymbolForEachNameInUse_data()
{
    QTest::addColumn<QString>("name");
    // What the views name themselves.
    for (const char* name : {"arrow.clockwise",
                             "arrow.down.circle",
                             "arrow.down.right.circle",
                             "arrow.down.to.line",
                             "arrow.right.circle",
                             "arrow.triangle.branch",
                             "arrow.triangle.merge",
                             "arrow.triangle.swap",
                             "arrow.up.circle",
                             "arrow.up.right.square",
                             "arrow.up.to.line",
                             "arrow.uturn.backward",
                             "arrow.uturn.backward.circle",
                             "arrow.uturn.forward",
                             "bell",
                             "book",
                             "checkmark",
                             "checkmark.circle.fill",
                             "chevron.down",
                             "chevron.left",
                             "chevron.left.forwardslash.chevron.right",
                             "chevron.right",
                             "circle",
                             "clock",
                             "cloud",
                             "curlybraces",
                             "doc",
                             "doc.on.doc",
                             "doc.richtext",
                             "doc.text",
                             "exclamationmark.triangle",
                             "exclamationmark.triangle.fill",
                             "externaldrive.badge.questionmark",
                             "folder",
                             "folder.badge.questionmark",
                             "folder.fill",
                             "gear",
                             "globe",
                             "graduationcap.fill",
                             "keyboard",
                             "magnifyingglass",
                             "minus",
                             "minus.circle",
                             "network",
                             "number",
                             "paintbrush",
                             "paintpalette",
                             "pencil",
                             "play.fill",
                             "plus",
                             "plus.circle",
                             "plus.square.on.square",
                             "puzzlepiece.extension",
                             "rectangle.bottomthird.inset.filled",
                             "rectangle.split.3x1",
                             "sidebar.left",
                             "square.and.arrow.down",
                             "square.and.arrow.down.on.square",
                             "stop.fill",
                             "swift",
                             "tag",
                             "tag.fill",
                             "terminal",
                             "text.alignleft",
                             "textformat",
                             "trash",
                             "tray.and.arrow.up",
                             "tray.full",
                             "xmark",
                             "xmark.circle.fill"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
    // What comes from tables.
    const auto addRow = [](const char* table, const QString& title, const QString& name) {
        QTest::addRow("%s: %s", table, qPrintable(title)) << name;
    };
    for (const Language& language : Language::allCases()) {
        addRow("language", language.rawValue(), language.iconName());
    }
    for (const SidebarTab& tab : SidebarTab::allCases()) {
        addRow("sidebar", tab.helpLabel(), tab.iconName());
    }
    for (const BottomPanelTab& tab : BottomPanelTab::allCases()) {
        addRow("bottom panel", tab.label(), tab.iconName());
    }
    for (const SourceControlTab tab : allSourceControlTabs) {
        addRow("source control", label(tab), symbol(tab));
    }
}

void IconsTest::thereIsASymbolForEachNameInUse()
{
    QFETCH(const QString, name);
    QVERIFY(icons::has(name));
    QVERIFY(icons::names().contains(name));
}

void IconsTest::eachSymbolIsAPlainDrawingOnTheGrid_data()
{
    addNames();
}

void IconsTest::eachSymbolIsAPlainDrawingOnTheGrid()
{
    QFETCH(const QString, name);
    QFile file(pathOf(name));
    QVERIFY(file.open(QFile::ReadOnly));
    const QByteArray drawing = file.readAll();
    QVERIFY(drawing.contains("stroke-width=\"1.75\""));
    QXmlStreamReader reader(drawing);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        const QStringList known{u"svg"_s, u"g"_s, u"path"_s, u"circle"_s, u"ellipse"_s, u"rect"_s};
        QVERIFY2(known.contains(reader.name().toString()), qPrintable(reader.name().toString()));
        for (const char* colour : {"fill", "stroke"}) {
            const QStringView value = reader.attributes().value(QLatin1String(colour));
            QVERIFY(value.isEmpty() || value == u"none" || value == u"#000");
        }
        // One weight for all strokes.
        const QStringView width = reader.attributes().value(u"stroke-width"_s);
        QVERIFY(width.isEmpty() || width == u"1.75");
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    const QSvgRenderer renderer(drawing);
    QVERIFY(renderer.isValid());
    QCOMPARE(renderer.viewBoxF(), QRectF(0, 0, 24, 24));
}

void IconsTest::eachSymbolStaysInItsSquare_data()
{
    addNames();
}

void IconsTest::eachSymbolStaysInItsSquare()
{
    QFETCH(const QString, name);
    // On paper that is wider by a sixth all round, at ten pixels a unit.
    constexpr int unit = 10;
    QSvgRenderer renderer(pathOf(name));
    QImage image(32 * unit, 32 * unit, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(4 * unit, 4 * unit, 24 * unit, 24 * unit));
    painter.end();
    const QRect ink = inkOf(image);
    QVERIFY(!ink.isEmpty());
    // Half a unit less, for the strokes of small sizes, which are wider.
    const QRect square = QRect(4 * unit, 4 * unit, 24 * unit, 24 * unit).adjusted(5, 5, -5, -5);
    QVERIFY2(square.contains(ink), qPrintable(QDebug::toString(ink)));
    // Nor is it lost in there.
    QVERIFY(std::max(ink.width(), ink.height()) > 12 * unit);
}

void IconsTest::eachSymbolIsInTheMiddleOfItsSquare_data()
{
    addNames();
}

void IconsTest::eachSymbolIsInTheMiddleOfItsSquare()
{
    QFETCH(const QString, name);
    constexpr int extent = 240;
    const QRectF ink = inkOf(imageOf(icons::pixmap(name, extent, tint, 1)));
    // What points to one side, or hangs, stands a little off.
    constexpr qreal tolerance = extent / 24.0;
    QVERIFY2(qAbs(ink.center().x() - extent / 2.0) <= tolerance, qPrintable(QDebug::toString(ink)));
    QVERIFY2(qAbs(ink.center().y() - extent / 2.0) <= tolerance, qPrintable(QDebug::toString(ink)));
}

void IconsTest::eachSymbolIsAllInTheTint_data()
{
    addNames();
}

void IconsTest::eachSymbolIsAllInTheTint()
{
    QFETCH(const QString, name);
    const QImage image = imageOf(icons::pixmap(name, 24, tint, 1));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.alpha() > 200) {
                // Premultiplied colours lose a step or two.
                QVERIFY(qAbs(color.red() - tint.red()) <= 2);
                QVERIFY(qAbs(color.green() - tint.green()) <= 2);
                QVERIFY(qAbs(color.blue() - tint.blue()) <= 2);
            }
        }
    }
}

void IconsTest::eachSymbolIsDrawnInDevicePixels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<int>("extent");
    for (const QString& name : icons::names()) {
        QTest::addRow("%s 9", qPrintable(name)) << name << 9 << 1.0 << 9;
        QTest::addRow("%s 13 at 1.5", qPrintable(name)) << name << 13 << 1.5 << 20;
        QTest::addRow("%s 16 at 2", qPrintable(name)) << name << 16 << 2.0 << 32;
        QTest::addRow("%s 60 at 2", qPrintable(name)) << name << 60 << 2.0 << 120;
    }
}

void IconsTest::eachSymbolIsDrawnInDevicePixels()
{
    QFETCH(const QString, name);
    QFETCH(const int, size);
    QFETCH(const qreal, ratio);
    QFETCH(const int, extent);
    const QPixmap pixmap = icons::pixmap(name, size, tint, ratio);
    QCOMPARE(pixmap.size(), QSize(extent, extent));
    QCOMPARE(pixmap.devicePixelRatio(), ratio);
    // At its own pixels there are whole ones; something small that was drawn up would have few.
    QVERIFY(pixelsCoveredWhole(imageOf(pixmap)) > 0 || extent < 12);
    QVERIFY(inkAmount(imageOf(pixmap)) > 0.03 * extent * extent);
}

void IconsTest::nothingIsCutOffInASmallSize_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    for (const QString& name : icons::names()) {
        for (const int size : {9, 10, 11, 12, 13, 14, 15, 16, 20}) {
            QTest::addRow("%s %d", qPrintable(name), size) << name << size;
        }
    }
}

void IconsTest::nothingIsCutOffInASmallSize()
{
    QFETCH(const QString, name);
    QFETCH(const int, size);
    // As a part of its square it has the ink of a large one with the same strokes, give or take what two thirds of a
    // pixel to a side change.
    QFile file(pathOf(name));
    QVERIFY(file.open(QFile::ReadOnly));
    const qreal stroke = std::max(1.75, 24.96 / size);
    QSvgRenderer renderer(
        file.readAll().replace("stroke-width=\"1.75\"", "stroke-width=\"" + QByteArray::number(stroke) + '"'));
    QImage large(240, 240, QImage::Format_ARGB32_Premultiplied);
    large.fill(Qt::transparent);
    QPainter painter(&large);
    renderer.render(&painter);
    painter.end();
    const qreal expected = inkAmount(large) / (240.0 * 240.0);
    const QImage image = imageOf(icons::pixmap(name, size, tint, 1));
    const qreal found = inkAmount(image) / (size * size);
    const qreal smallest = std::pow((size - 2 / 3.0) / size, 2);
    const qreal largest = std::pow((size + 4 / 3.0) / size, 2);
    QVERIFY2(found > expected * smallest * 0.95, qPrintable(u"%1 of %2"_s.arg(found).arg(expected)));
    QVERIFY2(found < expected * largest * 1.1, qPrintable(u"%1 of %2"_s.arg(found).arg(expected)));
}

void IconsTest::aSmallSymbolHasEdgesOnThoseOfPixels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("whole");
    // Bars that are a pixel thick: as many whole pixels as they are long, but for the round ends.
    QTest::newRow("minus 9") << u"minus"_s << 9 << 0;
    QTest::newRow("minus 12") << u"minus"_s << 12 << 7;
    QTest::newRow("minus 13") << u"minus"_s << 13 << 7;
    QTest::newRow("minus 16") << u"minus"_s << 16 << 9;
    QTest::newRow("plus 12") << u"plus"_s << 12 << 12;
    QTest::newRow("plus 13") << u"plus"_s << 13 << 12;
    QTest::newRow("plus 16") << u"plus"_s << 16 << 18;
    QTest::newRow("text.alignleft 12") << u"text.alignleft"_s << 12 << 22;
    QTest::newRow("sidebar.left 12") << u"sidebar.left"_s << 12 << 24;
    QTest::newRow("doc 13") << u"doc"_s << 13 << 14;
}

void IconsTest::aSmallSymbolHasEdgesOnThoseOfPixels()
{
    QFETCH(const QString, name);
    QFETCH(const int, size);
    QFETCH(const int, whole);
    const int found = pixelsCoveredWhole(imageOf(icons::pixmap(name, size, tint, 1)));
    QVERIFY2(found >= whole, qPrintable(QString::number(found)));
}

void IconsTest::strokesAreThickerWhereSmallAndThinnerWhereLarge()
{
    // The ink of a bar is its length times its width, so the part of the square that it covers tells the width.
    const auto part = [](int size, qreal ratio) {
        const QImage image = imageOf(icons::pixmap(u"minus"_s, size, tint, ratio));
        return inkAmount(image) / (image.width() * image.height());
    };
    QVERIFY(part(9, 1) > part(24, 1) * 1.1);
    QVERIFY(part(9, 2) < part(9, 1));
    QVERIFY(qAbs(part(9, 3) - part(24, 1)) < part(24, 1) * 0.05);
    QVERIFY(part(60, 1) < part(24, 1) * 0.8);
    // That is a matter of points: more pixels do not change it.
    QVERIFY(qAbs(part(60, 2) - part(60, 1)) < part(60, 1) * 0.03);
}

void IconsTest::strokesAreOfOneWeightInEachSize_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    QTest::addColumn<qreal>("ratio");
    for (const QString& name : icons::names()) {
        if (name.endsWith(u".fill"_s) || name == u"swift"_s || name == u"paintbrush"_s) {
            continue;
        }
        for (const int size : {16, 20, 24}) {
            for (const qreal ratio : {1.0, 2.0}) {
                QTest::addRow("%s %d at %g", qPrintable(name), size, ratio) << name << size << ratio;
            }
        }
    }
}

void IconsTest::strokesAreOfOneWeightInEachSize()
{
    // The darkest pixel tells a stroke from a pale smear between two of them.
    QFETCH(const QString, name);
    QFETCH(const int, size);
    QFETCH(const qreal, ratio);
    const QImage image = imageOf(icons::pixmap(name, size, tint, ratio));
    const auto stroke = std::max<qreal>(1.04, 1.75 / 24 * size * ratio);
    // Ink by the length of what it follows: half of its outline.
    int edges = 0;
    for (int y = 1; y < image.height(); ++y) {
        for (int x = 1; x < image.width(); ++x) {
            const int here = qAlpha(image.pixel(x, y));
            edges += std::abs(here - qAlpha(image.pixel(x - 1, y))) + std::abs(here - qAlpha(image.pixel(x, y - 1)));
        }
    }
    // A slope has more of such edges than it is long, 1.27 times on the average of all directions.
    const qreal width = inkAmount(image) / (edges / 255.0 / 2 / 1.13);
    QVERIFY2(width > stroke * 0.75 && width < stroke * 1.6, qPrintable(u"%1 for %2"_s.arg(width).arg(stroke)));
}

void IconsTest::aPixmapIsKept()
{
    const QPixmap first = icons::pixmap(u"gear"_s, 16, tint, 2);
    QCOMPARE(icons::pixmap(u"gear"_s, 16, tint, 2).cacheKey(), first.cacheKey());
    QVERIFY(icons::pixmap(u"gear"_s, 16, Qt::red, 2).cacheKey() != first.cacheKey());
    QVERIFY(icons::pixmap(u"gear"_s, 12, tint, 2).cacheKey() != first.cacheKey());
    QVERIFY(icons::pixmap(u"globe"_s, 16, tint, 2).cacheKey() != first.cacheKey());
    // As many pixels, but not as many points.
    const QPixmap other = icons::pixmap(u"gear"_s, 32, tint, 1);
    QCOMPARE(other.devicePixelRatio(), 1.0);
    QCOMPARE(other.size(), first.size());
}

void IconsTest::aTintOfItsOwnOpacityKeepsIt()
{
    QColor half = tint;
    half.setAlphaF(0.5F);
    const QImage image = imageOf(icons::pixmap(u"folder.fill"_s, 24, half, 1));
    QVERIFY(qAbs(image.pixelColor(12, 14).alpha() - 128) <= 1);
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
}

void IconsTest::paintingHitsWholeDevicePixels_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<QPointF>("offset");
    QTest::addColumn<QPoint>("corner");
    QTest::newRow("on a pixel") << 1.0 << QPointF(3, 4) << QPointF() << QPoint(3, 4);
    QTest::newRow("between pixels") << 1.0 << QPointF(3.4, 4.6) << QPointF() << QPoint(3, 5);
    QTest::newRow("at 2, on half a point") << 2.0 << QPointF(3.5, 4) << QPointF() << QPoint(7, 8);
    QTest::newRow("at 2, between pixels") << 2.0 << QPointF(3.6, 4) << QPointF() << QPoint(7, 8);
    QTest::newRow("in a moved painter") << 1.0 << QPointF(3, 4) << QPointF(0.4, 1.7) << QPoint(3, 6);
    QTest::newRow("at 1.5") << 1.5 << QPointF(4, 6) << QPointF() << QPoint(6, 9);
    QTest::newRow("at 1.5, between pixels") << 1.5 << QPointF(3, 4) << QPointF(0, 1) << QPoint(5, 8);
    QTest::newRow("at 1.25") << 1.25 << QPointF(3, 5) << QPointF() << QPoint(4, 6);
}

void IconsTest::paintingHitsWholeDevicePixels()
{
    QFETCH(const qreal, ratio);
    QFETCH(const QPointF, place);
    QFETCH(const QPointF, offset);
    QFETCH(const QPoint, corner);
    constexpr int size = 16;
    const QImage image = painted(u"doc.text"_s, QSize(40, 40), QRectF(place, QSizeF(size, size)), ratio, offset);
    const QImage symbol = imageOf(icons::pixmap(u"doc.text"_s, size, tint, ratio));
    const QRect box(corner, symbol.size());
    QImage found = image.copy(box);
    found.setDevicePixelRatio(symbol.devicePixelRatio());
    QCOMPARE(found, symbol);
    // And nowhere else.
    QVERIFY(qAbs(inkAmount(image) - inkAmount(symbol)) < 0.01);
}

void IconsTest::anOblongRectangleHoldsTheSymbolInItsMiddle()
{
    const QImage wide = painted(u"circle"_s, QSize(40, 40), QRectF(2, 10, 36, 16), 1);
    const QImage square = painted(u"circle"_s, QSize(40, 40), QRectF(12, 10, 16, 16), 1);
    QVERIFY(!inkOf(wide).isEmpty());
    QCOMPARE(wide, square);
    QCOMPARE(painted(u"circle"_s, QSize(40, 40), QRectF(10, 2, 16, 36), 1),
             painted(u"circle"_s, QSize(40, 40), QRectF(10, 12, 16, 16), 1));
}

void IconsTest::aScaledPainterGetsAsManyPixelsAsItShows()
{
    QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(3, 3);
    icons::paint(painter, u"gear"_s, QRectF(2, 2, 16, 16), tint);
    painter.end();
    QImage found = image.convertToFormat(QImage::Format_ARGB32).copy(6, 6, 48, 48);
    found.setDevicePixelRatio(3);
    QCOMPARE(found, imageOf(icons::pixmap(u"gear"_s, 16, tint, 3)));
}

void IconsTest::aTurnedPainterDrawsToo()
{
    QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(20, 20);
    painter.rotate(90);
    icons::paint(painter, u"chevron.right"_s, QRectF(-12, -12, 24, 24), tint);
    painter.end();
    // A chevron to the right, turned clockwise, points down: it is wider than high.
    const QRect ink = inkOf(image);
    QVERIFY(ink.width() > ink.height());
    QVERIFY(QRect(8, 8, 24, 24).contains(ink));
}

void IconsTest::noNameAndNoSizeDrawNothing()
{
    QVERIFY(icons::pixmap(QString(), 16, tint, 1).isNull());
    QVERIFY(icons::pixmap(u"gear"_s, 0, tint, 1).isNull());
    QVERIFY(icons::pixmap(u"gear"_s, -3, tint, 1).isNull());
    QVERIFY(inkOf(painted(QString(), QSize(20, 20), QRectF(0, 0, 20, 20), 1)).isEmpty());
    QVERIFY(inkOf(painted(u"gear"_s, QSize(20, 20), QRectF(5, 5, 0, 10), 1)).isEmpty());
    QVERIFY(!icons::has(QString()));
}

void IconsTest::anUnknownNameDrawsNothingAndIsLoggedOnce()
{
    QByteArray error;
    QCOMPARE(runRole(u"drawUnknown"_s, {}, nullptr, &error), 0);
    QCOMPARE(error.count("no.such.symbol"), 1);
    QCOMPARE(error.count("nor.such.a.one"), 1);
    QCOMPARE(error.count("gear"), 0);
}

void IconsTest::anIconTakesThePalettesColours_data()
{
    QTest::addColumn<QIcon::Mode>("mode");
    QTest::addColumn<QColor>("color");
    QTest::newRow("normal") << QIcon::Normal << QColor(Qt::darkGreen);
    QTest::newRow("active") << QIcon::Active << QColor(Qt::darkGreen);
    QTest::newRow("disabled") << QIcon::Disabled << QColor(Qt::darkRed);
    QTest::newRow("selected") << QIcon::Selected << QColor(Qt::darkBlue);
}

void IconsTest::anIconTakesThePalettesColours()
{
    QFETCH(const QIcon::Mode, mode);
    QFETCH(const QColor, color);
    const QPalette before = QGuiApplication::palette();
    QPalette palette = before;
    palette.setColor(QPalette::Active, QPalette::ButtonText, Qt::darkGreen);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::darkRed);
    palette.setColor(QPalette::Active, QPalette::HighlightedText, Qt::darkBlue);
    QGuiApplication::setPalette(palette);
    const QImage image = imageOf(icons::icon(u"folder.fill"_s).pixmap(QSize(24, 24), 1, mode));
    QGuiApplication::setPalette(before);
    QCOMPARE(image.pixelColor(12, 14), color);
}

void IconsTest::anIconFollowsThePalette()
{
    const QPalette before = QGuiApplication::palette();
    const QIcon icon = icons::icon(u"folder.fill"_s);
    QColor seen[2];
    const QColor wanted[2]{Qt::magenta, Qt::cyan};
    for (int turn = 0; turn < 2; ++turn) {
        QPalette palette = before;
        palette.setColor(QPalette::ButtonText, wanted[turn]);
        QGuiApplication::setPalette(palette);
        seen[turn] = imageOf(icon.pixmap(QSize(24, 24), 1)).pixelColor(12, 14);
    }
    QGuiApplication::setPalette(before);
    QCOMPARE(seen[0], wanted[0]);
    QCOMPARE(seen[1], wanted[1]);
}

void IconsTest::anIconOfAHueFollowsThePaletteAndIsPaleWhileDisabled()
{
    const QIcon icon = icons::icon(u"folder.fill"_s, SystemColor::red);
    const QPalette before = QGuiApplication::palette();
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        QGuiApplication::setPalette(style::palette(appearance));
        const QColor wanted = style::ink(SystemColor::red, appearance);
        QCOMPARE(imageOf(icon.pixmap(QSize(24, 24), 1)).pixelColor(12, 14), wanted);
        const QColor disabled = imageOf(icon.pixmap(QSize(24, 24), 1, QIcon::Disabled)).pixelColor(12, 14);
        QCOMPARE(disabled.alpha(), 128);
        QVERIFY(std::abs(disabled.red() - wanted.red()) <= 1);
    }
    QGuiApplication::setPalette(before);
}

void IconsTest::anIconHasTheSizeAndScaleAskedFor()
{
    const QIcon icon = icons::icon(u"gear"_s);
    const QColor tint = QGuiApplication::palette().color(QPalette::Active, QPalette::ButtonText);
    QVERIFY(!icon.isNull());
    QCOMPARE(icon.name(), u"gear"_s);
    const QPixmap once = icon.pixmap(QSize(16, 16), 1);
    QCOMPARE(once.size(), QSize(16, 16));
    QCOMPARE(once.cacheKey(), icons::pixmap(u"gear"_s, 16, tint, 1).cacheKey());
    const QPixmap twice = icon.pixmap(QSize(16, 16), 2);
    QCOMPARE(twice.size(), QSize(32, 32));
    QCOMPARE(twice.devicePixelRatio(), 2.0);
    QCOMPARE(imageOf(twice), imageOf(icons::pixmap(u"gear"_s, 16, tint, 2)));
    QCOMPARE(icon.actualSize(QSize(20, 16)), QSize(16, 16));

    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    icon.paint(&painter, QRect(2, 2, 16, 16));
    painter.end();
    QCOMPARE(image.convertToFormat(QImage::Format_ARGB32).copy(2, 2, 16, 16), imageOf(once));

    QIcon copy = icon;
    copy.detach();
    QCOMPARE(imageOf(copy.pixmap(QSize(16, 16), 1)), imageOf(once));
}

void IconsTest::anIconOfAnUnknownNameIsNull()
{
    const QIcon icon = icons::icon(u"not.a.symbol"_s);
    QVERIFY(icon.isNull());
    QVERIFY(!icons::has(u"not.a.symbol"_s));
}

void IconsTest::theApplicationsIconComesInTheSizesOfWindows()
{
    const QIcon icon = icons::application();
    for (const int extent : {16, 22, 24, 32, 48, 64, 128, 256}) {
        QVERIFY(icon.availableSizes().contains(QSize(extent, extent)));
        const QImage image = imageOf(icon.pixmap(QSize(extent, extent), 1));
        QCOMPARE(image.size(), QSize(extent, extent));
        // A tile with round corners, the bar and the bracket of the letter on it.
        QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(image.pixelColor(extent / 2, extent / 8).alpha(), 255);
        const QColor bar = image.pixelColor(extent * 155 / 512, extent / 2);
        QVERIFY(bar.lightness() > 180);
        const QColor bracket = image.pixelColor(extent * 262 / 512, extent / 2);
        QVERIFY(bracket.red() > bracket.blue() + 60);
    }
}

namespace {

/// 0 when a symbol that there is not draws nothing, and one that there is draws something.
int drawUnknown(const QStringList& /*arguments*/)
{
    bool isEmpty = true;
    for (int turn = 0; turn < 3; ++turn) {
        isEmpty = isEmpty && icons::pixmap(u"no.such.symbol"_s, 16, tint, 1).isNull() &&
                  inkOf(painted(u"no.such.symbol"_s, QSize(20, 20), QRectF(0, 0, 20, 20), 2)).isEmpty() &&
                  icons::pixmap(u"nor.such.a.one"_s, 16, tint, 1).isNull();
    }
    return isEmpty && !icons::pixmap(u"gear"_s, 16, tint, 1).isNull() ? 0 : 1;
}

const kelm::test::Registered<IconsTest> registered(kelm::test::Toolkit::gui, {{u"drawUnknown"_s, drawUnknown}});

} // namespace

} // namespace icons_test

#include "icons_test.moc"
