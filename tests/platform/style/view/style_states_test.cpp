#include "platform/style/view/style.h"
#include "support/ink_recorder.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QStyleOptionComboBox>
#include <QToolButton>
#include <QtTest>

#include <memory>

namespace style_states_test {

using namespace kelm;
using namespace kelm::test;

namespace {

enum class Kind { toolButton, comboBox, slider, checkBox, radioButton, pushButton };

std::unique_ptr<QWidget> make(Kind kind)
{
    switch (kind) {
    case Kind::toolButton: {
        auto button = std::make_unique<QToolButton>();
        button->setText(QStringLiteral("Aa"));
        button->setCheckable(true);
        button->setAutoRaise(true);
        return button;
    }
    case Kind::comboBox: {
        auto box = std::make_unique<QComboBox>();
        box->addItems({QStringLiteral("One"), QStringLiteral("Two")});
        return box;
    }
    case Kind::slider: {
        auto slider = std::make_unique<QSlider>(Qt::Horizontal);
        slider->setValue(40);
        return slider;
    }
    case Kind::checkBox:
        return std::make_unique<QCheckBox>(QStringLiteral("Word wrap"));
    case Kind::radioButton:
        return std::make_unique<QRadioButton>(QStringLiteral("One"));
    case Kind::pushButton:
        return std::make_unique<QPushButton>(QStringLiteral("Open"));
    }
    return nullptr;
}

/// A window with one control in it.
struct Fixture
{
    QWidget window;
    std::unique_ptr<QWidget> control;

    Fixture(Kind kind, Appearance appearance) : control(make(kind))
    {
        QApplication::setPalette(style::palette(appearance));
        control->setParent(&window);
        window.resize(240, 60);
        control->setGeometry(20, 16, 180, control->sizeHint().height());
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        window.setFocus();
    }
    ~Fixture() { QApplication::setPalette(style::palette(Appearance::dark)); }

    QImage picture() { return window.grab().toImage(); }
    void hover()
    {
        control->setAttribute(Qt::WA_UnderMouse);
        QHoverEvent enter(QEvent::HoverEnter, QPointF(10, 10), QPointF(), QPointF());
        QCoreApplication::sendEvent(control.get(), &enter);
    }
};

} // namespace

class StyleStatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void eachStateLooksDifferent_data();
    void eachStateLooksDifferent();
    void aDefaultButtonIsReadInBothAppearances();
    void aSlidersKnobStandsWhereItsValueIs();
    void theKnobCanBeDragged();
    void theChevronOfABoxIsBesideItsText();
};

void StyleStatesTest::eachStateLooksDifferent_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("isDark");
    const char* const names[] = {"tool button", "combo box", "slider", "check box", "radio button", "push button"};
    for (int kind = 0; kind < 6; ++kind) {
        for (const bool isDark : {true, false}) {
            QTest::addRow("%s, %s", names[kind], isDark ? "dark" : "light") << kind << isDark;
        }
    }
}

void StyleStatesTest::eachStateLooksDifferent()
{
    QFETCH(int, kind);
    QFETCH(bool, isDark);
    Fixture fixture(static_cast<Kind>(kind), isDark ? Appearance::dark : Appearance::light);
    QList<QImage> pictures{fixture.picture()};
    fixture.hover();
    pictures.append(fixture.picture());
    QTest::mousePress(fixture.control.get(), Qt::LeftButton, {},
                      kind == 2 ? QPoint(75, fixture.control->height() / 2) : QPoint(8, fixture.control->height() / 2));
    pictures.append(fixture.picture());
    if (auto* box = qobject_cast<QComboBox*>(fixture.control.get())) {
        box->hidePopup();
    }
    QTest::mouseRelease(fixture.control.get(), Qt::LeftButton, {}, QPoint(-50, -50));
    fixture.control->setAttribute(Qt::WA_UnderMouse, false);
    if (auto* button = qobject_cast<QAbstractButton*>(fixture.control.get())) {
        button->setDown(false);
        if (button->isCheckable()) {
            button->setChecked(true);
            pictures.append(fixture.picture());
            button->setAutoExclusive(false);
            button->setChecked(false);
        }
    }
    fixture.control->setEnabled(false);
    pictures.append(fixture.picture());
    fixture.control->setEnabled(true);
    fixture.control->setFocus(Qt::TabFocusReason);
    fixture.window.setAttribute(Qt::WA_KeyboardFocusChange);
    pictures.append(fixture.picture());
    for (qsizetype i = 0; i < pictures.size(); ++i) {
        for (qsizetype j = i + 1; j < pictures.size(); ++j) {
            QVERIFY2(!isSame(pictures[i], pictures[j]), qPrintable(QStringLiteral("%1 and %2").arg(i).arg(j)));
        }
    }
}

void StyleStatesTest::aDefaultButtonIsReadInBothAppearances()
{
    for (const Appearance appearance : {Appearance::dark, Appearance::light}) {
        Fixture fixture(Kind::pushButton, appearance);
        static_cast<QPushButton&>(*fixture.control).setDefault(true);
        const std::vector<Ink> inks = inksOf(*fixture.control);
        QCOMPARE(inks.size(), std::size_t(1));
        QCOMPARE(inks[0].color, QColor(Qt::white));
        QVERIFY(inks[0].contrast() >= 4.5);
    }
}

void StyleStatesTest::aSlidersKnobStandsWhereItsValueIs()
{
    Fixture fixture(Kind::slider, Appearance::dark);
    auto& slider = static_cast<QSlider&>(*fixture.control);
    const auto knobX = [&](int value) {
        slider.setValue(value);
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = Qt::Horizontal;
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = slider.sliderPosition();
        return slider.style()
            ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider)
            .center()
            .x();
    };
    QVERIFY(knobX(0) < 12);
    QVERIFY(std::abs(knobX(50) - 90) < 4);
    QVERIFY(knobX(99) > 168);
}

void StyleStatesTest::theKnobCanBeDragged()
{
    Fixture fixture(Kind::slider, Appearance::dark);
    auto& slider = static_cast<QSlider&>(*fixture.control);
    slider.setValue(0);
    const int middle = slider.height() / 2;
    QTest::mousePress(&slider, Qt::LeftButton, {}, {9, middle});
    QTest::mouseMove(&slider, {90, middle});
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, {90, middle});
    QVERIFY2(std::abs(slider.value() - 50) <= 2, qPrintable(QString::number(slider.value())));
}

void StyleStatesTest::theChevronOfABoxIsBesideItsText()
{
    Fixture fixture(Kind::comboBox, Appearance::light);
    auto& box = static_cast<QComboBox&>(*fixture.control);
    box.resize(box.sizeHint());
    const std::vector<Ink> inks = inksOf(box);
    QCOMPARE(inks.size(), std::size_t(2));
    const bool isTextFirst = inks[0].kind == Ink::Kind::text;
    const Ink& text = inks[isTextFirst ? 0 : 1];
    const Ink& chevron = inks[isTextFirst ? 1 : 0];
    QCOMPARE(text.text, QStringLiteral("One"));
    QVERIFY(text.place.right() < chevron.place.left());
    QVERIFY(box.rect().contains(chevron.place));
    QVERIFY(chevron.contrast() >= 3);
}

const kelm::test::Registered<StyleStatesTest> registered(kelm::test::Toolkit::widgets);

} // namespace style_states_test

#include "style_states_test.moc"
