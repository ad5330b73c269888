#include "platform/desktop/named_colors.h"
#include "support/test_program.h"

#include <QtTest>

namespace named_colors_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class NamedColorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void systemColorsHaveTheirFixedValues_data();
    void systemColorsHaveTheirFixedValues();
    void plainColorsArePure();
    void theAppearanceGoesToWhatIsInstalled();
};

void NamedColorsTest::systemColorsHaveTheirFixedValues_data()
{
    QTest::addColumn<SystemColor>("color");
    QTest::addColumn<QColor>("dark");
    QTest::addColumn<QColor>("light");
    QTest::newRow("red") << SystemColor::red << QColor(255, 69, 58) << QColor(255, 59, 48);
    QTest::newRow("orange") << SystemColor::orange << QColor(255, 159, 10) << QColor(255, 149, 0);
    QTest::newRow("yellow") << SystemColor::yellow << QColor(255, 214, 10) << QColor(255, 204, 0);
    QTest::newRow("green") << SystemColor::green << QColor(50, 215, 75) << QColor(40, 205, 65);
    QTest::newRow("cyan") << SystemColor::cyan << QColor(90, 200, 245) << QColor(85, 190, 240);
    QTest::newRow("blue") << SystemColor::blue << QColor(10, 132, 255) << QColor(0, 122, 255);
    QTest::newRow("purple") << SystemColor::purple << QColor(191, 90, 242) << QColor(175, 82, 222);
    QTest::newRow("gray") << SystemColor::gray << QColor(152, 152, 157) << QColor(142, 142, 147);
    QTest::newRow("primary label") << SystemColor::primaryLabel << QColor(255, 255, 255, 217) << QColor(0, 0, 0, 217);
    QTest::newRow("secondary label") << SystemColor::secondaryLabel << QColor(255, 255, 255, 153)
                                     << QColor(0, 0, 0, 153);
    QTest::newRow("window") << SystemColor::windowBackground << QColor(50, 50, 50) << QColor(236, 236, 236);
    QTest::newRow("control") << SystemColor::controlBackground << QColor(30, 30, 30) << QColor(255, 255, 255);
    QTest::newRow("accent is blue") << SystemColor::accent << QColor(10, 132, 255) << QColor(0, 122, 255);
}

void NamedColorsTest::systemColorsHaveTheirFixedValues()
{
    QFETCH(SystemColor, color);
    QFETCH(QColor, dark);
    QFETCH(QColor, light);
    QCOMPARE(systemColor(color, Appearance::dark), dark);
    QCOMPARE(systemColor(color, Appearance::light), light);
}

void NamedColorsTest::plainColorsArePure()
{
    QCOMPARE(plainColors::green, QColor(0, 255, 0));
    QCOMPARE(plainColors::cyan, QColor(0, 255, 255));
    QCOMPARE(plainColors::red, QColor(255, 0, 0));
    QCOMPARE(plainColors::yellow, QColor(255, 255, 0));
    QCOMPARE(plainColors::gray, QColor(128, 128, 128));
}

void NamedColorsTest::theAppearanceGoesToWhatIsInstalled()
{
    // Nothing is installed yet, and nothing happens.
    setApplicationAppearance(Appearance::dark);
    QList<Appearance> seen;
    installAppearance([&seen](Appearance appearance) { seen << appearance; });
    setApplicationAppearance(Appearance::dark);
    setApplicationAppearance(Appearance::light);
    QCOMPARE(seen, (QList{Appearance::dark, Appearance::light}));
    installAppearance(nullptr);
    setApplicationAppearance(Appearance::dark);
    QCOMPARE(seen.size(), 2);
}

const kelm::test::Registered<NamedColorsTest> registered;

} // namespace named_colors_test

#include "named_colors_test.moc"
