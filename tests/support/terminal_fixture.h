// A terminal session with a home, a screen and a clock of its own.
#pragma once

#include "platform/files/native_path.h"
#include "support/fake_terminal_screen.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kelm::test {

struct TerminalFixture
{
    TerminalFixture() : homeBefore(qgetenv("HOME")), folderBefore(QDir::currentPath())
    {
        qputenv("HOME", QFile::encodeName(home()));
        makeSession();
    }
    ~TerminalFixture()
    {
        qputenv("HOME", homeBefore);
        QDir::setCurrent(folderBefore);
    }
    TerminalFixture(const TerminalFixture&) = delete;
    TerminalFixture& operator=(const TerminalFixture&) = delete;

    void makeSession(const QStringList& shells = TerminalSession::usualShells())
    {
        session = std::make_unique<TerminalSession>(TerminalSession::Services{scheduler, notifications, shells});
        session->setTextView(&screen);
        screen.session = session.get();
    }

    QString home() const { return QFileInfo(folder.path()).canonicalFilePath(); }
    /// A path below the home folder.
    QString path(const QString& name) const { return home() + u'/' + name; }
    void makeFolder(const QString& name) const { QDir(home()).mkpath(name); }
    void makeFile(const QString& name, const QByteArray& content = {}) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
            qFatal("cannot write a file of the test");
        }
    }

    /// The shell line that starts this test program in a role of `playRole`.
    static QString roleLine(const QString& roleAndArguments)
    {
        return u'\'' + QCoreApplication::applicationFilePath() + QStringLiteral("' --role ") + roleAndArguments;
    }

    /// Runs a line as the view does, the prompt left out.
    QStringList run(const QString& line)
    {
        screen.forget();
        session->executeCommand(line);
        return screen.writes;
    }

    QTemporaryDir folder;
    QByteArray homeBefore;
    QString folderBefore;
    ManualScheduler scheduler;
    NotificationCenter notifications;
    FakeTerminalScreen screen;
    std::unique_ptr<TerminalSession> session;
};

/// A folder in the home folder whose name is not UTF-8, with the folder "inner" in it. The toolkit cannot tidy it away.
struct RawFolder
{
    explicit RawFolder(const TerminalFixture& fixture)
        : name(pathOfNative("caf\xe9")), outer(nativePath(fixture.path(name))), inner(outer + "/inner")
    {
        if (::mkdir(outer.constData(), 0700) != 0 || ::mkdir(inner.constData(), 0700) != 0) {
            qFatal("cannot make a folder of the test");
        }
    }
    ~RawFolder()
    {
        ::rmdir(inner.constData());
        ::rmdir(outer.constData());
    }
    RawFolder(const RawFolder&) = delete;
    RawFolder& operator=(const RawFolder&) = delete;

    QString name;
    QByteArray outer;
    QByteArray inner;
};

/// Does `work` from the event loop as soon as the session's command has written something.
inline void onFirstOutput(TerminalFixture& fixture, std::function<void()> work)
{
    fixture.screen.onOutput = [&fixture, work = std::move(work)] {
        fixture.screen.onOutput = nullptr;
        QTimer::singleShot(0, &fixture.screen, work);
    };
}

} // namespace kelm::test
