#include "platform/desktop/motion_wishes.h"
#include "support/session_bus.h"
#include "support/test_program.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace motion_wishes_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The settings service of a desktop.
class SettingsService : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit SettingsService(const QString& address) : bus_(QDBusConnection::connectToBus(address, u"settings"_s))
    {
        isThere_ = bus_.registerObject(u"/org/freedesktop/portal/desktop"_s, this,
                                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals) &&
                   bus_.registerService(u"org.freedesktop.portal.Desktop"_s);
    }
    ~SettingsService() override { QDBusConnection::disconnectFromBus(u"settings"_s); }

    bool isThere() const { return isThere_; }

    QHash<QString, QVariant> values;
    int questions = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString& group, const QString& key)
    {
        ++questions;
        if (group != u"org.gnome.desktop.interface" || !values.contains(key)) {
            sendErrorReply(QDBusError::Failed, u"no such setting"_s);
            return {};
        }
        // As the real one has it, a value in a value.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(values.value(key))));
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    QDBusConnection bus_;
    bool isThere_ = false;
};

} // namespace

/// On a bus of the test's own.
class MotionWishesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { bus_.stop(); }
    void filesAreReadAtOnce_data();
    void filesAreReadAtOnce();
    void theServiceIsAskedAndTellsOfChanges();
    void anAnswerOfAnotherKindSaysNothing();

private:
    kelm::test::SessionBus bus_;
};

void MotionWishesTest::initTestCase()
{
    if (!kelm::test::SessionBus::isInstalled()) {
        QSKIP("dbus-daemon is not installed");
    }
    QVERIFY(bus_.start());
}

void MotionWishesTest::filesAreReadAtOnce_data()
{
    QTest::addColumn<QByteArray>("desktop");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("wantsAnimations");
    QTest::addColumn<bool>("wantsBlinking");

    QTest::newRow("no file") << QByteArray() << QString() << QByteArray() << true << true;
    const QString factor = u"kdeglobals"_s;
    QTest::newRow("no time at all") << QByteArray("KDE") << factor << QByteArray("[KDE]\nAnimationDurationFactor=0\n")
                                    << false << true;
    QTest::newRow("no time, in figures") << QByteArray("KDE") << factor
                                         << QByteArray("[KDE]\nAnimationDurationFactor=0.0\n") << false << true;
    QTest::newRow("half the time") << QByteArray("KDE") << factor << QByteArray("[KDE]\nAnimationDurationFactor=0.5\n")
                                   << true << true;
    QTest::newRow("no figure") << QByteArray("KDE") << factor << QByteArray("[KDE]\nAnimationDurationFactor=none\n")
                               << true << true;
    QTest::newRow("of another desktop") << QByteArray("ubuntu:GNOME") << factor
                                        << QByteArray("[KDE]\nAnimationDurationFactor=0\n") << true << true;
    const QString toolkit = u"gtk-3.0/settings.ini"_s;
    QTest::newRow("off") << QByteArray() << toolkit << QByteArray("[Settings]\ngtk-enable-animations=0\n") << false
                         << true;
    QTest::newRow("false") << QByteArray() << toolkit << QByteArray("[Settings]\ngtk-enable-animations=false\n")
                           << false << true;
    QTest::newRow("on") << QByteArray() << toolkit << QByteArray("[Settings]\ngtk-enable-animations=1\n") << true
                        << true;
    QTest::newRow("newer") << QByteArray() << u"gtk-4.0/settings.ini"_s
                           << QByteArray("[Settings]\ngtk-enable-animations=0\ngtk-cursor-blink=0\n") << false << false;
}

void MotionWishesTest::filesAreReadAtOnce()
{
    QFETCH(const QByteArray, desktop);
    QFETCH(const QString, file);
    QFETCH(const QByteArray, text);
    // Of each row's own: what has been read of a file is kept for as long as it looks the same.
    const QTemporaryDir folder;
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    const auto restore = qScopeGuard([&before] { qputenv("XDG_CONFIG_HOME", before); });
    const QString path = folder.filePath(file);
    if (!file.isEmpty()) {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile written(path);
        QVERIFY(written.open(QFile::WriteOnly) && written.write(text) == text.size());
    }
    qputenv("XDG_CURRENT_DESKTOP", desktop);
    const MotionWishes wishes;
    QTEST(wishes.wantsAnimations(), "wantsAnimations");
    QTEST(wishes.wantsBlinking(), "wantsBlinking");
}

void MotionWishesTest::theServiceIsAskedAndTellsOfChanges()
{
    SettingsService service(bus_.address());
    QVERIFY(service.isThere());
    service.values = {{u"enable-animations"_s, false}, {u"cursor-blink"_s, true}};
    MotionWishes wishes;
    QSignalSpy changes(&wishes, &MotionWishes::changed);
    // It answers when it has the time.
    QVERIFY(wishes.wantsAnimations());
    QTRY_VERIFY(!wishes.wantsAnimations());
    QTRY_COMPARE(service.questions, 2);
    QCOMPARE(changes.count(), 1);
    QVERIFY(wishes.wantsBlinking());

    const QString group = u"org.gnome.desktop.interface"_s;
    Q_EMIT service.SettingChanged(group, u"enable-animations"_s, QDBusVariant(true));
    QTRY_VERIFY(wishes.wantsAnimations());
    Q_EMIT service.SettingChanged(u"org.example"_s, u"enable-animations"_s, QDBusVariant(false));
    Q_EMIT service.SettingChanged(group, u"font-name"_s, QDBusVariant(u"Sans"_s));
    Q_EMIT service.SettingChanged(group, u"cursor-blink"_s, QDBusVariant(false));
    QTRY_VERIFY(!wishes.wantsBlinking());
    QVERIFY(wishes.wantsAnimations());
    QCOMPARE(changes.count(), 3);
}

void MotionWishesTest::anAnswerOfAnotherKindSaysNothing()
{
    SettingsService service(bus_.address());
    QVERIFY(service.isThere());
    service.values = {{u"enable-animations"_s, u"false"_s}};
    MotionWishes wishes;
    QSignalSpy changes(&wishes, &MotionWishes::changed);
    QTRY_COMPARE(service.questions, 2);
    // What is told later comes behind the answers.
    Q_EMIT service.SettingChanged(u"org.gnome.desktop.interface"_s, u"cursor-blink"_s, QDBusVariant(false));
    QTRY_VERIFY(!wishes.wantsBlinking());
    QVERIFY(wishes.wantsAnimations());
    QCOMPARE(changes.count(), 1);
}

const kelm::test::Registered<MotionWishesTest> registered(kelm::test::Toolkit::gui);

} // namespace motion_wishes_test

#include "motion_wishes_test.moc"
