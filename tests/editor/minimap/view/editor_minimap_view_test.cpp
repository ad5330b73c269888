#include "editor/minimap/view/editor_minimap_view.h"
#include "editor/minimap/view/minimap_painter.h"
#include "support/painted.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QPainter>
#include <QtTest>

#include <memory>

namespace editor_minimap_view_test {

using namespace kelm;
using namespace kelm::test;

namespace {

struct Fixture
{
    TextView text;
    EditorMinimapView map;

    explicit Fixture(const QString& content)
    {
        text.resize(600, 400);
        text.storage().setText(content);
        map.setTextView(&text);
        map.resize(80, 400);
        map.theme = EditorTheme::monokai();
        map.applyThemeToLayer();
    }

    QImage picture() { return map.grab().toImage(); }
};

/// But for what rounding makes of edges that are smoothed within another part of the image.
bool areAlike(const QImage& a, const QImage& b)
{
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (distance(a.pixelColor(x, y), b.pixelColor(x, y)) > 5) {
                return false;
            }
        }
    }
    return a.size() == b.size();
}

} // namespace

class EditorMinimapViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsAsItShould();
    void barsBoxAndGroundHaveTheirColours();
    void aLightThemeDarkensItsGround();
    void stripSeparatorAndBorderLieOverEachOther_data();
    void stripSeparatorAndBorderLieOverEachOther();
    void withoutATextOnlyTheGroundIsPainted();
    void clicksAndDragsTellTheLine();
    void ofASqueezedTextTheyTellTheLineToo_data();
    void ofASqueezedTextTheyTellTheLineToo();
    void withoutATextAClickTellsNothing();
    void theMapFollowsEveryEdit_data();
    void theMapFollowsEveryEdit();
    void veryManyLinesComeInTurns();
    void barsLookLikeFilledRectangles_data();
    void barsLookLikeFilledRectangles();
};

void EditorMinimapViewTest::itStartsAsItShould()
{
    EditorMinimapView map;
    QCOMPARE(EditorMinimapView::lineHeight, 3.0);
    QCOMPARE(EditorMinimapView::charWidth, 1.2);
    QVERIFY(map.textView() == nullptr);
    QVERIFY(!map.onLineSelected);
    QVERIFY(map.currentVisibleRect.isNull());
    // A text that goes takes its picture with it.
    auto text = std::make_unique<TextView>();
    text->storage().setText(QString(QStringLiteral("let a = b\n")).repeated(20));
    map.resize(80, 400);
    const QImage without = map.grab().toImage();
    map.setTextView(text.get());
    QVERIFY(map.grab().toImage() != without);
    text.reset();
    QCOMPARE(map.grab().toImage(), without);
    QTest::mouseClick(&map, Qt::LeftButton, {}, {40, 40});
}

void EditorMinimapViewTest::barsBoxAndGroundHaveTheirColours()
{
    Fixture fixture(QStringLiteral("let a = b\n\n") + QString(QStringLiteral("plain text here\n")).repeated(50));
    fixture.map.currentVisibleRect = {0, 170, 600, 340};
    const QImage image = fixture.picture();
    const EditorTheme& theme = EditorTheme::monokai();
    const QColor ground = over(theme.backgroundColor.toColor(), QColor::fromRgbF(1, 1, 1, 0.04F));
    QVERIFY(distance(image.pixelColor(60, 300), ground) <= 1);
    QColor keyword = theme.keywordColor.toColor();
    keyword.setAlphaF(0.8F);
    QVERIFY(distance(image.pixelColor(4, 6), over(ground, keyword)) <= 2);
    // The second line is blank.
    QVERIFY(distance(image.pixelColor(4, 9), ground) <= 1);
    const QColor plain = over(ground, QColor::fromRgbF(1, 1, 1, 0.5F));
    QVERIFY(distance(image.pixelColor(4, 12), plain) <= 2);
    // The bar is 15 characters long and 2.4 points high.
    QVERIFY(distance(image.pixelColor(2 + 17, 12), plain) <= 2);
    QVERIFY(distance(image.pixelColor(2 + 19, 12), ground) <= 1);
    // The box begins with the eleventh line.
    const QColor box = over(ground, QColor::fromRgbF(1, 1, 1, 0.1F));
    QVERIFY(distance(image.pixelColor(60, 34), ground) <= 1);
    QVERIFY(distance(image.pixelColor(60, 36), box) <= 1);
    QVERIFY(distance(image.pixelColor(60, 94), box) <= 1);
    QVERIFY(distance(image.pixelColor(60, 96), ground) <= 1);
}

void EditorMinimapViewTest::aLightThemeDarkensItsGround()
{
    Fixture fixture(QStringLiteral("x"));
    fixture.map.theme = EditorTheme::githubLight();
    const QColor ground = over(Qt::white, QColor::fromRgbF(0, 0, 0, 0.04F));
    const QImage image = fixture.picture();
    QVERIFY(distance(image.pixelColor(60, 300), ground) <= 1);
    QVERIFY(distance(image.pixelColor(60, 10), over(ground, QColor::fromRgbF(0, 0, 0, 0.08F))) <= 1);
}

void EditorMinimapViewTest::stripSeparatorAndBorderLieOverEachOther_data()
{
    QTest::addColumn<int>("theme");
    for (int theme = 0; theme < EditorTheme::allThemes().size(); ++theme) {
        QTest::addRow("%s", qPrintable(EditorTheme::allThemes().at(theme).name)) << theme;
    }
}

void EditorMinimapViewTest::stripSeparatorAndBorderLieOverEachOther()
{
    QFETCH(int, theme);
    Fixture fixture(QStringLiteral("x"));
    fixture.map.theme = EditorTheme::allThemes().at(theme);
    const QColor beside =
        fixture.map.theme.isDark ? QColor::fromRgbF(1, 1, 1, 0.04F) : QColor::fromRgbF(0, 0, 0, 0.04F);
    const QColor ground = over(fixture.map.theme.backgroundColor.toColor(), beside);
    QColor number = fixture.map.theme.lineNumberColor.toColor();
    number.setAlphaF(0.4F);
    const QColor gray(128, 128, 128, 77);
    const QImage image = fixture.picture();
    // From below: the strip, the line that sets the text apart, the border.
    const QColor strip = over(ground, number);
    QVERIFY(distance(image.pixelColor(0, 300), over(over(strip, gray), gray)) <= 2);
    QVERIFY(distance(image.pixelColor(1, 300), ground) <= 1);
    QVERIFY(distance(image.pixelColor(78, 300), ground) <= 1);
    const QColor border = over(ground, gray);
    QVERIFY(distance(image.pixelColor(79, 300), border) <= 2);
    QVERIFY(distance(image.pixelColor(40, 0), border) <= 2);
    QVERIFY(distance(image.pixelColor(40, 1), ground) <= 1);
    QVERIFY(distance(image.pixelColor(40, 399), border) <= 2);
    // Without a text nothing is set apart.
    fixture.map.setTextView(nullptr);
    QVERIFY(distance(fixture.picture().pixelColor(0, 300), over(strip, gray)) <= 2);
}

void EditorMinimapViewTest::withoutATextOnlyTheGroundIsPainted()
{
    EditorMinimapView map;
    map.resize(80, 400);
    map.theme = EditorTheme::monokai();
    const QImage image = map.grab().toImage();
    QCOMPARE(image.pixelColor(60, 10), image.pixelColor(60, 300));
    QTest::mouseClick(&map, Qt::LeftButton, {}, {40, 40});
}

void EditorMinimapViewTest::clicksAndDragsTellTheLine()
{
    Fixture fixture(QString(QStringLiteral("x\n")).repeated(99) + u'x');
    QList<qsizetype> lines;
    fixture.map.onLineSelected = [&](qsizetype line) { lines.append(line); };
    QTest::mousePress(&fixture.map, Qt::LeftButton, {}, {40, 2});
    QTest::mouseMove(&fixture.map, {40, 35});
    QTest::mouseRelease(&fixture.map, Qt::LeftButton, {}, {40, 35});
    QTest::mouseMove(&fixture.map, {40, 90});
    QTest::mouseClick(&fixture.map, Qt::LeftButton, {}, {40, 399});
    QCOMPARE(lines, (QList<qsizetype>{1, 11, 100}));
}

void EditorMinimapViewTest::ofASqueezedTextTheyTellTheLineToo_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<qsizetype>("line");
    // A thousand lines in 390 points: 0.39 points each.
    QTest::newRow("above the first") << 2 << qsizetype(1);
    QTest::newRow("on the first") << 5 << qsizetype(1);
    QTest::newRow("one point below") << 6 << qsizetype(3);
    QTest::newRow("in the middle") << 201 << qsizetype(503);
    QTest::newRow("on the last") << 394 << qsizetype(998);
    QTest::newRow("below the last") << 399 << qsizetype(1000);
}

void EditorMinimapViewTest::ofASqueezedTextTheyTellTheLineToo()
{
    QFETCH(int, y);
    QFETCH(qsizetype, line);
    Fixture fixture(QString(QStringLiteral("x\n")).repeated(999) + u'x');
    QList<qsizetype> lines;
    fixture.map.onLineSelected = [&](qsizetype told) { lines.append(told); };
    QTest::mousePress(&fixture.map, Qt::LeftButton, {}, {40, y});
    QTest::mouseMove(&fixture.map, {40, 100});
    QTest::mouseMove(&fixture.map, {40, y});
    QTest::mouseRelease(&fixture.map, Qt::LeftButton, {}, {40, y});
    QCOMPARE(lines, (QList<qsizetype>{line, 244, line}));
}

void EditorMinimapViewTest::withoutATextAClickTellsNothing()
{
    Fixture fixture(QStringLiteral("a\nb"));
    int told = 0;
    fixture.map.onLineSelected = [&](qsizetype) { ++told; };
    QTest::mouseClick(&fixture.map, Qt::LeftButton, {}, {40, 7});
    QCOMPARE(told, 1);
    QTest::mouseClick(&fixture.map, Qt::RightButton, {}, {40, 7});
    fixture.map.resize(80, 10);
    QTest::mouseClick(&fixture.map, Qt::LeftButton, {}, {40, 7});
    fixture.map.resize(80, 400);
    fixture.map.setTextView(nullptr);
    QTest::mouseClick(&fixture.map, Qt::LeftButton, {}, {40, 7});
    QCOMPARE(told, 1);
}

void EditorMinimapViewTest::theMapFollowsEveryEdit_data()
{
    QTest::addColumn<int>("lines");
    QTest::newRow("full size") << 40;
    QTest::newRow("somewhat squeezed") << 300;
    QTest::newRow("many lines in a pixel") << 9000;
}

void EditorMinimapViewTest::theMapFollowsEveryEdit()
{
    QFETCH(int, lines);
    RandomText random;
    QString text;
    for (int line = 0; line < lines; ++line) {
        text += QString(line * 7 % 60, u'x') + u'\n';
    }
    Fixture fixture(text);
    fixture.picture();
    TextStorage& storage = fixture.text.storage();
    static const QStringList typed{
        QStringLiteral("a"), QStringLiteral("\""),   QStringLiteral("// "), QStringLiteral("\n"),
        QString(),           QStringLiteral("\r\n"), QString(90, u'y')};
    for (int round = 0; round < 60; ++round) {
        for (qsizetype edits = 1 + random.below(3); edits > 0; --edits) {
            const TextRange range{random.below(storage.length() + 1), random.below(3) == 0 ? random.below(120) : 0};
            storage.replace(range, typed[random.below(typed.size())]);
        }
        Fixture fresh(storage.text());
        QVERIFY(areAlike(fixture.picture(), fresh.picture()));
    }
}

void EditorMinimapViewTest::veryManyLinesComeInTurns()
{
    RandomText random;
    QString text;
    for (int line = 0; line < 120'000; ++line) {
        text += QString(line * 7 % 60, u'x') + u'\n';
    }
    const auto last = [](Fixture& fixture) {
        // Each picture looks at some 32,000 lines.
        for (qsizetype lines = 0; lines <= minimapLineCount(fixture.text.storage()); lines += 32'000) {
            fixture.picture();
        }
        return fixture.picture();
    };
    Fixture fixture(text);
    const QImage begun = fixture.picture();
    QVERIFY(!areAlike(begun, last(fixture)));
    TextStorage& storage = fixture.text.storage();
    for (int round = 0; round < 3; ++round) {
        storage.replace({random.below(storage.length()), 0}, QString(int(random.below(30'000)), u'\n'));
        // The lines moved on while some were still to be looked at.
        fixture.picture();
        storage.replace({random.below(storage.length()), random.below(200'000)}, u"\nlet x = y");
        const QImage followed = last(fixture);
        Fixture fresh(storage.text());
        QVERIFY(areAlike(followed, last(fresh)));
    }
    // Of a shorter text the same image shows nothing of the longer one.
    storage.setText(text.left(300));
    Fixture fresh(text.left(300));
    QVERIFY(areAlike(last(fixture), last(fresh)));
}

void EditorMinimapViewTest::barsLookLikeFilledRectangles_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<qreal>("ratio");
    QTest::newRow("full size") << 50 << 1.0;
    QTest::newRow("squeezed") << 1000 << 1.0;
    QTest::newRow("squeezed at 2x") << 1500 << 2.0;
    QTest::newRow("fractional scale") << 400 << 1.5;
}

void EditorMinimapViewTest::barsLookLikeFilledRectangles()
{
    QFETCH(int, lines);
    QFETCH(qreal, ratio);
    TextStorage storage;
    QString text;
    for (int line = 0; line < lines; ++line) {
        text += QString(line * 7 % 60, u'x') + (line % 3 == 0 ? QStringLiteral("\"\n") : QStringLiteral("\n"));
    }
    storage.setText(text);
    const MinimapGeometry geometry{80, 400, minimapLineCount(storage)};
    const std::vector<MinimapBar> bars = minimapBars(storage, geometry, EditorTheme::monokai(), ratio);
    const auto makeImage = [&] {
        QImage image((QSizeF(80, 400) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(QColor(40, 41, 35));
        return image;
    };
    QImage painted = makeImage();
    QPainter barPainter(&painted);
    paintMinimapBars(barPainter, bars, geometry);
    barPainter.end();
    QImage plain = makeImage();
    QPainter painter(&plain);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const MinimapBar& bar : bars) {
        painter.fillRect(QRectF(MinimapGeometry::barLeft, bar.y, bar.width, geometry.barHeight()), bar.color);
    }
    painter.end();
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            const int difference = distance(painted.pixelColor(x, y), plain.pixelColor(x, y));
            QVERIFY2(difference <= 12, qPrintable(QStringLiteral("%1 at %2, %3").arg(difference).arg(x).arg(y)));
        }
    }
}

const kelm::test::Registered<EditorMinimapViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace editor_minimap_view_test

#include "editor_minimap_view_test.moc"
