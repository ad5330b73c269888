#include "editor/kept_ready/view/line_number_view.h"
#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "support/painted.h"
#include "support/paints.h"
#include "support/test_program.h"

#include <QInputMethodEvent>
#include <QtTest>

#include <memory>

namespace line_number_view_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A gutter beside a text view, both as high as each other.
struct Fixture
{
    NotificationCenter notifications;
    QObject listener;
    QList<Notification> heard;
    QWidget window;
    TextView text{&window};
    CodeFoldingManager folding{notifications};
    LineNumberView gutter{notifications, &window};

    explicit Fixture(const QString& content = u"{\n  one\n  two\n}\nlast"_s)
    {
        window.resize(665, 400);
        gutter.setGeometry(0, 0, 65, 400);
        text.setGeometry(65, 0, 600, 400);
        text.setTextFont(style::monospaced(14), 17);
        text.storage().setText(content);
        folding.setStorage(&text.storage());
        folding.detectFoldableRegions(Language::swift);
        gutter.textView = &text;
        gutter.codeFoldingManager = &folding;
        notifications.addObserver(&listener, notifications::bookmarksChanged,
                                  [this](const Notification& notification) { heard << notification; });
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }

    void click(QPoint point) { QTest::mouseClick(&gutter, Qt::LeftButton, {}, point); }
    QImage picture() { return gutter.grab().toImage(); }
};

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

constexpr QColor boxColor(64, 64, 64);

} // namespace

class LineNumberViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsAsItShould();
    void aBookmarkIsPutAndTakenAway();
    void aFoldCommitsWhatIsComposed();
    void theBookmarkZoneEndsAtTwelve();
    void theFoldZoneIsTheLastFourteen();
    void theOwnerHearsOfEachFold();
    void withoutAManagerAClickFoldsNothing();
    void boxesShowWhatCanBeFolded();
    void aBookmarkIsABlueDot();
    void aLineStandsAtTheRightEdge();
    void theCaretsLineHasAColourOfItsOwn();
    void aClickOutsideTheTextDoesNothing();
};

void LineNumberViewTest::itStartsAsItShould()
{
    NotificationCenter notifications;
    LineNumberView gutter{notifications};
    QCOMPARE(gutter.backgroundColor, QColor::fromRgbF(0.15F, 0.15F, 0.15F));
    QCOMPARE(gutter.textColor, QColor::fromRgbF(0.5F, 0.5F, 0.5F));
    QCOMPARE(gutter.currentLineColor, QColor(Qt::white));
    QVERIFY(gutter.bookmarks().empty());
    QVERIFY(gutter.showFoldingIndicators);
    QCOMPARE(LineNumberView::padding, 8.0);
    QCOMPARE(LineNumberView::foldingAreaWidth, 14.0);
    QCOMPARE(LineNumberView::bookmarkAreaWidth, 8.0);
    QCOMPARE(gutter.font, style::monospaced(12));
    // Without a text there is nothing but the ground.
    gutter.resize(65, 50);
    QCOMPARE(gutter.grab().toImage().pixelColor(30, 20).rgb(), gutter.backgroundColor.rgb());
    QTest::mouseClick(&gutter, Qt::LeftButton, {}, {5, 10});
    QVERIFY(gutter.bookmarks().empty());
}

void LineNumberViewTest::aBookmarkIsPutAndTakenAway()
{
    Fixture fixture;
    fixture.click({5, 30});
    QCOMPARE(fixture.gutter.bookmarks(), (std::set<qsizetype>{2}));
    QCOMPARE(fixture.heard.size(), 1);
    QCOMPARE(fixture.heard[0].name, u"bookmarksChanged"_s);
    QCOMPARE(fixture.heard[0].object.value<QObject*>(), &fixture.gutter);
    QCOMPARE(fixture.heard[0].userInfo[u"line"_s].toLongLong(), 2);
    fixture.click({5, 30});
    QVERIFY(fixture.gutter.bookmarks().empty());
    QCOMPARE(fixture.heard.size(), 2);
    QCoreApplication::processEvents();
    test::Paints paints(fixture.gutter);
    fixture.gutter.toggleBookmark(3);
    QTRY_VERIFY(paints.count > 0);
}

void LineNumberViewTest::aFoldCommitsWhatIsComposed()
{
    Fixture fixture;
    fixture.text.setSelectedRange({0, 0});
    QInputMethodEvent composing(u"한"_s, {});
    QCoreApplication::sendEvent(&fixture.text, &composing);
    fixture.click({60, 12});
    QVERIFY(!fixture.text.isComposing());
    QVERIFY(fixture.folding.isTextFolded());
    QVERIFY(fixture.text.text().startsWith(u"한{"));
}

void LineNumberViewTest::theBookmarkZoneEndsAtTwelve()
{
    Fixture fixture;
    fixture.click({12, 30});
    QVERIFY(fixture.gutter.bookmarks().empty());
    fixture.click({11, 30});
    QCOMPARE(fixture.gutter.bookmarks(), (std::set<qsizetype>{2}));
}

void LineNumberViewTest::theFoldZoneIsTheLastFourteen()
{
    Fixture fixture;
    fixture.click({50, 12});
    QVERIFY(!fixture.folding.isTextFolded());
    fixture.click({51, 12});
    QVERIFY(fixture.folding.isTextFolded());
    fixture.click({64, 12});
    QVERIFY(!fixture.folding.isTextFolded());
    // A line without a region.
    fixture.click({60, 30});
    QVERIFY(!fixture.folding.isTextFolded());
    // Whether the boxes are painted or not.
    fixture.gutter.showFoldingIndicators = false;
    fixture.click({60, 12});
    QVERIFY(fixture.folding.isTextFolded());
    fixture.click({60, 12});
    QVERIFY(!fixture.folding.isTextFolded());
}

void LineNumberViewTest::theOwnerHearsOfEachFold()
{
    Fixture fixture;
    int heard = 0;
    fixture.gutter.onFoldToggled = [&] { ++heard; };
    fixture.click({60, 30});
    QCOMPARE(heard, 0);
    fixture.click({60, 12});
    QCOMPARE(heard, 1);
    fixture.click({60, 12});
    QCOMPARE(heard, 2);
}

void LineNumberViewTest::withoutAManagerAClickFoldsNothing()
{
    NotificationCenter notifications;
    TextView text;
    text.storage().setText(u"{\n  one\n  two\n}"_s);
    text.resize(600, 400);
    LineNumberView gutter(notifications);
    gutter.resize(65, 400);
    gutter.textView = &text;
    auto folding = std::make_unique<CodeFoldingManager>(notifications);
    folding->setStorage(&text.storage());
    folding->detectFoldableRegions(Language::swift);
    gutter.codeFoldingManager = folding.get();
    QVERIFY(rowHas(gutter.grab().toImage(), 0, 51, 64, boxColor));
    folding.reset();
    QVERIFY(!rowHas(gutter.grab().toImage(), 0, 51, 64, boxColor));
    QTest::mouseClick(&gutter, Qt::LeftButton, {}, {60, 12});
    QCOMPARE(text.text(), u"{\n  one\n  two\n}"_s);
}

void LineNumberViewTest::boxesShowWhatCanBeFolded()
{
    Fixture fixture;
    const QImage open = fixture.picture();
    // The box is 10 by 10 at the width less 14 plus 2, in the middle of the row.
    QCOMPARE(open.pixelColor(53, 8).rgb(), boxColor.rgb());
    QCOMPARE(open.pixelColor(62, 16).rgb(), boxColor.rgb());
    QVERIFY(!rowHas(open, 1, 51, 64, boxColor));
    // A minus has no upright stroke.
    QCOMPARE(open.pixelColor(58, 10).rgb(), boxColor.rgb());
    QVERIFY(rowHas(open, 0, 53, 63, Qt::white));
    fixture.click({60, 12});
    QVERIFY(fixture.picture().pixelColor(58, 10).rgb() != boxColor.rgb());
    fixture.gutter.showFoldingIndicators = false;
    QVERIFY(!rowHas(fixture.picture(), 0, 51, 64, boxColor));
}

void LineNumberViewTest::aBookmarkIsABlueDot()
{
    Fixture fixture;
    const QColor blue = systemColor(SystemColor::blue, style::appearanceOf(fixture.gutter));
    QVERIFY(!rowHas(fixture.picture(), 1, 0, 8, blue));
    fixture.gutter.toggleBookmark(2);
    QVERIFY(rowHas(fixture.picture(), 1, 0, 8, blue));
    QVERIFY(!rowHas(fixture.picture(), 0, 0, 8, blue));
    // In the middle of its area and its row.
    const QImage image = fixture.picture();
    QRect dot;
    for (int y = 4 + 17; y < 4 + 2 * 17; ++y) {
        for (int x = 0; x < 30; ++x) {
            if (!test::isNear(image.pixelColor(x, y), fixture.gutter.backgroundColor)) {
                dot |= QRect(x, y, 1, 1);
            }
        }
    }
    QVERIFY(QRect(0, 4 + 17, 8, 17).contains(dot));
    QVERIFY(std::abs(QRectF(dot).center().x() - 4) <= 0.5);
    QVERIFY(std::abs(QRectF(dot).center().y() - (4 + 17 + 8.5)) <= 0.5);
}

void LineNumberViewTest::aLineStandsAtTheRightEdge()
{
    Fixture fixture;
    const QImage image = fixture.picture();
    const QColor ground = fixture.gutter.backgroundColor;
    const QColor line = test::over(ground, QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.3F));
    for (const int y : {0, 200, 399}) {
        QVERIFY(test::isNear(image.pixelColor(64, y), line));
        QVERIFY(test::isNear(image.pixelColor(63, y), ground));
    }
}

void LineNumberViewTest::theCaretsLineHasAColourOfItsOwn()
{
    Fixture fixture(u"a\nb\nc"_s);
    fixture.text.setSelectedRange({2, 0});
    fixture.gutter.currentLineColor = QColor(255, 0, 255);
    fixture.gutter.textColor = QColor(0, 255, 0);
    const auto isNear = [](const QColor& seen, const QColor& wanted) {
        return std::abs(seen.red() - wanted.red()) + std::abs(seen.green() - wanted.green()) < 120;
    };
    const QImage picture = fixture.picture();
    const auto rowIsNear = [&](int row, const QColor& wanted) {
        for (int y = 4 + row * 17; y < 21 + row * 17; ++y) {
            for (int x = 20; x < 45; ++x) {
                const QColor seen = picture.pixelColor(x, y);
                if (seen != fixture.gutter.backgroundColor && isNear(seen, wanted)) {
                    return true;
                }
            }
        }
        return false;
    };
    QVERIFY(rowIsNear(1, fixture.gutter.currentLineColor));
    QVERIFY(!rowIsNear(0, fixture.gutter.currentLineColor));
    QVERIFY(rowIsNear(0, fixture.gutter.textColor));
    QVERIFY(rowIsNear(2, fixture.gutter.textColor));
}

void LineNumberViewTest::aClickOutsideTheTextDoesNothing()
{
    Fixture fixture(u"{"_s);
    fixture.click({5, 200});
    fixture.click({60, 200});
    QTest::mouseClick(&fixture.gutter, Qt::RightButton, {}, {5, 10});
    QVERIFY(fixture.gutter.bookmarks().empty());
    QVERIFY(fixture.heard.isEmpty());
}

const kelm::test::Registered<LineNumberViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace line_number_view_test

#include "line_number_view_test.moc"
