#include "support/test_program.h"
#include "workbench/view/held_keys.h"

#include <QAction>
#include <QKeyEvent>
#include <QWidget>
#include <QtTest>

namespace held_keys_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

/// Notes each key that comes to it.
class Listener final : public QWidget
{
public:
    QStringList heard;

protected:
    void keyPressEvent(QKeyEvent* event) override { note(*event, u"press"_s); }
    void keyReleaseEvent(QKeyEvent* event) override { note(*event, u"release"_s); }

private:
    void note(const QKeyEvent& event, const QString& what)
    {
        heard << what + u' ' + event.text() + (event.isAutoRepeat() ? u" again"_s : QString());
        QCOMPARE(event.timestamp(), quint64(event.nativeVirtualKey()));
    }
};

/// Counts how often its shortcut comes.
class Command final : public QAction
{
public:
    int count = 0;

protected:
    bool event(QEvent* event) override
    {
        count += event->type() == QEvent::Shortcut ? 1 : 0;
        return true;
    }
};

class HeldKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aReleaseAndAPressOfOneMomentAreARepeat();
    void whatTheToolkitKnowsStays();
    void anotherKeyOrMomentIsAPress();
    void aKeyWithoutATimeIsAPress();
    void aKeyWithoutAPlaceIsAPress();
    void aShortcutThatIsNotToRepeatDoesNot();

private:
    /// As the display sends them: the place on the keyboard is the letter, and the time stands in a second place too.
    void send(QEvent::Type type, char16_t letter, quint64 time, bool isRepeat = false)
    {
        QKeyEvent event(type, int(letter), {}, letter, quint32(time), 0, QString(QChar(letter)), isRepeat);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(listener_->windowHandle(), &event);
    }
    void press(char16_t letter, quint64 time, bool isRepeat = false) { send(QEvent::KeyPress, letter, time, isRepeat); }
    void release(char16_t letter, quint64 time, bool isRepeat = false)
    {
        send(QEvent::KeyRelease, letter, time, isRepeat);
    }

    std::unique_ptr<Listener> listener_;
    std::unique_ptr<HeldKeys> keys_;
};

void HeldKeysTest::init()
{
    listener_ = std::make_unique<Listener>();
    keys_ = std::make_unique<HeldKeys>(nullptr);
    listener_->show();
    QVERIFY(QTest::qWaitForWindowActive(listener_.get()));
}

void HeldKeysTest::aReleaseAndAPressOfOneMomentAreARepeat()
{
    press(u'a', 1000);
    release(u'a', 1660);
    press(u'a', 1660);
    release(u'a', 1700);
    press(u'a', 1700);
    release(u'a', 1720);
    QCOMPARE(listener_->heard, (QStringList{u"press a"_s, u"release a"_s, u"press a again"_s, u"release a"_s,
                                            u"press a again"_s, u"release a"_s}));
}

void HeldKeysTest::whatTheToolkitKnowsStays()
{
    press(u'a', 1000);
    release(u'a', 1660, true);
    press(u'a', 1660, true);
    QCOMPARE(listener_->heard, (QStringList{u"press a"_s, u"release a again"_s, u"press a again"_s}));
}

void HeldKeysTest::anotherKeyOrMomentIsAPress()
{
    press(u'a', 1000);
    release(u'a', 1660);
    press(u'b', 1660);
    press(u'a', 1661);
    QCOMPARE(listener_->heard, (QStringList{u"press a"_s, u"release a"_s, u"press b"_s, u"press a"_s}));
}

void HeldKeysTest::aKeyWithoutATimeIsAPress()
{
    press(u'a', 0);
    release(u'a', 0);
    press(u'a', 0);
    QCOMPARE(listener_->heard, (QStringList{u"press a"_s, u"release a"_s, u"press a"_s}));
}

void HeldKeysTest::aKeyWithoutAPlaceIsAPress()
{
    // As keys are that are given back after a wait: all of them at once.
    press(u'\0', 1000);
    release(u'\0', 1000);
    press(u'\0', 1000);
    QCOMPARE(listener_->heard.filter(u"again"_s), QStringList());
    QCOMPARE(listener_->heard.size(), 3);
}

void HeldKeysTest::aShortcutThatIsNotToRepeatDoesNot()
{
    Command once;
    once.setAutoRepeat(false);
    Command walk;
    const auto announceAndPress = [&](quint64 time) {
        send(QEvent::ShortcutOverride, u'a', time);
        for (Command* const command : {&once, &walk}) {
            QShortcutEvent event(QKeySequence(Qt::Key_A), 1);
            QCoreApplication::sendEvent(command, &event);
        }
    };
    announceAndPress(1000);
    release(u'a', 1660);
    announceAndPress(1660);
    release(u'a', 1700);
    announceAndPress(1700);
    QCOMPARE(once.count, 1);
    QCOMPARE(walk.count, 3);
    release(u'a', 1720);
    announceAndPress(1900);
    QCOMPARE(once.count, 2);
}

const kelm::test::Registered<HeldKeysTest> registered(kelm::test::Toolkit::widgets);

} // namespace held_keys_test

#include "held_keys_test.moc"
