// Starts of the program as far as its window, as processes that a test begins and sees the end of.
#pragma once

#include "platform/events/single_instance.h"
#include "support/patience.h"
#include "support/roles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace kelm::test {

/// The role of a start: the folder of its place, its patience in milliseconds, what the program that it starts is to
/// make of the request ("none" when its file is to be gone by then), and the command line. `before_window_test` has it.
inline const QString startRoleName = QStringLiteral("start-before-window");
/// The role of the program that it starts: the folder, and what that is to make of the request. Of
/// `before_window_waits_test`.
inline const QString programRoleName = QStringLiteral("program-behind-a-start");

/// The status of a start that goes on as the program itself.
inline constexpr int isTheProgram = 100;

inline InstancePlace placeIn(const QString& folder)
{
    return instancePlace(folder, QStringLiteral("session"), QStringLiteral("machine"));
}

inline QStringList textsOf(const openRequest::Request& request)
{
    QStringList texts;
    for (const openRequest::Item& item : request.items) {
        texts.append(item.text);
    }
    return texts;
}

inline QString urlOf(const QString& path)
{
    return QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
}

/// A folder that is the place of starts, and one of them.
struct Start
{
    /// How it ended, and what it said.
    struct End
    {
        int status = -1;
        QByteArray said;
        QByteArray complaint;
    };

    QTemporaryDir folder;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

    Start() { environment.insert(QStringLiteral("XDG_STATE_HOME"), path(QStringLiteral("state"))); }

    QString path(const QString& name) const { return folder.filePath(name); }
    InstancePlace place() const { return placeIn(folder.path()); }

    void begin(const QStringList& commandLine, int milliseconds = patience,
               const QString& outcome = QStringLiteral("s"))
    {
        process.setProcessEnvironment(environment);
        startRole(process, startRoleName,
                  QStringList{folder.path(), QString::number(milliseconds), outcome} + commandLine);
    }
    End end()
    {
        // It may talk to this process meanwhile.
        [this] { QTRY_COMPARE(process.state(), QProcess::NotRunning); }();
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
                process.readAllStandardError()};
    }
    End run(const QStringList& commandLine, int milliseconds = patience, const QString& outcome = QStringLiteral("s"))
    {
        begin(commandLine, milliseconds, outcome);
        return end();
    }
};

} // namespace kelm::test
