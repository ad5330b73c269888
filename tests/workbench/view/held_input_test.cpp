#include "app/state/notices.h"
#include "platform/process/orderly_end.h"
#include "platform/view/plain_button.h"
#include "support/test_program.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QCloseEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

namespace held_input_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct Fixture : WindowFixture
{
    Notices& notices = state.notices();
    Notices::Id wait = 0;
    int stops = 0;

    Fixture()
    {
        openSnippet(u"first\nsecond\nthird"_s, Language::plainText);
        text().setFocus();
    }
    void begin()
    {
        wait = notices.add(
            {.text = u"git commit"_s, .stop = [this] { ++stops; }, .holdsInput = true, .stopsAll = true, .time = 0s});
    }
    void end() { notices.remove(wait); }
    QString content() { return state.currentDocument()->content(); }
    QWindow* handle() { return window.windowHandle(); }
    NoticeBar& bar() { return window.noticeBar(); }
};

} // namespace

/// The window while the main thread waits for something.
class HeldInputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theNoticeIsShownAtOnceWithItsTime();
    void keysOfEveryWindowComeAfterwards();
    void aKeyThatIsHeldMeanwhileIsNoNewPress();
    void escapeStopsItFromAnyWindow();
    void aClickInATextComesBeforeTheKeysBehindIt();
    void aClickElsewhereIsDropped();
    void aWindowThatIsClosedGoesAfterwards();
    void aKeptKeyMayBeginAnotherWait();
    void whatWasTypedIsThereWhenTheProgramEnds();
};

void HeldInputTest::aKeptKeyMayBeginAnotherWait()
{
    Fixture fixture;
    auto* key = new QShortcut(Qt::CTRL | Qt::Key_Return, &fixture.window);
    connect(key, &QShortcut::activated, this, [&fixture] {
        fixture.begin();
        // What comes while that waits.
        QTest::keyClick(fixture.handle(), Qt::Key_Y);
        QTest::keyClick(fixture.handle(), Qt::Key_Escape);
        fixture.end();
    });
    fixture.begin();
    QTest::keyClick(fixture.handle(), Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(fixture.handle(), Qt::Key_X);
    fixture.end();
    QTRY_COMPARE(fixture.content(), u"xyfirst\nsecond\nthird"_s);
    QCOMPARE(fixture.stops, 1);
}

void HeldInputTest::whatWasTypedIsThereWhenTheProgramEnds()
{
    Fixture fixture;
    bool hasRun = false;
    auto* key = new QShortcut(Qt::CTRL | Qt::Key_Return, &fixture.window);
    connect(key, &QShortcut::activated, this, [&hasRun] { hasRun = true; });
    fixture.begin();
    QTest::keyClick(fixture.handle(), Qt::Key_X);
    QTest::keyClick(fixture.handle(), Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(fixture.handle(), Qt::Key_Y);
    endInOrder();
    QCOMPARE(fixture.content(), u"first\nsecond\nthird"_s);
    fixture.end();
    endInOrder();
    QCOMPARE(fixture.content(), u"xyfirst\nsecond\nthird"_s);
    QVERIFY(!hasRun);
}

void HeldInputTest::theNoticeIsShownAtOnceWithItsTime()
{
    Fixture fixture;
    fixture.begin();
    QVERIFY(fixture.bar().isVisible());
    QCOMPARE(fixture.bar().text(), u"git commit, 0 s"_s);
    QVERIFY(fixture.bar().offersStop());
    fixture.notices.setTime(fixture.wait, 3s);
    QCOMPARE(fixture.bar().text(), u"git commit, 3 s"_s);
    // Each second, read out, would be talked over by the next.
    QCOMPARE(fixture.bar().accessibleName(), u"git commit Escape to stop"_s);
    fixture.end();
    QVERIFY(fixture.bar().isHidden());
}

void HeldInputTest::keysOfEveryWindowComeAfterwards()
{
    Fixture fixture;
    QLineEdit other;
    other.show();
    fixture.begin();
    QTest::keyClicks(&other, u"other"_s);
    for (const char key : {'t', 'y', 'p', 'e', 'd'}) {
        QTest::keyClick(fixture.handle(), key);
    }
    QCOMPARE(other.text(), QString());
    QCOMPARE(fixture.content(), u"first\nsecond\nthird"_s);
    fixture.end();
    QTRY_COMPARE(fixture.content(), u"typedfirst\nsecond\nthird"_s);
    QCOMPARE(other.text(), u"other"_s);
}

void HeldInputTest::aKeyThatIsHeldMeanwhileIsNoNewPress()
{
    /// Notes which presses come as repeats.
    struct Listener final : QObject
    {
        QList<bool> repeats;

        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::KeyPress) {
                repeats << static_cast<QKeyEvent*>(event)->isAutoRepeat();
            }
            return false;
        }
    };
    Fixture fixture;
    Listener listener;
    fixture.text().installEventFilter(&listener);
    fixture.begin();
    const auto send = [&fixture](QEvent::Type type, quint64 time) {
        QKeyEvent event(type, Qt::Key_A, {}, 38, 0, 0, u"a"_s);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(fixture.handle(), &event);
    };
    send(QEvent::KeyPress, 1000);
    send(QEvent::KeyRelease, 1660);
    send(QEvent::KeyPress, 1660);
    send(QEvent::KeyRelease, 1700);
    send(QEvent::KeyPress, 1800);
    fixture.end();
    QTRY_COMPARE(listener.repeats, (QList<bool>{false, true, false}));
}

void HeldInputTest::escapeStopsItFromAnyWindow()
{
    Fixture fixture;
    QLineEdit other;
    other.show();
    fixture.begin();
    QTest::keyClick(&other, Qt::Key_Escape);
    QCOMPARE(fixture.stops, 1);
    QTest::keyClick(fixture.handle(), Qt::Key_Escape);
    QCOMPARE(fixture.stops, 2);
    fixture.end();
}

void HeldInputTest::aClickInATextComesBeforeTheKeysBehindIt()
{
    Fixture fixture;
    QWidget& viewport = *fixture.text().viewport();
    const QPoint below(viewport.width() / 2, viewport.height() / 2);
    fixture.begin();
    QTest::mouseClick(fixture.handle(), Qt::LeftButton, {}, viewport.mapTo(&fixture.window, below));
    QTest::keyClick(fixture.handle(), '!');
    QCOMPARE(fixture.text().selectedRange(), TextRange(0, 0));
    fixture.end();
    QTRY_COMPARE(fixture.content(), u"first\nsecond\nthird!"_s);
}

void HeldInputTest::aClickElsewhereIsDropped()
{
    Fixture fixture;
    QPushButton other;
    int clicks = 0;
    connect(&other, &QPushButton::clicked, this, [&clicks] { ++clicks; });
    other.show();
    fixture.begin();
    QTest::mouseClick(other.windowHandle(), Qt::LeftButton, {}, {5, 5});
    QTest::keyClick(fixture.handle(), '!');
    fixture.end();
    QTRY_VERIFY(fixture.content().startsWith(u'!'));
    QCOMPARE(clicks, 0);
    QTest::mouseClick(other.windowHandle(), Qt::LeftButton, {}, {5, 5});
    QCOMPARE(clicks, 1);
}

void HeldInputTest::aWindowThatIsClosedGoesAfterwards()
{
    Fixture fixture;
    QWidget other;
    other.show();
    fixture.begin();
    QCloseEvent close;
    QCoreApplication::sendEvent(other.windowHandle(), &close);
    QVERIFY(!close.isAccepted());
    QVERIFY(other.isVisible());
    fixture.end();
    QTRY_VERIFY(!other.isVisible());
}

const kelm::test::Registered<HeldInputTest> registered(kelm::test::Toolkit::widgets);

} // namespace held_input_test

#include "held_input_test.moc"
