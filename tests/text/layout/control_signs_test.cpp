#include "support/test_program.h"
#include "text/layout/control_signs.h"
#include "text/layout/text_layout.h"

#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QtTest>

#include <cmath>

namespace control_signs_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class ControlSignsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signsStandUnitForUnit();
    void everythingElseStays();
    void eachRunHasOneGround();
    void eachSignHasAWidthAndInk();
    void signsAndColorsStandTogether();
};

void ControlSignsTest::signsStandUnitForUnit()
{
    QCOMPARE(withControlSigns(u"\x1b[31m\a\u007f\u009b"_s + QChar(0) + u"\u0080\u009f"_s), u"[[31mG?{@`-"_s);
    QCOMPARE(withControlSigns(u"a\u202eb\u202c\u2066c\u2069"_s), u"a<b|>c|"_s);
}

void ControlSignsTest::everythingElseStays()
{
    for (char16_t code = 0; code < 0x2100; ++code) {
        const QChar unit(code);
        const bool turns = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
        const bool isControl = (unit.category() == QChar::Other_Control && unit != u'\t') || turns;
        QCOMPARE(needsSign(unit), isControl);
        const QString shown = withControlSigns(unit);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.front() != unit, isControl);
        QVERIFY(!isControl || shown.front().isPrint());
    }
    const QString text = u"한글 😀\tdone"_s;
    QCOMPARE(withControlSigns(text), text);
    QVERIFY(controlSignFormats(text).isEmpty());
}

void ControlSignsTest::eachRunHasOneGround()
{
    const auto formats = controlSignFormats(u"a\x1b[1m\a\b\x1b"_s);
    QCOMPARE(formats.size(), 2);
    QCOMPARE(formats[0].start, 1);
    QCOMPARE(formats[0].length, 1);
    QCOMPARE(formats[1].start, 5);
    QCOMPARE(formats[1].length, 3);
}

void ControlSignsTest::eachSignHasAWidthAndInk()
{
    TextStorage storage;
    TextLayout layout(storage);
    layout.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), 20);
    layout.setShowsControlCharacters(true);
    for (const QString& text : {u"\x1b"_s, u"\u007f"_s, u"\u009b"_s, QString(QChar(0))}) {
        storage.setText(text + u"x"_s);
        const qreal start = layout.caretRect({0, false}).x();
        const qreal end = layout.caretRect({1, false}).x();
        QVERIFY2(end - start > layout.advance() / 2, qPrintable(QString::number(text.front().unicode())));
        QImage picture(60, 20, QImage::Format_RGB32);
        picture.fill(Qt::white);
        QPainter painter(&picture);
        for (const TextRow& row : layout.rowsBetween(0, 20)) {
            layout.paintRow(painter, row, {});
        }
        painter.end();
        // Its ground is seen on all sides of the letter.
        QVERIFY(picture.pixelColor(int(start) + 1, 10) != QColor(Qt::white));
    }
}

void ControlSignsTest::signsAndColorsStandTogether()
{
    TextStorage storage;
    TextLayout layout(storage);
    layout.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), 20);
    QCOMPARE(layout.showsControlCharacters(), false);
    layout.setShowsControlCharacters(true);
    storage.setText(u"a\x1bz"_s);
    const qreal width = layout.caretRect({3, false}).x();
    storage.setForeground({0, 3}, qRgb(255, 0, 0));
    QVERIFY(std::abs(layout.caretRect({3, false}).x() - width) < 0.5);
    const auto paint = [&] {
        QImage picture(60, 20, QImage::Format_RGB32);
        picture.fill(Qt::white);
        QPainter painter(&picture);
        for (const TextRow& row : layout.rowsBetween(0, 20)) {
            layout.paintRow(painter, row, {});
        }
        return picture;
    };
    // The sign has its ground in all colours, and its letter that of the text.
    const QImage red = paint();
    storage.setForeground({0, 3}, qRgb(0, 0, 255));
    const QImage blue = paint();
    const QRect sign(int(width / 3) + 1, 0, int(width / 3) - 2, 20);
    QVERIFY(red.copy(sign) != blue.copy(sign));
    QCOMPARE(red.pixelColor(sign.left(), 10), blue.pixelColor(sign.left(), 10));
    QVERIFY(red.pixelColor(sign.left(), 10) != QColor(Qt::white));
}

const kelm::test::Registered<ControlSignsTest> registered(kelm::test::Toolkit::gui);

} // namespace control_signs_test

#include "control_signs_test.moc"
