#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "support/contrast.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QtTest>

namespace ink_test {

using namespace kelm;
using namespace kelm::test;

namespace {

constexpr std::array hues{SystemColor::red,  SystemColor::orange, SystemColor::yellow, SystemColor::green,
                          SystemColor::cyan, SystemColor::blue,   SystemColor::purple, SystemColor::gray};
constexpr double leastOfText = 4.5;

} // namespace

class InkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namedHuesAreReadOnTheWindowAndInFields();
    void changedWordsAreRead();
    void labelsAreRead();
    void whiteIsReadOnTheAccentsGround();
    void inkHasTheTintsOpacity();
    void otherColoursAreTheirOwn();
};

void InkTest::namedHuesAreReadOnTheWindowAndInFields()
{
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        for (const SystemColor ground : {SystemColor::windowBackground, SystemColor::controlBackground}) {
            for (const SystemColor hue : hues) {
                const QColor below = systemColor(ground, appearance);
                QVERIFY(contrast(style::ink(hue, appearance), below) >= leastOfText);
                // A thin layer of the hue is what marks a line.
                const QColor layer = over(below, Tint(hue).at(0.1).in(appearance));
                QVERIFY2(contrast(style::ink(hue, appearance), layer) >= leastOfText,
                         qPrintable(QStringLiteral("%1 on %2").arg(style::ink(hue, appearance).name(), layer.name())));
            }
        }
    }
}

void InkTest::changedWordsAreRead()
{
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        for (const SystemColor hue : {SystemColor::red, SystemColor::green}) {
            const QColor below = systemColor(SystemColor::controlBackground, appearance);
            const QColor line = over(below, Tint(hue).at(0.1).in(appearance));
            const QColor word = over(line, Tint(hue).at(0.35).in(appearance));
            QVERIFY(contrast(style::ink(hue, appearance), word) >= leastOfText);
        }
    }
}

void InkTest::labelsAreRead()
{
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        const QPalette palette = style::palette(appearance);
        const QColor window = palette.color(QPalette::Window);
        const QColor field = palette.color(QPalette::Base);
        const auto onWindow = [&](const QColor& color) { return contrast(over(window, color), window); };
        QVERIFY(onWindow(Tint::secondary().in(appearance)) >= leastOfText);
        QVERIFY(contrast(over(field, palette.color(QPalette::PlaceholderText)), field) >= leastOfText);
        QVERIFY(onWindow(palette.color(QPalette::Disabled, QPalette::WindowText)) >= 2.5);
        const QColor button = palette.color(QPalette::Button);
        QVERIFY(contrast(over(button, palette.color(QPalette::Disabled, QPalette::ButtonText)), button) >= 2.5);
    }
}

void InkTest::whiteIsReadOnTheAccentsGround()
{
    QVERIFY(contrast(Qt::white, style::accentGround) >= leastOfText);
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        const QPalette palette = style::palette(appearance);
        QVERIFY(contrast(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight)) >= leastOfText);
    }
}

void InkTest::inkHasTheTintsOpacity()
{
    QCOMPARE(style::ink(Tint(SystemColor::red).at(0.5), Appearance::light).alpha(), 128);
}

void InkTest::otherColoursAreTheirOwn()
{
    QCOMPARE(style::ink(QColor(1, 2, 3), Appearance::light), QColor(1, 2, 3));
    QCOMPARE(style::ink(Tint::primary(), Appearance::dark), Tint::primary().in(Appearance::dark));
}

const kelm::test::Registered<InkTest> registered(kelm::test::Toolkit::gui);

} // namespace ink_test

#include "ink_test.moc"
