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

} // namespace

class WorkspaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aTrashedFileIsGoneAndCanBeFoundInTheTrash();
    void whatIsNotThereCannotBeTrashed();
    void revealAsksTheFileManager();
    void withoutAFileManagerTheFolderIsOpened_data();
    void withoutAFileManagerTheFolderIsOpened();
    void urlsGoToTheDesktop();
    void theApplicationOfASchemeIsAskedFor();
    void withoutAnAnswerThereIsNoApplication_data();
    void withoutAnAnswerThereIsNoApplication();

private:
    /// Puts an executable that runs `script` in front of all others.
    void installCommand(const QString& name, const QByteArray& script) const
    {
        QVERIFY(QDir(folder_->path()).mkpath(u"bin"_s));
        QFile file(folder_->filePath(u"bin/"_s + name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QByteArray notes() const
    {
        QFile file(folder_->filePath(u"notes"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> folder_;
    QByteArray path_;
};

void WorkspaceTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
    QVERIFY(QDir(folder_->path()).mkdir(u"data"_s));
    path_ = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder_->filePath(u"bin"_s)));
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder_->filePath(u"data"_s)));
}

void WorkspaceTest::cleanup()
{
    qputenv("PATH", path_);
}

void WorkspaceTest::aTrashedFileIsGoneAndCanBeFoundInTheTrash()
{
    const QString path = folder_->filePath(u"안녕.txt"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("text");
    file.close();
    QVERIFY(!Workspace::system().moveToTrash(QUrl::fromLocalFile(path)));
    QVERIFY(!QFile::exists(path));
    QVERIFY(QFile::exists(folder_->filePath(u"data/Trash/files/안녕.txt"_s)));
}

void WorkspaceTest::whatIsNotThereCannotBeTrashed()
{
    const QString path = folder_->filePath(u"none"_s);
    const std::optional<FileError> error = Workspace::system().moveToTrash(QUrl::fromLocalFile(path));
    QVERIFY(error.has_value());
    QVERIFY(error->message.startsWith(path + u": "_s));
    QVERIFY(error->message.size() > path.size() + 2);
    QVERIFY(Workspace::system().moveToTrash(QUrl(u"https://host/a"_s)).has_value());
}

void WorkspaceTest::revealAsksTheFileManager()
{
    installCommand(u"dbus-send"_s, "for each; do echo \"$each\"; done > '" +
                                       QFile::encodeName(folder_->filePath(u"notes.part"_s)) + "'\n/bin/mv '" +
                                       QFile::encodeName(folder_->filePath(u"notes.part"_s)) + "' '" +
                                       QFile::encodeName(folder_->filePath(u"notes"_s)) + "'\n");
    Workspace::system().reveal(QUrl::fromLocalFile(u"/a/b c,d.txt"_s));
    QTRY_VERIFY(!notes().isEmpty());
    QCOMPARE(notes().split('\n').mid(4, 3), (QList<QByteArray>{"org.freedesktop.FileManager1.ShowItems",
                                                               "array:string:file:///a/b%20c%2Cd.txt", "string:"}));
}

void WorkspaceTest::withoutAFileManagerTheFolderIsOpened_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("no command") << QByteArray();
    QTest::newRow("no file manager") << QByteArray("exit 1\n");
}

void WorkspaceTest::withoutAFileManagerTheFolderIsOpened()
{
    QFETCH(QByteArray, script);
    if (!script.isEmpty()) {
        installCommand(u"dbus-send"_s, script);
    }
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

void WorkspaceTest::theApplicationOfASchemeIsAskedFor()
{
    installCommand(u"xdg-mime"_s,
                   "[ \"$1 $2 $3\" = 'query default x-scheme-handler/tutorbay' ] && echo tutorbay.desktop\n");
    QVERIFY(Workspace::system().applicationForScheme(u"tutorbay"_s) == u"tutorbay.desktop"_s);
    QVERIFY(!Workspace::system().applicationForScheme(u"other"_s));
}

void WorkspaceTest::withoutAnAnswerThereIsNoApplication_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("no command") << QByteArray();
    QTest::newRow("no output") << QByteArray("exit 0\n");
    QTest::newRow("blank output") << QByteArray("echo\n");
    QTest::newRow("failure") << QByteArray("echo tutorbay.desktop\nexit 3\n");
}

void WorkspaceTest::withoutAnAnswerThereIsNoApplication()
{
    QFETCH(QByteArray, script);
    if (!script.isEmpty()) {
        installCommand(u"xdg-mime"_s, script);
    }
    QVERIFY(!Workspace::system().applicationForScheme(u"tutorbay"_s));
}

const kelm::test::Registered<WorkspaceTest> registered(kelm::test::Toolkit::gui);

} // namespace workspace_test

#include "workspace_test.moc"
