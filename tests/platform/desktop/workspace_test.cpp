#include "platform/desktop/workspace.h"
#include "support/test_program.h"

#include <QDesktopServices>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace workspace_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Takes the URLs that would go to other applications.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void take(const QUrl& url) { urls << url; }
};

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class WorkspaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aTrashedFileIsGoneAndCanBeFoundInTheTrash();
    void whatIsNotThereCannotBeTrashed();
    void withoutABusTheFolderIsOpened();
    void urlsGoToTheDesktop();
    void theApplicationOfASchemeIsFound_data();
    void theApplicationOfASchemeIsFound();

private:
    QTemporaryDir folder_;
};

void WorkspaceTest::initTestCase()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    QVERIFY(folder_.isValid());
    // The system's library reads what names these folders once.
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder_.filePath(u"data"_s)));
    const QDir applications(QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation));
    const QDir config(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    QVERIFY(applications.mkpath(u"."_s) && config.mkpath(u"."_s));
    const QByteArray head = "[Desktop Entry]\nType=Application\nName=A program\n";
    QVERIFY(write(applications.filePath(u"tutorbay.desktop"_s), head + "Exec=/bin/true %u\n"));
    QVERIFY(write(applications.filePath(u"broken.desktop"_s), head + "Exec=/nonexistent/program %u\n"));
    QVERIFY(write(config.filePath(u"mimeapps.list"_s),
                  "[Default Applications]\nx-scheme-handler/tutorbay=tutorbay.desktop\n"
                  "x-scheme-handler/gone=gone.desktop\nx-scheme-handler/broken=broken.desktop\n"));
}

void WorkspaceTest::aTrashedFileIsGoneAndCanBeFoundInTheTrash()
{
    const QString path = folder_.filePath(u"안녕.txt"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("text");
    file.close();
    QVERIFY(!Workspace::system().moveToTrash(QUrl::fromLocalFile(path)));
    QVERIFY(!QFile::exists(path));
    QVERIFY(QFile::exists(folder_.filePath(u"data/Trash/files/안녕.txt"_s)));
}

void WorkspaceTest::whatIsNotThereCannotBeTrashed()
{
    const QString path = folder_.filePath(u"none"_s);
    const std::optional<FileError> error = Workspace::system().moveToTrash(QUrl::fromLocalFile(path));
    QVERIFY(error.has_value());
    QVERIFY(error->message.startsWith(path + u": "_s));
    QVERIFY(error->message.size() > path.size() + 2);
    QVERIFY(Workspace::system().moveToTrash(QUrl(u"https://host/a"_s)).has_value());
}

void WorkspaceTest::withoutABusTheFolderIsOpened()
{
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(u"file"_s, &catcher, "take");
    Workspace::system().reveal(QUrl::fromLocalFile(u"/a/b/c.txt"_s));
    QTRY_COMPARE(catcher.urls, (QList{QUrl::fromLocalFile(u"/a/b"_s)}));
    QDesktopServices::unsetUrlHandler(u"file"_s);
}

void WorkspaceTest::urlsGoToTheDesktop()
{
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(u"https"_s, &catcher, "take");
    QVERIFY(Workspace::system().openURL(QUrl(u"https://host/lesson/intro?lang=ko"_s)));
    QCOMPARE(catcher.urls, (QList{QUrl(u"https://host/lesson/intro?lang=ko"_s)}));
    QDesktopServices::unsetUrlHandler(u"https"_s);
}

void WorkspaceTest::theApplicationOfASchemeIsFound_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<std::optional<QString>>("application");
    QTest::newRow("registered") << u"tutorbay"_s << std::optional(u"tutorbay.desktop"_s);
    QTest::newRow("another") << u"other"_s << std::optional<QString>();
    QTest::newRow("an application that is gone") << u"gone"_s << std::optional<QString>();
    QTest::newRow("an application whose program is gone") << u"broken"_s << std::optional<QString>();
    QTest::newRow("no scheme") << QString() << std::optional<QString>();
}

void WorkspaceTest::theApplicationOfASchemeIsFound()
{
    QFETCH(QString, scheme);
    QFETCH(std::optional<QString>, application);
    QCOMPARE(Workspace::system().applicationForScheme(scheme), application);
}

const kelm::test::Registered<WorkspaceTest> registered(kelm::test::Toolkit::gui);

} // namespace workspace_test

#include "workspace_test.moc"
