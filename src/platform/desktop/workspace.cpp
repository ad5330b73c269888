#include "platform/desktop/workspace.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int queryTimeoutMs = 3000;

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

#else

/// The call of the file manager interface that desktops share (org.freedesktop.FileManager1).
void revealInFileManager(const QUrl& url)
{
    auto* process = new QProcess(QCoreApplication::instance());
    QObject::connect(process, &QProcess::finished, process, [process, url](int code, QProcess::ExitStatus status) {
        if (code != 0 || status != QProcess::NormalExit) {
            openFolderOf(url);
        }
        process->deleteLater();
    });
    QObject::connect(process, &QProcess::errorOccurred, process, [process, url](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            openFolderOf(url);
            process->deleteLater();
        }
    });
    // The comma parts the elements of an array there.
    const QString name = QString::fromLatin1(url.toEncoded()).replace(u","_s, u"%2C"_s);
    process->start(u"dbus-send"_s, {u"--session"_s, u"--print-reply"_s, u"--dest=org.freedesktop.FileManager1"_s,
                                    u"/org/freedesktop/FileManager1"_s, u"org.freedesktop.FileManager1.ShowItems"_s,
                                    u"array:string:"_s + name, u"string:"_s});
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

    std::optional<QString> applicationForScheme(const QString& scheme) override
    {
        QProcess process;
        process.start(u"xdg-mime"_s, {u"query"_s, u"default"_s, u"x-scheme-handler/"_s + scheme});
        if (!process.waitForFinished(queryTimeoutMs) || process.exitCode() != 0) {
            return std::nullopt;
        }
        const QString name = QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
        return name.isEmpty() ? std::nullopt : std::optional(name);
    }
};

} // namespace

Workspace& Workspace::system()
{
    static SystemWorkspace workspace;
    return workspace;
}

} // namespace kelm
