#include "platform/desktop/view/bring_to_front.h"
#include "platform/desktop/view/x11_window.h"
#include "platform/events/start_tokens.h"
#include "support/test_program.h"

#include <QWidget>
#include <QtTest>

namespace x11_window_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class X11WindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsTellTheirTime_data();
    void startsTellTheirTime();
    void withoutAServerNothingIsDone();
    void tokensAreTakenOutOfTheEnvironment();
    void aClosedWindowComesBack();
};

void X11WindowTest::startsTellTheirTime_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<quint32>("time");
    QTest::newRow("none") << QString() << 0U;
    QTest::newRow("without a time") << u"host-12-editor"_s << 0U;
    QTest::newRow("a time") << u"gnome-shell/Editor/2211-4-host_TIME1234567"_s << 1234567U;
    QTest::newRow("the last counts") << u"a_TIME1_TIME2"_s << 2U;
    QTest::newRow("beyond 31 bits") << u"a_TIME4294967295"_s << 4294967295U;
    QTest::newRow("written with a sign") << u"a_TIME-1"_s << 4294967295U;
    QTest::newRow("no number") << u"a_TIMEx"_s << 0U;
}

void X11WindowTest::startsTellTheirTime()
{
    QFETCH(QString, id);
    QTEST(x11::timeOfStartupId(id), "time");
}

void X11WindowTest::withoutAServerNothingIsDone()
{
    QWidget window;
    QVERIFY(!x11::moveToCurrentWorkspace(window));
    QVERIFY(!x11::activate(window, 1));
    QVERIFY(!x11::endStartup(u"id_TIME1"_s));
}

void X11WindowTest::tokensAreTakenOutOfTheEnvironment()
{
    const openRequest::Tokens tokens{u"id_TIME1"_s, u"token"_s};
    putStartTokens(tokens);
    QCOMPARE(qgetenv("DESKTOP_STARTUP_ID"), "id_TIME1");
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), "token");
    QVERIFY(takeStartTokens() == tokens);
    QVERIFY(!qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"));
    QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    QVERIFY(takeStartTokens().isEmpty());
    putStartTokens({});
    QVERIFY(!qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"));
}

void X11WindowTest::aClosedWindowComesBack()
{
    QWidget window;
    window.show();
    window.close();
    bringToFront(window, {u"id_TIME1"_s, u"token"_s});
    QVERIFY(window.isVisible());
    QTRY_VERIFY(window.isActiveWindow());
    QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    window.showMinimized();
    bringToFront(window, {});
    QVERIFY(!window.isMinimized());
}

const kelm::test::Registered<X11WindowTest> registered(kelm::test::Toolkit::widgets);

} // namespace x11_window_test

#include "x11_window_test.moc"
