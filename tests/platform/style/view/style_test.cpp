#include "platform/style/view/style.h"
#include "support/test_program.h"

#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QtTest>

namespace style_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// How wide the rightmost stroke of a letter is at a part of its height, in thousandths of the font's size.
int stroke(const QString& letter, QFont font, double part)
{
    constexpr int size = 1000;
    font.setPixelSize(size);
    QPainterPath path;
    path.addText(0, size, font, letter);
    QImage image(2 * size, 2 * size, QImage::Format_Grayscale8);
    image.fill(0);
    QPainter painter(&image);
    painter.fillPath(path, Qt::white);
    painter.end();
    const QRectF box = path.boundingRect();
    const uchar* const line = image.constScanLine(static_cast<int>(box.top() + box.height() * part));
    int right = static_cast<int>(box.right()) + 1;
    while (right > 0 && line[right] < 128) {
        --right;
    }
    int left = right;
    while (left > 0 && line[left] >= 128) {
        --left;
    }
    return right - left;
}

} // namespace

class StyleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void koreanIsAsStrongAsLatin_data();
    void koreanIsAsStrongAsLatin();
    void koreanIsAsLargeAsLatin();
};

void StyleTest::koreanIsAsStrongAsLatin_data()
{
    QTest::addColumn<QFont::Weight>("weight");
    QTest::newRow("regular") << QFont::Normal;
    QTest::newRow("semibold") << QFont::DemiBold;
    QTest::newRow("bold") << QFont::Bold;
}

void StyleTest::koreanIsAsStrongAsLatin()
{
    QFETCH(QFont::Weight, weight);
    const QFont font = style::interfaceFont(12, weight);
    const QStringList installed = QFontDatabase::families();
    if (!installed.contains(u"Inter"_s) || !installed.contains(u"NanumBarunGothic"_s)) {
        QSKIP("the faces of the interface are not installed");
    }
    const int latin = stroke(u"l"_s, font, 0.5);
    const int korean = stroke(u"이"_s, font, 0.9);
    QVERIFY(latin > 50);
    QVERIFY2(std::abs(korean - latin) * 100 <= latin * 20, qPrintable(u"%1 beside %2"_s.arg(korean).arg(latin)));
}

void StyleTest::koreanIsAsLargeAsLatin()
{
    QFont font = style::interfaceFont(12);
    font.setPixelSize(1000);
    QPainterPath korean;
    korean.addText(0, 0, font, u"한"_s);
    QPainterPath latin;
    latin.addText(0, 0, font, u"Hg"_s);
    const double ratio = korean.boundingRect().height() / latin.boundingRect().height();
    QVERIFY2(ratio > 0.8 && ratio < 1.1, qPrintable(QString::number(ratio)));
}

const kelm::test::Registered<StyleTest> registered(kelm::test::Toolkit::widgets);

} // namespace style_test

#include "style_test.moc"
