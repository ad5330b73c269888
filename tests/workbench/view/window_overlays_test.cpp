#include "git/panel/view/clone_dialog.h"
#include "support/test_program.h"
#include "workbench/view/controls.h"
#include "workbench/view/overlay_layer.h"
#include "workbench/view/window_fixture.h"

#include <QLineEdit>

#include <cmath>

namespace window_overlays_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : WindowFixture
{
    QList<OverlayLayer*> layers() const
    {
        QList<OverlayLayer*> layers;
        for (QObject* child : window.children()) {
            if (auto* layer = qobject_cast<OverlayLayer*>(child)) {
                layers.append(layer);
            }
        }
        return layers;
    }
    void settle()
    {
        turnQueue();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

} // namespace

class WindowOverlaysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void overlaysFollowTheirFlags_data();
    void overlaysFollowTheirFlags();
    void eachDimsTheWindowInItsOwnMeasure_data() { overlaysFollowTheirFlags_data(); }
    void eachDimsTheWindowInItsOwnMeasure();
    void twoOverlaysShowAndTheLaterIsOnTop();
    void aClickBesideAnOverlayDismissesItAndOneInsideDoesNot();
    void escapeClosesAnOverlayAndTheTextHasTheKeyboard();
    void theKeyboardGoesStraightBackToTheText();
    void escapeBesideTheFindFieldClosesNothing();
    void aReopenedSearchBeginsAnew();
    void theCloneSheetIsBoundToItsFlag();
    void overlaysFillTheWindowAsItGrows();
    void quickOpenStaysWhereItIsWhileOneTypes();
};

void WindowOverlaysTest::overlaysFollowTheirFlags_data()
{
    QTest::addColumn<QByteArray>("flag");
    QTest::addColumn<double>("opacity");
    QTest::newRow("quick open") << QByteArray("showQuickOpen") << 0.35;
    QTest::newRow("search") << QByteArray("showSearch") << 0.25;
    QTest::newRow("go to line") << QByteArray("showGoToLine") << 0.25;
}

void WindowOverlaysTest::overlaysFollowTheirFlags()
{
    QFETCH(QByteArray, flag);
    Fixture fixture;
    QVERIFY(fixture.layers().isEmpty());
    fixture.state.setProperty(flag, true);
    QCOMPARE(fixture.layers().size(), 1);
    QVERIFY(fixture.layers().first()->isVisible());
    QCOMPARE(fixture.layers().first()->size(), fixture.window.size());
    fixture.state.setProperty(flag, false);
    fixture.settle();
    QVERIFY(fixture.layers().isEmpty());
}

void WindowOverlaysTest::twoOverlaysShowAndTheLaterIsOnTop()
{
    Fixture fixture;
    fixture.state.setShowGoToLine(true);
    fixture.state.setShowQuickOpen(true);
    const auto layers = fixture.layers();
    QCOMPARE(layers.size(), 2);
    // The last child is painted on top: the line number's, which the state raised first.
    fixture.state.setShowGoToLine(false);
    fixture.settle();
    QCOMPARE(fixture.layers(), QList<OverlayLayer*>{layers.first()});
}

void WindowOverlaysTest::eachDimsTheWindowInItsOwnMeasure()
{
    QFETCH(QByteArray, flag);
    QFETCH(double, opacity);
    Fixture fixture;
    fixture.turnQueue();
    const QPoint corner(5, fixture.window.height() / 2);
    const auto light = [&] { return fixture.window.grab().toImage().pixelColor(corner).redF(); };
    const double before = light();
    fixture.state.setProperty(flag, true);
    fixture.turnQueue();
    QVERIFY(before > 0.05);
    QVERIFY(std::abs(light() - before * (1 - opacity)) < 0.006);
}

void WindowOverlaysTest::aClickBesideAnOverlayDismissesItAndOneInsideDoesNot()
{
    Fixture fixture;
    fixture.state.setShowSearch(true);
    fixture.turnQueue();
    OverlayLayer* layer = fixture.layers().first();
    QTest::mouseClick(layer->content(), Qt::LeftButton, {}, layer->content()->rect().center());
    QVERIFY(fixture.state.showSearch());
    // A press on one side that ends on the other is no click, nor is that of another button.
    const QPoint beside(3, layer->height() - 3);
    const QPoint inside = layer->content()->geometry().center();
    QTest::mousePress(layer, Qt::LeftButton, {}, inside);
    QTest::mouseRelease(layer, Qt::LeftButton, {}, beside);
    QTest::mousePress(layer, Qt::LeftButton, {}, beside);
    QTest::mouseRelease(layer, Qt::LeftButton, {}, inside);
    QTest::mouseClick(layer, Qt::RightButton, {}, beside);
    QVERIFY(fixture.state.showSearch());
    QTest::mouseClick(layer, Qt::LeftButton, {}, beside);
    QVERIFY(!fixture.state.showSearch());
}

void WindowOverlaysTest::escapeClosesAnOverlayAndTheTextHasTheKeyboard()
{
    Fixture fixture;
    fixture.state.createNewTab();
    fixture.state.setShowGoToLine(true);
    fixture.turnQueue();
    QVERIFY(fixture.layers().first()->isAncestorOf(fixture.window.focusWidget()));
    QTest::keyClick(fixture.window.focusWidget(), Qt::Key_Escape);
    fixture.settle();
    QVERIFY(!fixture.state.showGoToLine());
    QVERIFY(fixture.text().hasFocus());
}

void WindowOverlaysTest::theKeyboardGoesStraightBackToTheText()
{
    Fixture fixture;
    fixture.state.createNewTab();
    fixture.state.setShowSearch(true);
    fixture.turnQueue();
    QList<const QWidget*> stops;
    connect(qApp, &QApplication::focusChanged, this, [&](const QWidget*, const QWidget* now) { stops.append(now); });
    QTest::keyClick(fixture.window.focusWidget(), Qt::Key_Escape);
    fixture.settle();
    disconnect(qApp, &QApplication::focusChanged, this, nullptr);
    // A screen reader says each stop.
    QCOMPARE(stops, QList<const QWidget*>{&fixture.text()});
}

void WindowOverlaysTest::escapeBesideTheFindFieldClosesNothing()
{
    Fixture fixture;
    fixture.state.setShowSearch(true);
    fixture.state.setSearchMode(SearchMode::replace);
    fixture.turnQueue();
    const QWidget& content = *fixture.layers().first()->content();
    for (const QString& name : {u"Replace All"_s, u"Replace"_s}) {
        QAbstractButton* button = visibleButton(content, name);
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Escape);
        QVERIFY(fixture.state.showSearch());
    }
    for (auto* field : content.findChildren<QLineEdit*>()) {
        const bool isFindField = field->placeholderText() == u"Find"_s;
        if (!isFindField) {
            field->setFocus();
            QTest::keyClick(field, Qt::Key_Escape);
            QVERIFY(fixture.state.showSearch());
        }
    }
}

void WindowOverlaysTest::aReopenedSearchBeginsAnew()
{
    Fixture fixture;
    fixture.state.setShowSearch(true);
    fixture.turnQueue();
    QTest::keyClicks(fixture.window.focusWidget(), u"word"_s);
    clickOn(*fixture.layers().first()->content(), u"Case Sensitive"_s);
    QVERIFY(visibleButton(*fixture.layers().first()->content(), u"Case Sensitive"_s)->isChecked());
    fixture.state.setShowSearch(false);
    fixture.settle();
    fixture.state.setShowSearch(true);
    fixture.turnQueue();
    const QWidget& content = *fixture.layers().first()->content();
    for (const auto* field : content.findChildren<QLineEdit*>()) {
        QCOMPARE(field->text(), QString());
    }
    QVERIFY(!visibleButton(content, u"Case Sensitive"_s)->isChecked());
}

void WindowOverlaysTest::theCloneSheetIsBoundToItsFlag()
{
    Fixture fixture;
    const auto sheet = [&] { return fixture.window.findChild<CloneDialog*>(); };
    QVERIFY(sheet() == nullptr);
    fixture.state.setShowCloneDialog(true);
    QVERIFY(sheet()->isVisible() && sheet()->isModal());
    sheet()->reject();
    fixture.settle();
    QVERIFY(!fixture.state.showCloneDialog());
    QVERIFY(sheet() == nullptr);
    fixture.state.setShowCloneDialog(true);
    // The flag may fall and rise before the old sheet has gone.
    fixture.state.setShowCloneDialog(false);
    fixture.state.setShowCloneDialog(true);
    fixture.settle();
    QVERIFY(fixture.state.showCloneDialog());
    QVERIFY(sheet() != nullptr && sheet()->isVisible());
    fixture.state.setShowCloneDialog(false);
    fixture.settle();
    QVERIFY(sheet() == nullptr);
}

void WindowOverlaysTest::overlaysFillTheWindowAsItGrows()
{
    Fixture fixture;
    fixture.state.setShowSearch(true);
    fixture.window.resize(1500, 900);
    fixture.turnQueue();
    QCOMPARE(fixture.layers().first()->size(), fixture.window.size());
}

void WindowOverlaysTest::quickOpenStaysWhereItIsWhileOneTypes()
{
    Fixture fixture;
    QList<QUrl> files;
    for (int file = 0; file < 12; ++file) {
        files.append(fixture.write(u"file %1.txt"_s.arg(file), "text"));
    }
    fixture.state.setRecentFiles(files);
    fixture.state.setShowQuickOpen(true);
    fixture.turnQueue();
    const QWidget& panel = *fixture.layers().first()->content();
    const QPoint place = panel.pos();
    const int height = panel.height();
    // With the longest list it stands in the middle.
    QVERIFY(std::abs(panel.geometry().center().y() - fixture.window.height() / 2) <= 1);
    for (const QChar letter : u"file 11 and none"_s) {
        QTest::keyClick(fixture.window.focusWidget(), letter.toLatin1());
        fixture.turnQueue();
        QCOMPARE(panel.pos(), place);
    }
    QVERIFY(panel.height() < height);
    fixture.window.resize(1300, 1000);
    fixture.turnQueue();
    QVERIFY(panel.pos() != place);
}

const kelm::test::Registered<WindowOverlaysTest> registered(kelm::test::Toolkit::widgets);

} // namespace window_overlays_test

#include "window_overlays_test.moc"
