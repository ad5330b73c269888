#include "platform/style/view/hairline.h"
#include "platform/style/view/style.h"
#include "support/test_program.h"

#include <QImage>
#include <QPainter>
#include <QPushButton>
#include <QSet>
#include <QStyleOptionButton>
#include <QStyleOptionFrame>
#include <QtTest>

namespace hairline_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QRect box(4, 4, 41, 23);

QImage sheet(qreal scale)
{
    QImage image(QSize(50, 32) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    return image;
}

/// How many pixels a row or column through the middle of the box goes from the ground to what is inside it: those that
/// differ from both, at its beginning.
int edgePixels(const QImage& image, bool isAcross)
{
    const qreal scale = image.devicePixelRatio();
    const int middle = qRound((isAcross ? box.center().y() : box.center().x()) * scale);
    const auto at = [&](int place) { return isAcross ? image.pixel(place, middle) : image.pixel(middle, place); };
    const QRgb inside = at(qRound((isAcross ? box.center().x() : box.center().y()) * scale));
    int count = 0;
    for (int place = 0; at(place) != inside; ++place) {
        count += at(place) != at(0) ? 1 : 0;
    }
    return count;
}

void addScales()
{
    QTest::addColumn<qreal>("scale");
    QTest::addColumn<int>("pixels");
    QTest::newRow("1") << 1.0 << 1;
    QTest::newRow("1.25") << 1.25 << 1;
    QTest::newRow("1.5") << 1.5 << 1;
    QTest::newRow("1.75") << 1.75 << 2;
    QTest::newRow("2") << 2.0 << 2;
    QTest::newRow("3") << 3.0 << 3;
}

} // namespace

class HairlineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOutlineIsOfWholePixels_data() { addScales(); }
    void anOutlineIsOfWholePixels();
    void buttonsFieldsAndBoxesHaveSuchOutlines_data() { addScales(); }
    void buttonsFieldsAndBoxesHaveSuchOutlines();
    void aTurnedPainterDrawsToo();
};

void HairlineTest::anOutlineIsOfWholePixels()
{
    QFETCH(const qreal, scale);
    QFETCH(const int, pixels);
    QImage image = sheet(scale);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const Hairline line = hairline(painter, QRectF(box).adjusted(0.2, 0.2, 0.2, 0.2));
    painter.setPen(QPen(Qt::black, line.width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(line.box);
    painter.end();
    // Beside the corners.
    QSet<QRgb> colors;
    for (int x = 0; x < image.width(); ++x) {
        colors.insert(image.pixel(x, image.height() / 2));
    }
    for (int y = 0; y < image.height(); ++y) {
        colors.insert(image.pixel(image.width() / 2, y));
    }
    for (const QRgb color : colors) {
        QVERIFY2(qGray(color) < 8 || qGray(color) > 247, qPrintable(QString::number(qGray(color))));
    }
    QCOMPARE(qRound(line.width * scale), pixels);
}

void HairlineTest::buttonsFieldsAndBoxesHaveSuchOutlines()
{
    QFETCH(const qreal, scale);
    QFETCH(const int, pixels);
    const KelmStyle style;
    QStyleOptionButton button;
    button.rect = box;
    button.palette = style::palette(Appearance::light);
    button.state = QStyle::State_Enabled;
    QStyleOptionFrame field;
    field.rect = box;
    field.palette = button.palette;
    field.state = QStyle::State_Enabled;
    field.lineWidth = 1;
    const std::vector<std::pair<const char*, std::function<void(QPainter&)>>> drawings{
        {"button", [&](QPainter& p) { style.drawControl(QStyle::CE_PushButtonBevel, &button, &p, nullptr); }},
        {"field", [&](QPainter& p) { style.drawPrimitive(QStyle::PE_PanelLineEdit, &field, &p, nullptr); }},
        {"box", [&](QPainter& p) { style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &button, &p, nullptr); }},
    };
    for (const auto& [name, draw] : drawings) {
        QImage image = sheet(scale);
        image.fill(QColor(120, 160, 120));
        QPainter painter(&image);
        draw(painter);
        painter.end();
        for (const bool isAcross : {true, false}) {
            const int found = edgePixels(image, isAcross);
            QVERIFY2(found == pixels, qPrintable(u"%1: %2"_s.arg(QLatin1String(name)).arg(found)));
        }
    }
}

void HairlineTest::aTurnedPainterDrawsToo()
{
    QImage image = sheet(1);
    QPainter painter(&image);
    painter.rotate(30);
    const Hairline line = hairline(painter, QRectF(10, 10, 20, 8));
    QCOMPARE(line.width, 1.0);
    QCOMPARE(line.box, QRectF(10.5, 10.5, 19, 7));
}

const kelm::test::Registered<HairlineTest> registered(kelm::test::Toolkit::widgets);

} // namespace hairline_test

#include "hairline_test.moc"
