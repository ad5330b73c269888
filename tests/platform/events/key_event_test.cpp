#include "platform/events/key_event.h"
#include "support/test_program.h"

#include <QKeyEvent>
#include <QtTest>

namespace key_event_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class KeyEventTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysHaveTheirCodes_data();
    void keysHaveTheirCodes();
    void characters_data();
    void characters();
    void controlIsOneKeyOrTheOther();
};

void KeyEventTest::keysHaveTheirCodes_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("code");
    QTest::newRow("return") << int(Qt::Key_Return) << 36;
    QTest::newRow("tab") << int(Qt::Key_Tab) << 48;
    QTest::newRow("shift and tab") << int(Qt::Key_Backtab) << 48;
    QTest::newRow("space") << int(Qt::Key_Space) << 49;
    QTest::newRow("escape") << int(Qt::Key_Escape) << 53;
    QTest::newRow("left") << int(Qt::Key_Left) << 123;
    QTest::newRow("right") << int(Qt::Key_Right) << 124;
    QTest::newRow("down") << int(Qt::Key_Down) << 125;
    QTest::newRow("up") << int(Qt::Key_Up) << 126;
    QTest::newRow("a") << int(Qt::Key_A) << 0;
    QTest::newRow("9") << int(Qt::Key_9) << 25;
    QTest::newRow("an opening parenthesis is on the 9") << int(Qt::Key_ParenLeft) << 25;
    QTest::newRow("slash") << int(Qt::Key_Slash) << 44;
    QTest::newRow("question mark") << int(Qt::Key_Question) << 44;
    QTest::newRow("the keypad's enter") << int(Qt::Key_Enter) << 76;
    QTest::newRow("no such key") << int(Qt::Key_Hangul) << 0xFFFF;
    QTest::newRow("a letter of another script") << 0xac00 << 0xFFFF;
}

void KeyEventTest::keysHaveTheirCodes()
{
    QFETCH(int, key);
    QFETCH(int, code);
    QCOMPARE(virtualKeyCode(QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier)), code);
}

void KeyEventTest::characters_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("characters");
    QTest::addColumn<QString>("withoutModifiers");
    using Modifiers = Qt::KeyboardModifiers;
    QTest::newRow("a letter") << int(Qt::Key_L) << Modifiers(Qt::NoModifier) << u"l"_s << u"l"_s << u"l"_s;
    QTest::newRow("a capital") << int(Qt::Key_L) << Modifiers(Qt::ShiftModifier) << u"L"_s << u"L"_s << u"L"_s;
    QTest::newRow("with Command") << int(Qt::Key_D) << Modifiers(Qt::ControlModifier) << u"\x04"_s << u"d"_s << u"d"_s;
    QTest::newRow("with Command and Shift")
        << int(Qt::Key_L) << Modifiers(Qt::ControlModifier | Qt::ShiftModifier) << u"\x0c"_s << u"L"_s << u"L"_s;
    QTest::newRow("a sign") << int(Qt::Key_Slash) << Modifiers(Qt::ControlModifier) << QString() << u"/"_s << u"/"_s;
    QTest::newRow("Option changes what is typed")
        << int(Qt::Key_L) << Modifiers(Qt::AltModifier) << u"¬"_s << u"¬"_s << u"l"_s;
    QTest::newRow("an arrow") << int(Qt::Key_Down) << Modifiers(Qt::NoModifier) << QString() << QString() << QString();
    QTest::newRow("Korean") << 0xac00 << Modifiers(Qt::NoModifier) << u"가"_s << u"가"_s << u"가"_s;
}

void KeyEventTest::characters()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, text);
    const QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QTEST(charactersOf(event), "characters");
    QTEST(charactersIgnoringModifiers(event), "withoutModifiers");
}

void KeyEventTest::controlIsOneKeyOrTheOther()
{
    QVERIFY(isControlHeld(QKeyEvent(QEvent::KeyPress, Qt::Key_Space, Qt::MetaModifier)));
#ifndef Q_OS_MACOS
    QVERIFY(isControlHeld(QKeyEvent(QEvent::KeyPress, Qt::Key_Space, Qt::ControlModifier)));
#endif
    QVERIFY(!isControlHeld(QKeyEvent(QEvent::KeyPress, Qt::Key_Space, Qt::AltModifier)));
}

const kelm::test::Registered<KeyEventTest> registered(kelm::test::Toolkit::gui);

} // namespace key_event_test

#include "key_event_test.moc"
