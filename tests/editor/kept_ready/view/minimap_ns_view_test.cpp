#include "editor/kept_ready/view/minimap_ns_view.h"
#include "editor/minimap/view/editor_minimap_view.h"
#include "support/test_program.h"

#include <QtTest>

namespace minimap_ns_view_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    NotificationCenter notifications;
    QObject listener;
    QList<qsizetype> lines;
    MinimapNSView map{notifications};

    explicit Fixture(const QString& content)
    {
        map.resize(80, 400);
        map.setContent(content);
        notifications.addObserver(&listener, notifications::navigateToLine, [this](const Notification& notification) {
            lines << notification.object.toLongLong();
        });
    }
};

} // namespace

class MinimapNSViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itDrawsAsTheLiveMapDoes();
    void theCursorsLineIsMarked();
    void clicksAndDragsPostTheLine_data();
    void clicksAndDragsPostTheLine();
    void linesAreTintedByAGlance();
};

void MinimapNSViewTest::itDrawsAsTheLiveMapDoes()
{
    const QString content = u"import x\n\nlet a = \"b\"\n// c\nplain\n"_s.repeated(20);
    Fixture fixture(content);
    fixture.map.cursorLine = 0;
    fixture.map.visibleRangeRect = {0, 170, 600, 400};
    TextView text;
    text.storage().setText(content);
    EditorMinimapView live;
    live.resize(80, 400);
    live.setTextView(&text);
    live.currentVisibleRect = fixture.map.visibleRangeRect;
    QCOMPARE(fixture.map.grab().toImage(), live.grab().toImage());
}

void MinimapNSViewTest::theCursorsLineIsMarked()
{
    Fixture fixture(u"a\n"_s.repeated(50));
    fixture.map.cursorLine = 11;
    const QImage picture = fixture.map.grab().toImage();
    // Line 11 is the eleventh of 3 points each below the margin of 5.
    QVERIFY(picture.pixelColor(60, 36) != picture.pixelColor(60, 39));
    fixture.map.cursorLine = 60;
    const QImage unmarked = fixture.map.grab().toImage();
    QCOMPARE(unmarked.pixelColor(60, 36), unmarked.pixelColor(60, 39));
}

void MinimapNSViewTest::clicksAndDragsPostTheLine_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<qsizetype>("line");
    QTest::newRow("above the first") << 2 << qsizetype(1);
    QTest::newRow("the first") << 7 << qsizetype(1);
    QTest::newRow("the eleventh") << 36 << qsizetype(11);
    QTest::newRow("below the last") << 390 << qsizetype(100);
}

void MinimapNSViewTest::clicksAndDragsPostTheLine()
{
    QFETCH(int, y);
    QFETCH(qsizetype, line);
    Fixture fixture(u"a\n"_s.repeated(99) + u"a"_s);
    QTest::mousePress(&fixture.map, Qt::LeftButton, {}, {40, y});
    QCOMPARE(fixture.lines, (QList<qsizetype>{line}));
    QTest::mouseMove(&fixture.map, {40, 6});
    QCOMPARE(fixture.lines.last(), qsizetype(1));
    QTest::mouseRelease(&fixture.map, Qt::LeftButton, {}, {40, 8});
    const qsizetype count = fixture.lines.size();
    QTest::mouseClick(&fixture.map, Qt::RightButton, {}, {40, y});
    QCOMPARE(fixture.lines.size(), count);
}

void MinimapNSViewTest::linesAreTintedByAGlance()
{
    const Fixture fixture(QString{});
    const EditorTheme& theme = fixture.map.theme;
    const auto at = [](QColor color, float alpha) {
        color.setAlphaF(alpha);
        return color;
    };
    QCOMPARE(fixture.map.getLineColor(u"  # x"), at(theme.commentColor.toColor(), 0.7F));
    QCOMPARE(fixture.map.getLineColor(u"let a = 'b'"), at(theme.stringColor.toColor(), 0.7F));
    QCOMPARE(fixture.map.getLineColor(u"let a"), at(theme.keywordColor.toColor(), 0.8F));
    QCOMPARE(fixture.map.getLineColor(u"letter"), at(Qt::white, 0.5F));
}

const kelm::test::Registered<MinimapNSViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace minimap_ns_view_test

#include "minimap_ns_view_test.moc"
