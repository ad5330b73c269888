#include "platform/desktop/workspace.h"
#include "support/session_bus.h"
#include "support/test_program.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QtTest>

#include <optional>

namespace workspace_bus_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Takes the URLs that would go to other applications.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    UrlCatcher() { QDesktopServices::setUrlHandler(u"file"_s, this, "take"); }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(u"file"_s); }

    QList<QUrl> urls;

public Q_SLOTS:
    void take(const QUrl& url) { urls << url; }
};

/// A file manager that answers when it is told to.
class FileManager : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    explicit FileManager(const QString& address) : bus_(QDBusConnection::connectToBus(address, u"file manager"_s))
    {
        isThere_ = bus_.registerObject(u"/org/freedesktop/FileManager1"_s, this, QDBusConnection::ExportAllSlots) &&
                   bus_.registerService(u"org.freedesktop.FileManager1"_s);
    }
    ~FileManager() override { QDBusConnection::disconnectFromBus(u"file manager"_s); }

    bool isThere() const { return isThere_; }
    void succeed() { bus_.send(request_.createReply()); }
    void fail() { bus_.send(request_.createErrorReply(QDBusError::Failed, u"not now"_s)); }

    QStringList shown;
    std::optional<QString> startupId;

public Q_SLOTS:
    void ShowItems(const QStringList& urls, const QString& id)
    {
        setDelayedReply(true);
        request_ = message();
        shown << urls;
        startupId = id;
    }

private:
    QDBusConnection bus_;
    bool isThere_ = false;
    QDBusMessage request_;
};

} // namespace

/// On a bus of the test's own.
class WorkspaceBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { bus_.stop(); }
    void theFileManagerIsAskedAndNotWaitedFor();
    void aFileManagerThatFailsGivesWayToTheFolder();
    void withoutAFileManagerTheFolderIsOpened();

private:
    kelm::test::SessionBus bus_;
};

void WorkspaceBusTest::initTestCase()
{
    if (!kelm::test::SessionBus::isInstalled()) {
        QSKIP("dbus-daemon is not installed");
    }
    QVERIFY(bus_.start());
}

void WorkspaceBusTest::theFileManagerIsAskedAndNotWaitedFor()
{
    FileManager manager(bus_.address());
    QVERIFY(manager.isThere());
    UrlCatcher catcher;
    Workspace::system().reveal(QUrl::fromLocalFile(u"/a/b c,d%안.txt"_s));
    QVERIFY(manager.shown.isEmpty());
    QTRY_COMPARE(manager.shown, QStringList(u"file:///a/b%20c,d%25%EC%95%88.txt"_s));
    QCOMPARE(manager.startupId, std::optional(QString(u""_s)));
    manager.succeed();
    // What is asked next is answered after it.
    Workspace::system().reveal(QUrl::fromLocalFile(u"/second/c"_s));
    QTRY_COMPARE(manager.shown.size(), 2);
    manager.fail();
    QTRY_COMPARE(catcher.urls, (QList{QUrl::fromLocalFile(u"/second"_s)}));
}

void WorkspaceBusTest::aFileManagerThatFailsGivesWayToTheFolder()
{
    FileManager manager(bus_.address());
    QVERIFY(manager.isThere());
    UrlCatcher catcher;
    Workspace::system().reveal(QUrl::fromLocalFile(u"/a/b/c.txt"_s));
    QTRY_VERIFY(!manager.shown.isEmpty());
    QVERIFY(catcher.urls.isEmpty());
    manager.fail();
    QTRY_COMPARE(catcher.urls, (QList{QUrl::fromLocalFile(u"/a/b"_s)}));
}

void WorkspaceBusTest::withoutAFileManagerTheFolderIsOpened()
{
    UrlCatcher catcher;
    Workspace::system().reveal(QUrl::fromLocalFile(u"/a/b/c.txt"_s));
    QTRY_COMPARE(catcher.urls, (QList{QUrl::fromLocalFile(u"/a/b"_s)}));
}

const kelm::test::Registered<WorkspaceBusTest> registered(kelm::test::Toolkit::gui);

} // namespace workspace_bus_test

#include "workspace_bus_test.moc"
