#include "platform/style/view/style.h"
#include "support/test_program.h"

#include <QFontDatabase>
#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QToolTip>
#include <QtTest>

#include <cmath>
#include <numeric>

namespace style_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// How wide the only stroke of a letter in a row is as it is drawn, in pixels; the row is a part of its height.
double stroke(const QString& letter, const QFont& font, double part)
{
    const int size = font.pixelSize();
    QPainterPath path;
    path.addText(size, 2 * size, font, letter);
    const QRectF box = path.boundingRect();
    QImage image(4 * size, 4 * size, QImage::Format_Grayscale8);
    image.fill(0);
    QPainter painter(&image);
    painter.setPen(Qt::white);
    painter.setFont(font);
    painter.drawText(size, 2 * size, letter);
    painter.end();
    const uchar* const row = image.constScanLine(static_cast<int>(box.top() + box.height() * part));
    return std::accumulate(row, row + image.width(), 0.0) / 255;
}

} // namespace

class StyleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void koreanIsAsStrongAsLatin_data();
    void koreanIsAsStrongAsLatin();
    void koreanIsAsLargeAsLatin();
    void thePalettesLeaveNoRoleToTheDesktop();
    void noKindOfWidgetKeepsTheDesktopsPalette();
};

void StyleTest::koreanIsAsStrongAsLatin_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QFont::Weight>("weight");
    for (const int size : {11, 12, 17, 24}) {
        QTest::addRow("regular %d", size) << size << QFont::Normal;
        QTest::addRow("semibold %d", size) << size << QFont::DemiBold;
    }
}

void StyleTest::koreanIsAsStrongAsLatin()
{
    QFETCH(int, size);
    QFETCH(QFont::Weight, weight);
    const QStringList installed = QFontDatabase::families();
    if (!installed.contains(u"Inter"_s) || !installed.contains(u"Noto Sans CJK KR"_s)) {
        QSKIP("the faces of the interface are not installed");
    }
    const QFont font = style::interfaceFont(size, weight);
    const double latin = stroke(u"l"_s, font, 0.5);
    const double korean = stroke(u"이"_s, font, 0.9);
    QVERIFY(latin > 0.5);
    QVERIFY2(std::abs(korean - latin) <= latin * 0.2, qPrintable(u"%1 beside %2"_s.arg(korean).arg(latin)));
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

void StyleTest::thePalettesLeaveNoRoleToTheDesktop()
{
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        const QPalette palette = style::palette(appearance);
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            for (int role = 0; role < QPalette::NColorRoles; ++role) {
                const bool isSet = role == QPalette::NoRole || palette.isBrushSet(group, QPalette::ColorRole(role));
                QVERIFY2(isSet, qPrintable(u"role %1 of group %2"_s.arg(role).arg(group)));
            }
        }
    }
}

void StyleTest::noKindOfWidgetKeepsTheDesktopsPalette()
{
    // As the platform's part of the toolkit does at the start.
    const QPalette desktops(Qt::magenta);
    QApplication::setPalette(desktops);
    for (const char* kind : {"QMenu", "QMenuBar", "QLabel", "QComboBox", "QMessageBoxLabel"}) {
        QApplication::setPalette(desktops, kind);
    }
    QToolTip::setPalette(desktops);
    style::installOn(*qApp);
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        setApplicationAppearance(appearance);
        const QPalette palette = style::palette(appearance);
        for (const char* kind : {"QWidget", "QMenu", "QMenuBar", "QLabel", "QComboBox", "QMessageBoxLabel"}) {
            QVERIFY2(QApplication::palette(kind) == palette, kind);
        }
        QCOMPARE(QToolTip::palette(), palette);
        QCOMPARE(QMenu().palette().color(QPalette::Window), palette.color(QPalette::Window));
    }
}

const kelm::test::Registered<StyleTest> registered(kelm::test::Toolkit::widgets);

} // namespace style_test

#include "style_test.moc"
