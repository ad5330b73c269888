#include "git/viewer/view/selective_rounded_shape.h"
#include "support/test_program.h"

#include <QtTest>

namespace selective_rounded_shape_test {

using namespace kelm;

class SelectiveRoundedShapeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cornersAreABitSet();
    void onlyTheNamedCornersAreRound_data();
    void onlyTheNamedCornersAreRound();
};

void SelectiveRoundedShapeTest::cornersAreABitSet()
{
    QCOMPARE(RectCorner::topLeft.rawValue, 1);
    QCOMPARE(RectCorner::topRight.rawValue, 2);
    QCOMPARE(RectCorner::bottomLeft.rawValue, 4);
    QCOMPARE(RectCorner::bottomRight.rawValue, 8);
    const RectCorner top = RectCorner::topLeft | RectCorner::topRight;
    QCOMPARE(top.rawValue, 3);
    QVERIFY(top.contains(RectCorner::topLeft));
    QVERIFY(!top.contains(RectCorner::bottomLeft));
    QVERIFY(!top.contains(RectCorner::topLeft | RectCorner::bottomLeft));
}

void SelectiveRoundedShapeTest::onlyTheNamedCornersAreRound_data()
{
    QTest::addColumn<int>("corners");
    for (int corners = 0; corners < 16; ++corners) {
        QTest::addRow("%d", corners) << corners;
    }
}

void SelectiveRoundedShapeTest::onlyTheNamedCornersAreRound()
{
    QFETCH(int, corners);
    const QPainterPath path = SelectiveRoundedShape{6, {corners}}.path(QRectF(10, 20, 40, 30));
    QCOMPARE(path.boundingRect(), QRectF(10, 20, 40, 30));
    // Within the square corner, but outside a quarter circle of radius 6; and just inside that.
    const auto check = [&](QPointF corner, QPointF inwards, RectCorner name) {
        QCOMPARE(!path.contains(corner + inwards), (corners & name.rawValue) != 0);
        QVERIFY(path.contains(corner + 2.2 * inwards));
    };
    check({10, 20}, {1, 1}, RectCorner::topLeft);
    check({50, 20}, {-1, 1}, RectCorner::topRight);
    check({10, 50}, {1, -1}, RectCorner::bottomLeft);
    check({50, 50}, {-1, -1}, RectCorner::bottomRight);
    // An arc, not a cut: a point near the middle of the arc, outside the straight line between its ends.
    QCOMPARE(path.contains(QPointF(10 + 2.4, 20 + 2.4)), true);
}

const kelm::test::Registered<SelectiveRoundedShapeTest> registered;

} // namespace selective_rounded_shape_test

#include "selective_rounded_shape_test.moc"
