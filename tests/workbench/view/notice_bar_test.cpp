#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/view/activity_line.h"
#include "platform/view/plain_button.h"
#include "support/captured_log.h"
#include "support/painted.h"
#include "support/test_program.h"
#include "workbench/view/notice_bar.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace notice_bar_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What can be stopped.
Notice goingOn(const QString& text, std::optional<double> progress = {})
{
    return {text, progress, [] {}};
}

struct Fixture
{
    QTemporaryDir home;
    UserDefaults defaults{home.filePath(u"defaults.conf"_s)};
    CapturedLog log;
    ThemeManager themes{{defaults, log, home.path(), [](Appearance) {}}};
    NoticeBar bar{themes};

    Fixture() { bar.resize(400, bar.height()); }
    ActivityLine& activity() { return *bar.findChild<ActivityLine*>(); }
};

} // namespace

class NoticeBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void itShowsTheTextAndItsShare_data();
    void itShowsTheTextAndItsShare();
    void theLineIsAsLongAsTheShare();
    void theLineRunsWhereNobodyKnowsTheShare();
    void theHintIsThereForWhatCanBeStopped();
    void aLongNameIsCutInItsMiddle();
    void itTakesNoKeyboard();
    void offersHaveTheirButtons();
    void whatGoesOnOffersNothingAndStays();
    void screenReadersAreTold();
};

void NoticeBarTest::itShowsTheTextAndItsShare_data()
{
    QTest::addColumn<std::optional<double>>("progress");
    QTest::addColumn<QString>("text");
    QTest::newRow("unknown") << std::optional<double>() << u"Opening a.txt…"_s;
    QTest::newRow("nothing") << std::optional(0.0) << u"Opening a.txt… 0 %"_s;
    QTest::newRow("some") << std::optional(0.437) << u"Opening a.txt… 43 %"_s;
    QTest::newRow("all") << std::optional(1.0) << u"Opening a.txt… 100 %"_s;
}

void NoticeBarTest::itShowsTheTextAndItsShare()
{
    QFETCH(std::optional<double>, progress);
    QFETCH(QString, text);
    Fixture fixture;
    fixture.bar.show(goingOn(u"Opening a.txt…"_s, progress));
    QVERIFY(fixture.bar.isVisible());
    QCOMPARE(fixture.bar.text(), text);
}

void NoticeBarTest::theLineIsAsLongAsTheShare()
{
    Fixture fixture;
    fixture.bar.show(goingOn(u"Opening a.txt…"_s));
    fixture.bar.setProgress(0.25);
    const QImage picture = fixture.bar.grab().toImage();
    const QColor accent = Tint::accent().on(fixture.bar);
    const QColor ground = fixture.themes.currentTheme().backgroundColor.toColor();
    QVERIFY(test::isNear(picture.pixelColor(1, 1), accent));
    QVERIFY(test::isNear(picture.pixelColor(98, 1), accent));
    QVERIFY(test::isNear(picture.pixelColor(102, 1), ground));
    QVERIFY(test::isNear(picture.pixelColor(1, 3), ground));
}

void NoticeBarTest::theLineRunsWhereNobodyKnowsTheShare()
{
    Fixture fixture;
    fixture.bar.show(goingOn(u"Sorting lines…"_s));
    QVERIFY(fixture.activity().isActive());
    QCOMPARE(fixture.activity().width(), fixture.bar.width());
    fixture.bar.setProgress(0.5);
    QVERIFY(!fixture.activity().isActive());
    fixture.bar.setProgress({});
    QVERIFY(fixture.activity().isActive());
    // What is not seen does not run.
    fixture.bar.hide();
    QVERIFY(!fixture.activity().isActive());
}

void NoticeBarTest::theHintIsThereForWhatCanBeStopped()
{
    Fixture fixture;
    fixture.bar.show(goingOn(u"Sorting lines…"_s));
    QVERIFY(fixture.bar.offersStop());
    fixture.bar.show({u"Sorting lines…"_s});
    QVERIFY(!fixture.bar.offersStop());
}

void NoticeBarTest::aLongNameIsCutInItsMiddle()
{
    Fixture fixture;
    fixture.bar.show(goingOn(u"Opening "_s + QString(300, u'n') + u".txt…"_s));
    fixture.bar.setProgress(0.43);
    // The bar asks for no more room than the window gives, and text and hint both find their place in it.
    QVERIFY(fixture.bar.minimumSizeHint().width() <= 400);
    QCOMPARE(fixture.bar.width(), 400);
    for (const QWidget* child : fixture.bar.findChildren<QWidget*>()) {
        QVERIFY(child->isHidden() || fixture.bar.rect().contains(child->geometry()));
        QVERIFY(qobject_cast<const ActivityLine*>(child) != nullptr ||
                child->height() >= QFontMetrics(child->font()).height());
    }
}

void NoticeBarTest::itTakesNoKeyboard()
{
    Fixture fixture;
    QCOMPARE(fixture.bar.focusPolicy(), Qt::NoFocus);
    fixture.bar.show({.text = u"Closed with unsaved changes"_s, .isNews = true, .offers = {{u"Reopen"_s, [] {}}}});
    // Whoever has no pointer finds the buttons behind everything else; no click gives them the keyboard.
    for (const QWidget* child : fixture.bar.findChildren<QWidget*>()) {
        QVERIFY((child->focusPolicy() & Qt::ClickFocus) == 0);
        QVERIFY(!child->hasFocus());
    }
}

void NoticeBarTest::offersHaveTheirButtons()
{
    Fixture fixture;
    QSignalSpy accepted(&fixture.bar, &NoticeBar::accepted);
    QSignalSpy putAway(&fixture.bar, &NoticeBar::putAway);
    fixture.bar.show({.text = u"notes.txt has changed on disk"_s,
                      .isNews = true,
                      .offers = {{u"Reload"_s, [] {}}, {u"Keep mine"_s, [] {}}}});
    QCOMPARE(fixture.bar.offers().size(), 2U);
    QCOMPARE(fixture.bar.offers()[0]->text(), u"Reload"_s);
    QVERIFY(fixture.bar.offers()[0]->x() < fixture.bar.offers()[1]->x());
    QVERIFY(!fixture.activity().isActive());
    fixture.bar.offers()[1]->click();
    QCOMPARE(accepted, (QList<QVariantList>{{qsizetype(1)}}));
    fixture.bar.putAwayButton()->click();
    QCOMPARE(putAway.size(), 1);
}

void NoticeBarTest::whatGoesOnOffersNothingAndStays()
{
    Fixture fixture;
    fixture.bar.show({.text = u"not there"_s, .isNews = true, .offers = {{u"Reload"_s, [] {}}}});
    QVERIFY(fixture.bar.putAwayButton()->isVisible());
    fixture.bar.show({u"Sorting lines…"_s});
    QVERIFY(fixture.bar.offers().empty());
    QVERIFY(!fixture.bar.putAwayButton()->isVisible());
}

void NoticeBarTest::screenReadersAreTold()
{
    Fixture fixture;
    fixture.bar.show(goingOn(u"Opening a.txt…"_s, 0.0));
    QCOMPARE(fixture.bar.accessibleName(), u"Opening a.txt… 0 % Escape to stop"_s);
    // A tenth is told of, each percent of it is not.
    fixture.bar.setProgress(0.09);
    QCOMPARE(fixture.bar.text(), u"Opening a.txt… 9 %"_s);
    QCOMPARE(fixture.bar.accessibleName(), u"Opening a.txt… 0 % Escape to stop"_s);
    fixture.bar.setProgress(0.19);
    QCOMPARE(fixture.bar.accessibleName(), u"Opening a.txt… 10 % Escape to stop"_s);
    fixture.bar.show({u"Sorting lines…"_s});
    QCOMPARE(fixture.bar.accessibleName(), u"Sorting lines…"_s);
    QCOMPARE(QAccessible::queryAccessibleInterface(&fixture.bar)->role(), QAccessible::AlertMessage);
}

const kelm::test::Registered<NoticeBarTest> registered(kelm::test::Toolkit::widgets);

} // namespace notice_bar_test

#include "notice_bar_test.moc"
