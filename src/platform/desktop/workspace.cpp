#include "platform/desktop/workspace.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_MACOS
#include <QProcess>
#else
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <gio/gio.h>
#include <memory>
#endif

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The file's folder, since not every file manager can be asked to select a file.
void openFolderOf(const QUrl& url)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(url.toLocalFile()).absolutePath()));
}

#ifdef Q_OS_MACOS

void revealInFileManager(const QUrl& url)
{
    if (!QProcess::startDetached(u"/usr/bin/open"_s, {u"-R"_s, url.toLocalFile()})) {
        openFolderOf(url);
    }
}

/// The system's own way to ask has not been tried.
std::optional<QString> defaultApplication(const QString&)
{
    return std::nullopt;
}

#else

/// The call of the file manager interface that desktops share (org.freedesktop.FileManager1). Without a bus, a file
/// manager on it or an answer of that within the bus's time, the folder is opened.
void revealInFileManager(const QUrl& url)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolderOf(url);
        return;
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    message.setArguments({QStringList(url.toString(QUrl::FullyEncoded)), QString()});
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, url] {
        if (watcher->isError()) {
            openFolderOf(url);
        }
        watcher->deleteLater();
    });
}

std::optional<QString> defaultApplication(const QString& scheme)
{
    // The library takes an empty name for an error of the program's.
    if (scheme.isEmpty()) {
        return std::nullopt;
    }
    const std::unique_ptr<GAppInfo, decltype(&g_object_unref)> application(
        g_app_info_get_default_for_uri_scheme(scheme.toUtf8().constData()), g_object_unref);
    const char* const name = application ? g_app_info_get_id(application.get()) : nullptr;
    return name == nullptr ? std::nullopt : std::optional(QString::fromUtf8(name));
}

#endif

class SystemWorkspace final : public Workspace
{
public:
    std::optional<FileError> moveToTrash(const QUrl& url) override
    {
        QFile file(url.toLocalFile());
        if (!url.isLocalFile() || !file.moveToTrash()) {
            return FileError{u"%1: %2"_s.arg(url.toDisplayString(QUrl::PreferLocalFile), file.errorString())};
        }
        return std::nullopt;
    }

    void reveal(const QUrl& url) override
    {
        if (url.isLocalFile()) {
            revealInFileManager(url);
        }
    }

    bool openURL(const QUrl& url) override { return QDesktopServices::openUrl(url); }

    std::optional<QString> applicationForScheme(const QString& scheme) override { return defaultApplication(scheme); }
};

} // namespace

Workspace& Workspace::system()
{
    static SystemWorkspace workspace;
    return workspace;
}

} // namespace kelm
