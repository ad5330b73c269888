#include "platform/view/plain_button.h"
#include "support/test_program.h"

#include <QAccessible>
#include <QMenu>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

namespace plain_button_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A window with a field that has the keyboard and the button.
struct Fixture
{
    QWidget window;
    QWidget field{&window};
    PlainButton button;

    explicit Fixture(const ButtonLook& look = {.textSize = 11, .fixedSize = {40, 28}}) : button(look, &window)
    {
        window.resize(300, 200);
        field.setFocusPolicy(Qt::StrongFocus);
        field.setGeometry(0, 0, 50, 20);
        button.move(100, 100);
        button.resize(button.sizeHint());
        window.show();
        if (!QTest::qWaitForWindowActive(&window)) {
            qFatal("no window");
        }
        field.setFocus();
    }

    QColor ground() { return button.grab().toImage().pixelColor(button.width() / 2, 3); }
    void hover()
    {
        QTest::mouseMove(&button);
        QTRY_VERIFY(button.underMouse());
    }
};

QAccessibleInterface& interfaceOf(QWidget& widget)
{
    return *QAccessible::queryAccessibleInterface(&widget);
}

} // namespace

class PlainButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void aClickLeavesTheKeyboardWhereItIs();
    void theKeyboardPressesIt_data();
    void theKeyboardPressesIt();
    void aHeldKeyPressesItOnce_data() { theKeyboardPressesIt_data(); }
    void aHeldKeyPressesItOnce();
    void screenReadersGetARoleAndAName();
    void aTextIsTheNameAndTheHelpDescribes();
    void itsExtentFollowsFromWhatItHolds();
    void aFixedExtentHolds();
    void groundsComeFromTheState();
    void aDisabledButtonTakesNoClickAndStandsBack();
    void aMenuIsFilledAnewEachTime();
    void theKeyboardOpensTheMenu();
    void aMenuAtTheLowerEdgeOpensUpwards();
    void theFocusRingComesWithTabAlone();
    void theFocusRingOutlastsAnotherWindow();
    void helpTextIsNoMarkup();
};

void PlainButtonTest::aClickLeavesTheKeyboardWhereItIs()
{
    Fixture fixture;
    const QSignalSpy clicks(&fixture.button, &PlainButton::clicked);
    QTest::mouseClick(&fixture.button, Qt::LeftButton);
    QCOMPARE(clicks.count(), 1);
    QVERIFY(fixture.field.hasFocus());
}

void PlainButtonTest::theKeyboardPressesIt_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("space") << Qt::Key_Space;
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter") << Qt::Key_Enter;
}

void PlainButtonTest::theKeyboardPressesIt()
{
    QFETCH(Qt::Key, key);
    Fixture fixture;
    const QSignalSpy clicks(&fixture.button, &PlainButton::clicked);
    QTest::keyClick(&fixture.field, Qt::Key_Tab);
    QVERIFY(fixture.button.hasFocus());
    QTest::keyClick(&fixture.button, key);
    QCOMPARE(clicks.count(), 1);
}

void PlainButtonTest::aHeldKeyPressesItOnce()
{
    QFETCH(Qt::Key, key);
    Fixture fixture;
    const QSignalSpy clicks(&fixture.button, &PlainButton::clicked);
    QTest::keyClick(&fixture.field, Qt::Key_Tab);
    // What was pressed elsewhere is none of its own.
    QTest::keyRelease(&fixture.button, key);
    QCOMPARE(clicks.count(), 0);
    QTest::keyPress(&fixture.button, key);
    for (int repeat = 0; repeat < 3; ++repeat) {
        QKeyEvent up(QEvent::KeyRelease, key, {}, {}, true);
        QKeyEvent down(QEvent::KeyPress, key, {}, {}, true);
        QCoreApplication::sendEvent(&fixture.button, &up);
        QCoreApplication::sendEvent(&fixture.button, &down);
    }
    // Where it goes on would be heard by whoever has the keyboard after the click.
    QCOMPARE(clicks.count(), 0);
    QTest::keyRelease(&fixture.button, key);
    QCOMPARE(clicks.count(), 1);
}

void PlainButtonTest::screenReadersGetARoleAndAName()
{
    Fixture fixture;
    fixture.button.setHelp(u"Save"_s);
    QCOMPARE(interfaceOf(fixture.button).role(), QAccessible::Button);
    QCOMPARE(interfaceOf(fixture.button).text(QAccessible::Name), u"Save"_s);
    const QSignalSpy clicks(&fixture.button, &PlainButton::clicked);
    QAccessibleActionInterface* actions = interfaceOf(fixture.button).actionInterface();
    QVERIFY(actions != nullptr);
    actions->doAction(QAccessibleActionInterface::pressAction());
    QTRY_COMPARE(clicks.count(), 1);
    fixture.button.setCheckable(true);
    fixture.button.setChecked(true);
    QVERIFY(interfaceOf(fixture.button).state().checked);
}

void PlainButtonTest::aTextIsTheNameAndTheHelpDescribes()
{
    Fixture fixture;
    fixture.button.setText(u"Run"_s);
    fixture.button.setHelp(u"Run (⌘R)"_s);
    QCOMPARE(interfaceOf(fixture.button).text(QAccessible::Name), u"Run"_s);
    QCOMPARE(interfaceOf(fixture.button).text(QAccessible::Description), u"Run (⌘R)"_s);
}

void PlainButtonTest::itsExtentFollowsFromWhatItHolds()
{
    PlainButton button({.symbol = u"plus"_s, .symbolSize = 10, .textSize = 11, .padding = {7, 3, 5, 2}, .spacing = 4});
    QCOMPARE(button.sizeHint(), QSize(22, 15));
    button.setText(u"Text"_s);
    const QFontMetrics metrics(style::interfaceFont(11));
    QCOMPARE(button.sizeHint(), QSize(22 + 4 + metrics.horizontalAdvance(u"Text"_s), 5 + metrics.height()));
    button.setSymbol({});
    QCOMPARE(button.sizeHint().width(), 12 + metrics.horizontalAdvance(u"Text"_s));
}

void PlainButtonTest::aFixedExtentHolds()
{
    PlainButton button({.symbol = u"plus"_s, .fixedSize = {28, 0}});
    QCOMPARE(button.sizeHint().width(), 28);
    button.setLook({.fixedSize = {30, 31}});
    QCOMPARE(button.sizeHint(), QSize(30, 31));
}

void PlainButtonTest::groundsComeFromTheState()
{
    Fixture fixture({.ground = Tint(QColor(10, 20, 30)),
                     .checkedGround = Tint(QColor(40, 50, 60)),
                     .cornerRadius = 0,
                     .fixedSize = {40, 28}});
    QCOMPARE(fixture.ground(), QColor(10, 20, 30));
    fixture.hover();
    QVERIFY(fixture.ground() != QColor(10, 20, 30));
    const QColor hovered = fixture.ground();
    QTest::mousePress(&fixture.button, Qt::LeftButton);
    QVERIFY(fixture.ground() != hovered);
    QTest::mouseRelease(&fixture.button, Qt::LeftButton);
    QTest::mouseMove(&fixture.field);
    QTRY_VERIFY(!fixture.button.underMouse());
    fixture.button.setCheckable(true);
    fixture.button.setChecked(true);
    QCOMPARE(fixture.ground(), QColor(40, 50, 60));
}

void PlainButtonTest::aDisabledButtonTakesNoClickAndStandsBack()
{
    Fixture fixture;
    fixture.button.setText(u"M"_s);
    const QImage before = fixture.button.grab().toImage();
    fixture.button.setEnabled(false);
    const QSignalSpy clicks(&fixture.button, &PlainButton::clicked);
    QTest::mouseClick(&fixture.button, Qt::LeftButton);
    QCOMPARE(clicks.count(), 0);
    QVERIFY(fixture.button.grab().toImage() != before);
}

void PlainButtonTest::aMenuIsFilledAnewEachTime()
{
    Fixture fixture;
    int fills = 0;
    int chosen = 0;
    fixture.button.setMenu([&](QMenu& menu) {
        ++fills;
        menu.addAction(u"One"_s, &fixture.button, [&] { ++chosen; });
    });
    for (int round = 1; round <= 2; ++round) {
        QTest::mousePress(&fixture.button, Qt::LeftButton);
        auto* menu = fixture.button.findChild<QMenu*>();
        QVERIFY(menu != nullptr && menu->isVisible());
        QVERIFY(menu->y() >= fixture.button.mapToGlobal(QPoint(0, fixture.button.height())).y());
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().first()).center());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(fixture.button.findChild<QMenu*>() == nullptr);
        QCOMPARE(fills, round);
        QCOMPARE(chosen, round);
    }
}

void PlainButtonTest::theKeyboardOpensTheMenu()
{
    Fixture fixture;
    fixture.button.setMenu([](QMenu& menu) { menu.addAction(u"One"_s); });
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Down}) {
        fixture.button.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&fixture.button, key);
        auto* menu = fixture.button.findChild<QMenu*>();
        QVERIFY(menu != nullptr && menu->isVisible());
        menu->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void PlainButtonTest::aMenuAtTheLowerEdgeOpensUpwards()
{
    Fixture fixture;
    fixture.button.move(100, fixture.window.height() - fixture.button.height());
    fixture.button.setMenu([](QMenu& menu) { menu.addAction(u"One"_s); });
    QTest::mousePress(&fixture.button, Qt::LeftButton);
    auto* menu = fixture.button.findChild<QMenu*>();
    QVERIFY(menu->geometry().bottom() < fixture.button.mapToGlobal(QPoint()).y());
    menu->close();
}

void PlainButtonTest::theFocusRingComesWithTabAlone()
{
    Fixture fixture;
    const QImage plain = fixture.button.grab().toImage();
    fixture.button.setFocus(Qt::MouseFocusReason);
    QCOMPARE(fixture.button.grab().toImage(), plain);
    fixture.field.setFocus();
    fixture.button.setFocus(Qt::TabFocusReason);
    QVERIFY(fixture.button.grab().toImage() != plain);
}

void PlainButtonTest::theFocusRingOutlastsAnotherWindow()
{
    for (const Qt::FocusReason reason : {Qt::TabFocusReason, Qt::MouseFocusReason}) {
        Fixture fixture;
        fixture.button.setFocus(reason);
        const QImage before = fixture.button.grab().toImage();
        {
            QWidget other;
            other.show();
            other.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&other));
        }
        fixture.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&fixture.window));
        QVERIFY(fixture.button.hasFocus());
        QCOMPARE(fixture.button.grab().toImage(), before);
    }
}

void PlainButtonTest::helpTextIsNoMarkup()
{
    Fixture fixture;
    fixture.button.setHelp(u"<b>x</b>"_s);
    QVERIFY(fixture.button.toolTip().contains(u"&lt;b&gt;x&lt;/b&gt;"));
    QCOMPARE(fixture.button.accessibleName(), u"<b>x</b>"_s);
}

const kelm::test::Registered<PlainButtonTest> registered(kelm::test::Toolkit::widgets);

} // namespace plain_button_test

#include "plain_button_test.moc"
