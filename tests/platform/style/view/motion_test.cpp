#include "platform/style/view/motion.h"
#include "platform/style/view/style.h"
#include "platform/view/activity_line.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QVariantAnimation>
#include <QtTest>

namespace motion_test {

using namespace kelm;

namespace {

/// As the tabs' colours have it.
void prepare(QVariantAnimation& animation)
{
    animation.setStartValue(0.0);
    animation.setEndValue(1.0);
    animation.setDuration(100'000);
}

} // namespace

class MotionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { style::setAnimated(true); }
    void anAnimationRuns();
    void withoutMotionItIsAtItsEndAtOnce_data();
    void withoutMotionItIsAtItsEndAtOnce();
    void theStyleTellsTheToolkit();
    void theLineOfSomethingThatWorksStandsStill();
};

void MotionTest::anAnimationRuns()
{
    QVariantAnimation animation;
    prepare(animation);
    style::run(animation);
    QCOMPARE(animation.state(), QAbstractAnimation::Running);
    QVERIFY(animation.currentValue().toReal() < 1);
}

void MotionTest::withoutMotionItIsAtItsEndAtOnce_data()
{
    QTest::addColumn<bool>("forward");
    QTest::addColumn<bool>("runsAlready");
    QTest::newRow("forward") << true << false;
    QTest::newRow("backward") << false << false;
    QTest::newRow("forward, amid its way") << true << true;
    QTest::newRow("backward, amid its way") << false << true;
}

void MotionTest::withoutMotionItIsAtItsEndAtOnce()
{
    QFETCH(const bool, forward);
    QFETCH(const bool, runsAlready);
    QVariantAnimation animation;
    prepare(animation);
    if (runsAlready) {
        style::run(animation);
    }
    style::setAnimated(false);
    QSignalSpy ends(&animation, &QAbstractAnimation::finished);
    animation.setDirection(forward ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
    style::run(animation);
    QCOMPARE(animation.state(), QAbstractAnimation::Stopped);
    QCOMPARE(animation.currentValue().toReal(), forward ? 1.0 : 0.0);
    QCOMPARE(ends.count(), 1);
}

void MotionTest::theStyleTellsTheToolkit()
{
    const KelmStyle style;
    QVERIFY(style.styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, nullptr, nullptr) > 0);
    style::setAnimated(false);
    QCOMPARE(style.styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, nullptr, nullptr), 0);
    QVERIFY(!QApplication::isEffectEnabled(Qt::UI_AnimateMenu));
    QVERIFY(!QApplication::isEffectEnabled(Qt::UI_FadeTooltip));
}

void MotionTest::theLineOfSomethingThatWorksStandsStill()
{
    style::setAnimated(false);
    ActivityLine line;
    line.resize(100, 2);
    line.setActive(true);
    QVERIFY(line.isActive());
    const QImage image = line.grab().toImage();
    QCOMPARE(image.pixelColor(1, 1), image.pixelColor(98, 1));
    line.setActive(false);
    QVERIFY(image.pixelColor(50, 1) != line.grab().toImage().pixelColor(50, 1));
}

const kelm::test::Registered<MotionTest> registered(kelm::test::Toolkit::widgets);

} // namespace motion_test

#include "motion_test.moc"
