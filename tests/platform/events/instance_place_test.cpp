#include "platform/events/instance_place.h"
#include "support/test_program.h"

#include <QFileInfo>
#include <QMap>
#include <QtTest>

namespace instance_place_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

using Variables = QMap<QString, QString>;

QString sessionOf(const Variables& variables)
{
    return sessionName([&](const QString& name) { return variables.value(name); });
}

Variables x11(const QString& display)
{
    return {{u"DISPLAY"_s, display}};
}

Variables wayland(const QString& socket, const QString& folder = u"/run/user/1"_s)
{
    return {{u"WAYLAND_DISPLAY"_s, socket}, {u"XDG_RUNTIME_DIR"_s, folder}, {u"DISPLAY"_s, u":0"_s}};
}

} // namespace

class InstancePlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesOfOneSession_data();
    void namesOfOneSession();
    void sessionsDiffer_data();
    void sessionsDiffer();
    void eachPartOfThePlaceCounts();
    void aLongSessionMakesNoLongName();
    void thisProcessHasAPlace();
};

void InstancePlaceTest::namesOfOneSession_data()
{
    QTest::addColumn<Variables>("one");
    QTest::addColumn<Variables>("other");
    QTest::newRow("the first screen") << x11(u":0"_s) << x11(u":0.0"_s);
    QTest::newRow("this machine's socket") << x11(u":0"_s) << x11(u"unix:0"_s);
    QTest::newRow("the socket as a protocol") << x11(u":1"_s) << x11(u"unix/:1.0"_s);
    QTest::newRow("a forwarded one") << x11(u"localhost:10"_s) << x11(u"localhost:10.0"_s);
    QTest::newRow("a Wayland socket by its path") << wayland(u"wayland-0"_s) << wayland(u"/run/user/1/wayland-0"_s);
    Variables withOtherX = wayland(u"wayland-0"_s);
    withOtherX[u"DISPLAY"_s] = u":7"_s;
    QTest::newRow("the X display beside Wayland") << wayland(u"wayland-0"_s) << withOtherX;
    QTest::newRow("no display") << Variables() << x11(u""_s);
}

void InstancePlaceTest::namesOfOneSession()
{
    QFETCH(Variables, one);
    QFETCH(Variables, other);
    QCOMPARE(sessionOf(one), sessionOf(other));
}

void InstancePlaceTest::sessionsDiffer_data()
{
    QTest::addColumn<Variables>("one");
    QTest::addColumn<Variables>("other");
    QTest::newRow("two displays") << x11(u":0"_s) << x11(u":1"_s);
    QTest::newRow("a second screen") << x11(u":0"_s) << x11(u":0.1"_s);
    QTest::newRow("a screen of no display") << x11(u":0"_s) << x11(u":0.00"_s);
    QTest::newRow("the desk and a forwarded one") << x11(u":10"_s) << x11(u"localhost:10.0"_s);
    QTest::newRow("ten and one") << x11(u":1"_s) << x11(u":10"_s);
    QTest::newRow("a display and none") << x11(u":0"_s) << Variables();
    QTest::newRow("X and Wayland") << x11(u":0"_s) << wayland(u"wayland-0"_s);
    QTest::newRow("two Wayland sockets") << wayland(u"wayland-0"_s) << wayland(u"wayland-1"_s);
    QTest::newRow("two folders") << wayland(u"wayland-0"_s) << wayland(u"wayland-0"_s, u"/run/user/2"_s);
}

void InstancePlaceTest::sessionsDiffer()
{
    QFETCH(Variables, one);
    QFETCH(Variables, other);
    QVERIFY(sessionOf(one) != sessionOf(other));
}

void InstancePlaceTest::eachPartOfThePlaceCounts()
{
    const InstancePlace place = instancePlace(u"/run"_s, u"x11 :0"_s, u"one"_s);
    QCOMPARE(place, instancePlace(u"/run"_s, u"x11 :0"_s, u"one"_s));
    QVERIFY(place.lockPath != place.socketPath);
    for (const InstancePlace& other :
         {instancePlace(u"/tmp"_s, u"x11 :0"_s, u"one"_s), instancePlace(u"/run"_s, u"x11 :1"_s, u"one"_s),
          instancePlace(u"/run"_s, u"x11 :0"_s, u"two"_s)}) {
        QVERIFY(other.lockPath != place.lockPath);
        QVERIFY(other.socketPath != place.socketPath);
    }
}

void InstancePlaceTest::aLongSessionMakesNoLongName()
{
    const InstancePlace place = instancePlace(u"/run/user/1000"_s, QString(4096, u'x'), QString(4096, u'y'));
    // There is room for 108 bytes in a socket's address.
    QVERIFY(place.socketPath.size() < 80);
}

void InstancePlaceTest::thisProcessHasAPlace()
{
    const InstancePlace place = defaultInstancePlace();
    QVERIFY(QFileInfo(place.lockPath).isAbsolute());
    QCOMPARE(place, defaultInstancePlace());
}

const kelm::test::Registered<InstancePlaceTest> registered;

} // namespace instance_place_test

#include "instance_place_test.moc"
