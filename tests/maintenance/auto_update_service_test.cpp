#include "maintenance/auto_update_service.h"
#include "maintenance/image_updater_controller.h"
#include "support/test_program.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

namespace auto_update_service_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

class FakeController final : public UpdaterController
{
public:
    bool canCheckForUpdates() const override { return canCheck; }
    void checkForUpdates() override { ++checks; }
    void become(bool can)
    {
        canCheck = can;
        Q_EMIT canCheckForUpdatesChanged();
    }

    bool canCheck = false;
    int checks = 0;
};

/// An updater that writes its arguments to a file beside it.
QString writeUpdater(const QTemporaryDir& folder, const QString& name)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("no updater");
    }
    file.write("#!/bin/sh\nprintf '%s' \"$*\" >\"$0.part\" && mv \"$0.part\" \"$0.told\"\n");
    file.close();
    file.setPermissions(file.permissions() | QFile::ExeOwner);
    return file.fileName();
}

} // namespace

class AutoUpdateServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void atFirstNoCheckMayStart();
    void aChangeComesByTheMainQueue();
    void aChangeOnAnotherThreadIsSeenOnTheMainThread();
    void theImageUpdaterGetsTheImage();
    void withoutImageOrUpdaterNoCheckMayStart_data();
    void withoutImageOrUpdaterNoCheckMayStart();
    void theUpdaterIsFoundOnThePath();
};

void AutoUpdateServiceTest::atFirstNoCheckMayStart()
{
    auto controller = std::make_unique<FakeController>();
    controller->canCheck = true;
    AutoUpdateService service(std::move(controller));
    QVERIFY(!service.canCheckForUpdates());
    const QSignalSpy changes(&service, &AutoUpdateService::canCheckForUpdatesChanged);
    QTRY_VERIFY(service.canCheckForUpdates());
    QCOMPARE(changes.count(), 1);
}

void AutoUpdateServiceTest::aChangeComesByTheMainQueue()
{
    auto owned = std::make_unique<FakeController>();
    FakeController& controller = *owned;
    AutoUpdateService service(std::move(owned));
    QCoreApplication::processEvents();
    controller.become(true);
    QVERIFY(!service.canCheckForUpdates());
    QTRY_VERIFY(service.canCheckForUpdates());
    controller.become(false);
    QTRY_VERIFY(!service.canCheckForUpdates());
    // The same value once more is no change.
    const QSignalSpy changes(&service, &AutoUpdateService::canCheckForUpdatesChanged);
    controller.become(false);
    QCoreApplication::processEvents();
    QCOMPARE(changes.count(), 0);
    service.updaterController().checkForUpdates();
    QCOMPARE(controller.checks, 1);
}

void AutoUpdateServiceTest::aChangeOnAnotherThreadIsSeenOnTheMainThread()
{
    auto owned = std::make_unique<FakeController>();
    FakeController& controller = *owned;
    AutoUpdateService service(std::move(owned));
    QCoreApplication::processEvents();
    QThread* seenOn = nullptr;
    connect(&service, &AutoUpdateService::canCheckForUpdatesChanged, this,
            [&seenOn] { seenOn = QThread::currentThread(); });
    const std::unique_ptr<QThread> thread(QThread::create([&controller] { controller.become(true); }));
    thread->start();
    QVERIFY(thread->wait());
    QTRY_VERIFY(service.canCheckForUpdates());
    QCOMPARE(seenOn, QThread::currentThread());
}

void AutoUpdateServiceTest::theImageUpdaterGetsTheImage()
{
    const QTemporaryDir folder;
    const QString updater = writeUpdater(folder, u"AppImageUpdate"_s);
    ImageUpdaterController controller(updater, u"/a folder/Kelm.AppImage"_s);
    QVERIFY(controller.canCheckForUpdates());
    controller.checkForUpdates();
    QFile told(updater + u".told"_s);
    QTRY_VERIFY(told.exists());
    QVERIFY(told.open(QIODevice::ReadOnly));
    QCOMPARE(told.readAll(), QByteArray("/a folder/Kelm.AppImage"));
}

void AutoUpdateServiceTest::withoutImageOrUpdaterNoCheckMayStart_data()
{
    QTest::addColumn<bool>("hasUpdater");
    QTest::addColumn<QString>("image");
    QTest::newRow("no image") << true << QString();
    QTest::newRow("no updater") << false << u"/Kelm.AppImage"_s;
    QTest::newRow("neither") << false << QString();
}

void AutoUpdateServiceTest::withoutImageOrUpdaterNoCheckMayStart()
{
    QFETCH(bool, hasUpdater);
    QFETCH(QString, image);
    const QTemporaryDir folder;
    const QString updater = writeUpdater(folder, u"AppImageUpdate"_s);
    ImageUpdaterController controller(hasUpdater ? updater : QString(), image);
    QVERIFY(!controller.canCheckForUpdates());
    controller.checkForUpdates();
    QVERIFY(!QFile::exists(updater + u".told"_s));
}

void AutoUpdateServiceTest::theUpdaterIsFoundOnThePath()
{
    const QTemporaryDir folder;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.path().toLocal8Bit());
    QCOMPARE(ImageUpdaterController::findUpdater(), QString());
    const QString tool = writeUpdater(folder, u"appimageupdatetool"_s);
    QCOMPARE(ImageUpdaterController::findUpdater(), tool);
    const QString updater = writeUpdater(folder, u"AppImageUpdate"_s);
    QCOMPARE(ImageUpdaterController::findUpdater(), updater);
    qputenv("PATH", path);
}

const kelm::test::Registered<AutoUpdateServiceTest> registered;

} // namespace auto_update_service_test

#include "auto_update_service_test.moc"
